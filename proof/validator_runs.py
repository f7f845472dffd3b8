"""The validators, run by the executor: the checks of the header, and one round of each walk through
the levels for every level that a record can have.

A round is run from a state that every round of that level starts in: the words of the level, the
bounds and the chain's state (how the level before it was tiled, whether it had low-resolution depth:
0 or 1 each) are unknown. What comes to the start of the next round is held against the state that
the next round is run from. So the rounds make up the whole walk, whatever the record.
"""

from dataclasses import dataclass, field

import z3

import setting
from executor import terms
from executor.memory import Address, Memory, Region
from setting import LEVELS, at


@dataclass
class Path:
    """What one path through a part of a validator has done."""

    kind: object  # records.Kind
    part: str  # "header", "walk" (of plain levels) or "rules"
    level: int  # whose words it looks at; None for the header
    ending: str  # "refuses", "accepts" the record, or "goes on" behind the level
    state: object
    by_rules: bool = False  # the rules were asked, beside the quick tests
    next_tiled_read: bool = False  # of the level behind


@dataclass
class Part:
    paths: list = field(default_factory=list)
    claims: list = field(default_factory=list)
    steps: int = 0


class Header:
    """What the header checks leave: CheckedHeader of layout/validate_levels.h."""

    BYTES = 24
    WORDS = {"total_size": (0, 8), "surface_size": (8, 8), "linear_fallback": (16, 4),
             "levels": (20, 4)}

    def __init__(self):
        def unknown(name):
            return z3.BitVec(f"header.{name}", 8 * self.WORDS[name][1])

        self.total_size, self.surface_size = unknown("total_size"), unknown("surface_size")
        self.linear_fallback, self.levels = unknown("linear_fallback"), unknown("levels")
        self.region = Region("the checked header", self.BYTES, 8, False)
        for name, (offset, bytes_) in self.WORDS.items():
            self.region.content[offset] = (bytes_, getattr(self, name))
        self.conditions = [z3.UGE(self.levels, 1), z3.ULE(self.levels, LEVELS)]


def named_by_word(kind, level):
    """Words of a level are named alike in all levels, so that one question serves all of them."""
    def name(offset, size):
        for place, prefix in ((level, "level"), (level + 1, "next level")):
            start = kind.level_at(place)
            if start <= offset < start + kind.level_bytes:
                word, bytes_ = kind.name_of(offset)
                if bytes_ == size:
                    return prefix + word[word.index("]") + 1:]
        return f"record+{offset}:{size}"
    return name


def stored_word(where, name, bytes_):
    """The term that a load of the word gives: `where` is "level" or "plane 0" to "plane 2"."""
    if where == "level":
        return z3.BitVec(f"level.{name}", 8 * bytes_)
    return z3.BitVec(f"level.plane[{where[-1]}].{name}", 8 * bytes_)


_parts = {}


def header_part(proof, kind):
    """All paths up to the walk through the levels, whose answer stays open."""
    key = (id(proof.module), kind.name, "header")
    if key not in _parts:
        part = Part()
        machine = proof.machine()
        walk = setting.function_named(proof.module, "11levels_pass", kind.part_of_name)

        def levels(machine, state, arguments):
            part.paths.append(Path(kind, "header", None, "goes on", state.copy()))
            state.notes["walk"] = arguments
            part.paths[-1].state.notes["walk"] = arguments
            return machine.fresh("levels pass", 1)

        machine.instead[walk] = levels
        record = setting.record("record", kind.bytes)
        record.named = lambda offset, size: kind.name_of(offset)[0]
        if kind.name == "MemoryLayout":
            record.inside = lambda offset, size: (
                offset + size <= kind.bytes if terms.known(offset) else False)
        device, driver = (setting.record(name, 16) for name in ("device_uuid", "driver_uuid"))
        outcomes = proof.run(machine, kind.validator, [at(record), at(device), at(driver)])
        for outcome in outcomes:
            if "walk" not in outcome.state.notes:
                ending = "refuses" if outcome.value == 0xFFFFFFFF else "accepts"
                part.paths.append(Path(kind, "header", None, ending, outcome.state))
        part.claims, part.steps = machine.claims, machine.steps
        _parts[key] = part  # whole, or a theorem behind one that broke off would show nothing
    return _parts[key]


