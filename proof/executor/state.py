"""Where one path through the library's code stands."""

from dataclasses import dataclass

from .memory import Memory


class Frame:
    """A function that is being run."""

    __slots__ = ("function", "values", "block", "index", "came_from", "call")

    def __init__(self, function, values, call=None):
        self.function = function
        self.values = values  # number -> value
        self.block = 0
        self.index = 0  # of the next instruction of the block
        self.came_from = None  # the block before
        self.call = call  # the instruction that waits for the result

    def copy(self):
        other = Frame(self.function, dict(self.values), self.call)
        other.block, other.index, other.came_from = self.block, self.index, self.came_from
        return other


class State:
    """A path: what it has taken to be true, what it has loaded, stored and reported."""

    __slots__ = ("frames", "memory", "conditions", "known", "loads", "stores", "messages", "notes",
                 "open")

    def __init__(self, memory=None, conditions=()):
        self.frames = []
        self.memory = memory or Memory()
        self.conditions = []
        self.known = {}  # id of a condition's term -> whether it holds on this path
        self.loads = []  # Access, of memory that is not the library's own
        self.stores = []
        self.messages = []
        self.notes = {}  # a theorem's own
        self.open = {}  # finite.Finite -> the numbers of its list that can still be meant
        for condition in conditions:
            self.assume(condition)

    def assume(self, condition):
        if isinstance(condition, bool):
            if not condition:
                raise ValueError("a path that cannot be taken")
            return
        if condition.get_id() not in self.known:
            self.conditions.append(condition)
            self.known[condition.get_id()] = True

    def copy(self):
        other = State.__new__(State)
        other.frames = [f.copy() for f in self.frames]
        other.memory = self.memory
        other.conditions = list(self.conditions)
        other.known = dict(self.known)
        other.loads = list(self.loads)
        other.stores = list(self.stores)
        other.messages = list(self.messages)
        other.notes = dict(self.notes)
        other.open = dict(self.open)
        return other

    @property
    def frame(self):
        return self.frames[-1]


@dataclass
class Message:
    """One report to the services' log."""

    line: object
    function: str
    format: str
    arguments: tuple


@dataclass
class Outcome:
    """How a path ends."""

    kind: str  # "returns" or "faults": divides by 0
    value: object
    state: State
    place: str = ""


@dataclass(frozen=True)
class Claim:
    """What must hold where a path stands."""

    kind: str  # "access", "promise" of the compiler, "undefined"
    conditions: tuple
    holds: object
    text: str
    place: str