def level_part(proof, kind, name, level):
    """One round, of the walk of plain levels ("walk") or of the rules behind it ("rules"), for a
    level. The rules' round of level 0 is that of passes_from_level, which the walk enters."""
    key = (id(proof.module), kind.name, name, level)
    if key not in _parts:
        _parts[key] = _Rounds(proof, kind, name).round(level)
    return _parts[key]


_starts = {}


class _Rounds:
    def __init__(self, proof, kind, name):
        self.proof, self.kind, self.name = proof, kind, name
        self.header = Header()
        self.walk = setting.function_named(proof.module, "11levels_pass", kind.part_of_name)
        self.behind = setting.function_named(proof.module, "18levels_behind_pass",
                                             kind.part_of_name)
        self.entries = [setting.function_named(proof.module, part, kind.part_of_name)
                        for part in ("17passes_from_level", "17passes_from_image",
                                     "18refuse_flag_buffer")]
        self.record = setting.record("record", kind.bytes)

    # ---- the state that a round starts in

    def machine(self, meets=()):
        return self.proof.machine(meets=meets)

    def start_key(self):
        return (id(self.proof.module), self.kind.name, self.name)

    def starts(self):
        """The state in which a path first comes to the loop, and what a round moves on."""
        key = self.start_key()
        if key in _starts:
            return _starts[key]
        looped = self.walk if self.name == "walk" else self.behind
        machine = self.machine(meets=[looped])
        arrivals = []

        def meet(state, phis):
            arrivals.append((state.copy(), phis))
            return len(arrivals) > 1

        machine.at_meeting = meet
        first = 0 if self.name == "walk" else 1
        self.record.named = named_by_word(self.kind, first)
        if self.name == "walk":
            arguments = [at(self.record), at(self.header.region)]
        else:
            arguments = [at(self.record, self.kind.level_at(0)), 0, z3.BitVec("before", 64),
                         at(self.header.region)]
        machine.instead[self.behind] = lambda m, s, a: m.fresh("levels behind pass", 1)
        if self.name == "rules":
            del machine.instead[self.behind]
        machine.run(looped, arguments, Memory(), self.header.conditions)
        if len(arrivals) < 2:
            raise SystemExit(f"{looped}: no second round was reached")
        (start, phis), (again, _) = arrivals[0], arrivals[1]
        steps = {}
        for phi in phis:
            a, b = start.frame.values[phi], again.frame.values[phi]
            if isinstance(a, Address):
                steps[phi] = b.offset - a.offset
            elif terms.known(a) and not isinstance(a, bool):
                steps[phi] = b - a
            else:
                steps[phi] = None
        _starts[key] = (start, phis, steps, first)
        return _starts[key]

    def start_of(self, level):
        """The state in which every round of a level starts."""
        start, phis, steps, first = self.starts()
        state = start.copy()
        for phi in phis:
            value, step = start.frame.values[phi], steps[phi]
            if isinstance(value, Address):
                state.frame.values[phi] = Address(value.region, value.offset + (level - first) * step)
            elif step is not None:
                state.frame.values[phi] = value + (level - first) * step
        if level > first:
            state.loads = []
            state.frame.values = {n: self.of_chain(v) for n, v in state.frame.values.items()}
            if self.name == "walk":
                for phi in phis:
                    if steps[phi] is None:
                        state.frame.values[phi] = z3.BitVec("level.tiled", 32)
            state.conditions = list(self.header.conditions)
            if self.name == "walk":  # it goes on behind tiled words of 0 and 1 alone
                state.conditions.append(z3.ULE(z3.BitVec("chain.tiled", 32), 1))
            state.known = {c.get_id(): True for c in state.conditions}
        if self.name == "rules":
            for condition in chain_conditions(z3.BitVec("before", 64)):
                state.assume(condition)
        state.assume(z3.UGT(self.header.levels, level))
        return state

    def of_chain(self, value):
        """Level 0's tiled word, in the rounds of other levels."""
        if self.name == "walk" and isinstance(value, z3.ExprRef):
            return z3.substitute(value, (z3.BitVec("level.tiled", 32), z3.BitVec("chain.tiled", 32)))
        return value

    def behind_it(self, value):
        """What the state of the chain is behind the level that a round has looked at."""
        if self.name == "walk":
            return value
        words = [z3.BitVec(f"level.{name}", 32) for name in ("lrz_valid", "tiled")]
        return z3.simplify(z3.substitute(value, (z3.BitVec("before", 64), z3.Concat(*words))))

    # ---- a round

    def round(self, level):
        part = Part()
        start, phis, steps, first = self.starts()
        looped = self.walk if self.name == "walk" else self.behind
        machine = self.machine(meets=[looped])
        state = self.start_of(level)
        record = self.record_of(state)
        record.named = named_by_word(self.kind, level)
        expected = self.start_of(level + 1) if level + 1 < LEVELS else None
        state.notes["level"] = level

        def meet(arrived, its_phis):
            self.check_arrival(arrived, its_phis, expected, steps, level, first, part)
            return True

        def behind(machine, state, arguments):
            self.check_handed_over(state, arguments, record, level)
            part.paths.append(Path(self.kind, self.name, level, "goes on", state.copy(), True))
            return machine.fresh("levels behind pass", 1)

        machine.at_meeting = meet
        if self.name == "walk":
            machine.instead[self.behind] = behind
            for entry in self.entries:
                machine.instead[entry] = self.noting(entry)
        for outcome in machine.resume([state]):
            self.take_outcome(outcome, level, part)
        part.claims, part.steps = machine.claims, machine.steps
        self.proof.report.instructions += machine.steps
        self.proof.report.paths += machine.paths
        return part

    def record_of(self, state):
        for value in state.frame.values.values():
            if isinstance(value, Address) and value.region.name == "record":
                return value.region
        raise SystemExit("the walk has no record")

    def noting(self, entry):
        """Runs the function, and notes that the rules were asked."""
        def call(machine, state, arguments):
            state.notes["by rules"] = True
            instruction = state.frame.function.blocks[state.frame.block].instructions[
                state.frame.index]
            machine.enter(state, entry, arguments, instruction)
            return machine.continues
        return call

    def check_arrival(self, state, phis, expected, steps, level, first, part):
        """At the start of the next round: it is the state that the next round is run from."""
        require = self.proof.require
        place = f"{self.kind.validator}, the round behind level {level}"
        require("there is a level behind the last one", expected is not None, place)
        for phi in phis:
            value, wanted = state.frame.values[phi], expected.frame.values[phi]
            if isinstance(wanted, Address):
                require("the next level's address", value == wanted, place)
            elif steps[phi] is not None:
                require("the next level's number", value == wanted, place)
            elif self.name == "rules":  # the next level's state of the chain are this one's words
                self.proof.show("the state of the chain", state.conditions,
                                terms.compare("eq", value, self.behind_it(wanted), wanted.size()),
                                place)
        for number, value in expected.frame.values.items():
            if number not in phis and isinstance(value, (int, bool, Address, z3.ExprRef)):
                stayed = state.frame.values[number]
                if level == first:
                    stayed = self.of_chain(stayed)
                same = (value == stayed if isinstance(value, Address) else
                        type(value) is type(stayed) and terms.same(value, stayed))
                if not same:  # of the round itself, and used by nothing in the next one
                    require("what stays through the rounds", number in self.made_in_loop(), place)
        if expected is not None:
            for condition in expected.conditions:
                condition = self.behind_it(condition)
                if level == first and self.name == "walk":  # level 0 is the one that the chain is tiled like
                    condition = z3.substitute(condition, (z3.BitVec("chain.tiled", 32),
                                                          z3.BitVec("level.tiled", 32)))
                self.proof.show("what a round relies on", state.conditions, condition, place)
        next_tiled = any(a.offset >= self.kind.level_at(level + 1) for a in state.loads)
        part.paths.append(Path(self.kind, self.name, level, "goes on", state.copy(),
                               bool(state.notes.get("by rules")), next_tiled))

    def made_in_loop(self):
        start, _, _, _ = self.starts()
        return set(range(10 ** 6)) - set(start.frame.values)

    def check_handed_over(self, state, arguments, record, level):
        """To the rules of the levels behind: the level's place and number, and the checked header."""
        level_at, number, before, header = arguments
        place = f"{self.kind.validator}, handed over behind level {level}"
        require = self.proof.require
        require("the level's address", level_at == Address(record, self.kind.level_at(level)), place)
        require("the level's number", number == level, place)
        require("the checked header", header.region.name == "the checked header" and
                header.offset == 0 and not state.memory.cells(header.region), place)
        for condition in chain_conditions(before):
            self.proof.show("the state of the chain", state.conditions, condition, place)

    def take_outcome(self, outcome, level, part):
        value = outcome.value
        if terms.known(value):
            ending = "accepts" if value else "refuses"
            part.paths.append(Path(self.kind, self.name, level, ending, outcome.state,
                                   bool(outcome.state.notes.get("by rules"))))
        else:
            self.proof.require("a verdict that stays open is that of the levels behind",
                               str(value).startswith("levels behind pass"))


def rounds(proof, kind):
    """(part, level) of the rounds that a theorem speaks of. The rounds of all other levels are like
    those of level 1: shown here, path by path. --quick leaves the walk out, which has three times as
    many paths."""
    if proof.quick:
        return [("rules", 1)]
    for level in range(2, LEVELS):
        for name in ("walk", "rules"):
            like_level_1(proof, kind, name, level)
    return [("walk", 0), ("walk", 1), ("rules", 1)]


_alike = set()


def like_level_1(proof, kind, name, level):
    """Each path of the round has the conditions, the loads, the messages and the end of one of the
    round of level 1, but for the number of the level."""
    key = (id(proof.module), kind.name, name, level)
    if key in _alike:
        return
    known = {what_was_done(p) for p in level_part(proof, kind, name, 1).paths}
    part = level_part(proof, kind, name, level)
    proof.require("the round has paths", part.paths, f"{kind.validator}, level {level}")
    for path in part.paths:
        proof.require("a path of the round is one of level 1's", what_was_done(path) in known,
                      f"{kind.validator}, {name}, level {level}")
    _alike.add(key)


def what_was_done(path):
    """All that a claim about a round may depend on."""
    state, start = path.state, path.kind.level_at(path.level)
    conditions = tuple(c.get_id() for c in state.conditions
                       if terms.unknowns(c) != {"header.levels"})
    loads = tuple((a.region.name, a.offset - start, a.bytes, a.volatile) for a in state.loads)
    messages = tuple((m.function, m.format, tuple(
        "level" if place == 0 and a == path.level else a if terms.known(a) else a.get_id()
        for place, a in enumerate(m.arguments))) for m in state.messages)
    return (path.ending, path.by_rules, path.next_tiled_read, conditions, loads, messages,
            len(state.stores))


def tiled_before(before=z3.BitVec("before", 64)):
    """Of the state of the chain that a round of the rules starts with."""
    return z3.Extract(31, 0, before)


def lrz_before(before=z3.BitVec("before", 64)):
    return z3.Extract(63, 32, before)


def chain_conditions(before):
    """Of a level that has passed: its words are 0 or 1."""
    before = terms.vector(before, 64)
    return [z3.ULE(tiled_before(before), 1), z3.ULE(lrz_before(before), 1)]
