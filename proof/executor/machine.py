"""Runs the library's code on unknown numbers.

One path at a time: where a branch depends on what is unknown, each way that the solver leaves open
becomes a path of its own. What the compiler promises (no wrap, no remainder, inside an object) and
what memory demands (no access outside of what the header names) becomes a claim: the conditions of
the path and what must then hold. A division by 0 is an outcome.

Paths that meet at the start of a loop's next round can go on as one ("meet"): what they disagree in
becomes unknown, and only what all of them have found to be true stays true. That claims less than
each of them knew, never more.
"""

import itertools

import z3

from . import terms
from .ir import (AddressNumber, Aggregate, Assembly, Element, Int, Local, Null, RelativeNumber, Symbol,
                Undefined)
from .memory import NULL, POISON, Access, Address, Memory, Poison, Region, byte_of, joined
from .state import Claim, Frame, Outcome, State


class NotUnderstood(Exception):
    """Code that the executor has no rule for. Nothing is proved of it."""


class Cases:
    """A result that is another one on each of several paths: (condition, value)."""

    def __init__(self, cases):
        self.cases = cases


class PathEnds(Exception):
    """The path goes no further."""


_Ends = PathEnds


class Machine:
    """
    services  name of a function that the library imports -> function(machine, state, arguments),
              which returns the call's result
    instead   the same, in the place of functions of the library that a theorem speaks of apart
    meets     names of functions in whose loops paths meet
    parts     names of functions in which a choice between numbers makes paths as well: where they are
              the places of a search
    """

    def __init__(self, module, prover, services=None, instead=None, meets=(), parts=()):
        self.module = module
        self.prover = prover
        self.services = services or {}
        self.instead = instead or {}
        self.meets = set(meets)
        self.parts = set(parts)
        # Called with each path that comes to the start of a round, and with its phis. True: the path
        # goes no further.
        self.at_meeting = None
        self.at_load = None  # called with the path and the Access
        self.finite = []  # Finite: unknown numbers that are one of a list
        self.claims = []
        self.outcomes = []
        self.steps = 0
        self.paths = 0
        self.counter = itertools.count()
        self.variables = {}
        self.locals = {}
        self.exhausted = 2_000_000  # instructions, before a run is given up

    # ---- claims and unknowns

    def fresh(self, name, bits):
        name = f"{name}#{next(self.counter)}"
        return z3.Bool(name) if bits == 1 else z3.BitVec(name, bits)

    def claim(self, state, kind, holds, text, place):
        if terms.known(holds):
            if holds:
                return
        elif state.known.get(holds.get_id()):
            return
        self.claims.append(Claim(kind, tuple(state.conditions), holds, text, place))

    def promised(self, state, kept, value, text, place):
        """The value that an instruction yields when it keeps a promise, and else one that means
        nothing: that alone is no fault, as the code may not use it. Where both can be, the path
        parts."""
        if terms.known(kept):
            return value if kept else POISON
        if state.known.get(kept.get_id()):
            return value
        broken = terms.negation(kept)
        if state.known.get(broken.get_id()):
            return POISON
        if self.possible(state, broken):
            return Cases([(kept, value), (broken, POISON)])
        self.claim(state, "promise", kept, text, place)
        return value

    # ---- constants and variables

    def variable(self, name):
        if name not in self.variables:
            source = self.module.variables.get(name)
            if source is None:
                self.variables[name] = Region(name, 0, 16, False)
            else:
                region = Region(name, source.bytes, source.alignment, not source.constant)
                self.variables[name] = region
                for offset, (size, constant) in source.content.items():
                    region.content[offset] = (size, self.constant(constant))
        return self.variables[name]

    def constant(self, constant):
        if isinstance(constant, Int):
            return bool(constant.value) if constant.bits == 1 else constant.value
        if isinstance(constant, Null):
            return NULL
        if isinstance(constant, Symbol):
            return Address(self.variable(constant.name), 0)
        if isinstance(constant, Element):
            return moved(self.constant(constant.base), constant.offset & terms.mask(64))
        if isinstance(constant, RelativeNumber):
            return constant
        if isinstance(constant, AddressNumber):
            return self.constant(constant.address)
        if isinstance(constant, Undefined):
            return _undefined(constant.type)
        if isinstance(constant, Aggregate):
            return [self.constant(p) for p in constant.parts]
        raise NotUnderstood(f"constant {constant}")

    def text_at(self, address):
        """The text that an address of the library's own constants points to."""
        if not isinstance(address, Address) or not terms.known(address.offset):
            raise NotUnderstood("a text at an unknown place")
        text, at = bytearray(), address.offset
        while True:
            size, value = address.region.content[at]
            if size != 1:
                raise NotUnderstood("a text that is not one of bytes")
            if value == 0:
                return text.decode()
            text.append(value)
            at += 1

    # ---- running

    def run(self, name, arguments, memory=None, conditions=(), notes=None):
        """All outcomes of a call."""
        state = State(memory, conditions)
        state.notes = dict(notes or {})
        for finite in self.finite:
            if not state.known.get(finite.condition.get_id()):
                raise ValueError("a call without the condition that its number is one of the list")
            state.open[finite] = finite.open
            for condition in state.conditions:
                self.assume(state, condition)
        self.enter(state, name, arguments, None)
        return self.resume([state])

    def resume(self, states):
        """All outcomes of paths that go on from where they stand."""
        name = states[0].frames[0].function.name
        self.outcomes = []
        running, self.waiting = list(states), {}
        while running or self.waiting:
            if not running:
                running.append(self.meeting(*self.next_meeting()))
            running.extend(self.advance(running.pop()))
            if self.steps > self.exhausted:
                raise NotUnderstood(f"{name}: more than {self.exhausted} instructions")
        return self.outcomes

    def enter(self, state, name, arguments, call):
        function = self.module.functions[name]
        frame = Frame(function, {}, call)
        for local, type_, promise, value in zip(function.arguments, function.argument_types,
                                                function.promises, arguments):
            self.check_argument(state, function, promise, value)
            frame.values[local.number] = value
        state.frames.append(frame)

    def check_argument(self, state, function, promise, value):
        place = f"a call of {function.name}"
        if promise.noundef and isinstance(value, Poison):
            self.claim(state, "undefined", False, "an argument that means nothing", place)
        if not isinstance(value, Address):
            return
        if promise.nonnull and value.region is None:
            self.claim(state, "promise", False, "an argument that is not null", place)
        if promise.dereferenceable or promise.alignment > 1:
            if value.region is not None:
                self.check_access(state, value, max(promise.dereferenceable, 1), promise.alignment,
                                  False, place)

    def advance(self, state):
        """Runs a path up to where it parts, ends or waits. Returns the paths that come of it."""
        try:
            while True:
                frame = state.frames[-1]
                instruction = frame.function.blocks[frame.block].instructions[frame.index]
                self.steps += 1
                rule = getattr(self, "do_" + instruction.opcode, None)
                if rule is None:
                    raise NotUnderstood(f"{instruction.place}: {instruction.text}")
                result = rule(state, frame, instruction)
                if result is _CONTINUES:
                    continue
                if isinstance(result, list) and result and isinstance(result[0], State):
                    return result
                if isinstance(result, Cases):
                    return self.part(state, instruction, result.cases)
                frame.values[instruction.number] = result
                frame.index += 1
        except _Ends:
            self.paths += 1
            return []

    def possible(self, state, condition):
        """Whether a path may go on under one more condition."""
        for finite, open_ in state.open.items():
            left = finite.numbers_for(open_, condition, self.prover)
            if left is not None:
                return bool(left)
        return self.prover.possible(state.conditions, condition)

    def assume(self, state, condition):
        """A path goes on under one more condition, and so with fewer of its listed numbers."""
        state.assume(condition)
        if terms.known(condition):
            return
        for finite, open_ in state.open.items():
            left = finite.numbers_for(open_, condition, self.prover)
            if left is not None:
                state.open[finite] = left

    def part(self, state, instruction, cases):
        """A path for each case that can be."""
        made = []
        for condition, value in self.open_cases(state, cases):
            other = state.copy() if made or len(cases) > 1 else state
            self.assume(other, condition)
            other.frame.values[instruction.number] = value
            other.frame.index += 1
            made.append(other)
        return made

    def open_cases(self, state, cases):
        """The cases that the conditions of a path leave open."""
        left = []
        for condition, value in cases:
            if terms.known(condition):
                if condition:
                    left.append((True, value))
                continue
            was = state.known.get(condition.get_id())
            if was:
                return [(True, value)]
            if self.possible(state, condition):
                left.append((condition, value))
        if len(left) == 1 and len(cases) > 1:
            return [(left[0][0], left[0][1])]
        return left

    def finish(self, state, kind, value, place):
        self.outcomes.append(Outcome(kind, value, state, place))
        raise _Ends

    # ---- blocks

    def go(self, state, target):
        """To another block; the values of its phis are those of the edge."""
        frame = state.frames[-1]
        came_from = frame.block
        block = frame.function.blocks[target]
        taken, index = {}, 0
        for instruction in block.instructions:
            if instruction.opcode != "phi":
                break
            for value, source in instruction.incoming:
                if source == came_from:
                    taken[instruction.number] = self.value(frame, value)
                    break
            else:
                raise NotUnderstood(f"{frame.function.name}: an edge without a value")
            index += 1
        frame.values.update(taken)
        frame.came_from, frame.block, frame.index = came_from, target, index
        if target in frame.function.headers and frame.function.name in self.meets:
            self.wait(state, tuple(taken))
            return []
        return None

    def wait(self, state, phis):
        if self.at_meeting and self.at_meeting(state, phis):
            return
        values = state.frame.values
        key = (tuple((f.function.name, f.block, f.index, f.call.number if f.call else None)
                     for f in state.frames),
               tuple(_plain(values[p]) for p in phis))
        self.waiting.setdefault(key, []).append(state)

    def next_meeting(self):
        """Inner loops before outer ones, then those that have waited longest: so that all who can
        come have come."""
        key = max(self.waiting, key=lambda k: len(k[0]))
        return key, self.waiting.pop(key)

    def meeting(self, key, states):
        first = states[0]
        if len(states) == 1:
            return first
        for number, frame in enumerate(first.frames):
            for name in list(frame.values):
                others = [s.frames[number].values.get(name) for s in states]
                frame.values[name] = self.agreed(others, f"{frame.function.name}.{name}")
        first.memory = self.agreed_memory([s.memory for s in states])
        kept = [c for c in first.conditions if all(c.get_id() in s.known for s in states)]
        first.conditions = kept
        first.known = {c.get_id(): True for c in kept}
        seen = {(a.region, a.offset, a.bytes) if terms.known(a.offset) else id(a): a
                for s in states for a in s.loads}
        first.loads = list(seen.values())
        first.stores = list({id(a): a for s in states for a in s.stores}.values())
        first.open = {f: frozenset().union(*(s.open[f] for s in states)) for f in first.open}
        if any(s.messages != first.messages for s in states):
            raise NotUnderstood("paths that meet have reported different things")
        return first

    def agreed(self, values, name):
        first = values[0]
        if all(_same(first, v) for v in values):
            return first
        if any(v is None or isinstance(v, (Poison, Address, list)) for v in values):
            return POISON
        if any(isinstance(v, bool) or z3.is_bool(v) for v in values):
            return self.fresh(name, 1)
        unknown = next((v for v in values if not terms.known(v)), None)
        if unknown is None:
            return _AnyOf(self, name, values)
        return self.fresh(name, unknown.size())

    def agreed_memory(self, memories):
        """What some of them have written and others not, or in other words, is unknown."""
        made = {}
        for region in {r: None for m in memories for r in m.regions}:
            all_cells = [m.cells(region) for m in memories]
            if all(cells is all_cells[0] for cells in all_cells):
                made[region] = all_cells[0]
                continue
            kept = {}
            for offset, (size, _) in all_cells[0].items():
                if all(cells.get(offset, (0,))[0] == size for cells in all_cells):
                    agreed = self.agreed([c[offset][1] for c in all_cells], f"{region.name}+{offset}")
                    if isinstance(agreed, _AnyOf):
                        agreed = self.fresh(f"{region.name}+{offset}", 8 * size)
                    kept[offset] = (size, agreed)
            covered = {at + i for at, (size, _) in kept.items() for i in range(size)}
            for cells in all_cells:
                for at, (size, _) in cells.items():
                    for byte in range(at, at + size):
                        if byte not in covered:
                            kept[byte] = (1, POISON)
            made[region] = kept
        return Memory(made)

    # ---- values

    def value(self, frame, operand):
        if isinstance(operand, Local):
            value = frame.values[operand.number]
            if isinstance(value, _AnyOf):
                raise NotUnderstood(f"{frame.function.name}: numbers that differ where paths meet")
            return value
        return self.constant(operand)

    def number(self, state, frame, instruction, operand):
        """A value that something is decided by."""
        value = self.value(frame, operand)
        if isinstance(value, Poison):
            self.claim(state, "undefined", False, "a decision by what means nothing",
                       instruction.place)
            raise _Ends
        return value

    # ---- memory

    def check_access(self, state, address, size, alignment, writing, place):
        region, offset = address.region, address.offset
        if region is None:
            self.claim(state, "access", False, f"{size} bytes at the null address", place)
            raise _Ends
        if region.inside is not None:
            inside = region.inside(offset, size)
        elif terms.known(offset):
            inside = offset + size <= region.bytes
        else:
            inside = z3.ULE(offset, region.bytes - size) if region.bytes >= size else False
        where = f" at {offset}" if terms.known(offset) else ""  # a term is more than anybody reads
        self.claim(state, "access", inside, f"{size} bytes of {region.name}{where}", place)
        if writing and not region.writable:
            self.claim(state, "access", False, f"a store to {region.name}, which is read only", place)
        if alignment > 1:
            if region.alignment % alignment:
                aligned = False
            elif terms.known(offset):
                aligned = offset % alignment == 0
            elif address.step % alignment == 0:
                aligned = address.known % alignment == 0
            else:
                aligned = offset & (alignment - 1) == 0
            self.claim(state, "promise", aligned,
                       f"a place in {region.name}{where} is a multiple of {alignment}", place)

    def load(self, state, address, type_, place, alignment=1, volatile=False):
        if type_.kind in ("vector", "array"):
            part = type_.element
            parts = [self.load(state, moved(address, i * part.bytes), part, place,
                               alignment if i == 0 else 1, volatile) for i in range(type_.count)]
            if any(isinstance(p, Cases) for p in parts):
                raise NotUnderstood(f"{place}: a vector at an unknown place")
            return parts
        if isinstance(address, Poison):
            self.claim(state, "undefined", False, "a load from nowhere", place)
            raise _Ends
        self.check_access(state, address, type_.bytes, alignment, False, place)
        region, offset = address.region, address.offset
        if not terms.known(offset):
            return self.load_somewhere(state, address, type_, place, volatile)
        if terms.known(offset) and offset + type_.bytes > region.bytes and region.inside is None:
            raise _Ends
        value = self.word(state, region, offset, type_, place)
        if region.initial in ("any", "shared"):
            self.note_load(state, Access(region, offset, type_.bytes, value, volatile, place))
        return self.of_type(value, type_)

    def note_load(self, state, access):
        state.loads.append(access)
        if self.at_load:
            self.at_load(state, access)

    def of_type(self, value, type_):
        if isinstance(value, (Poison, Address, RelativeNumber)):
            return value
        if type_.kind == "pointer":
            return NULL if terms.known(value) and value == 0 else POISON
        if type_.bits == 1:
            return value if isinstance(value, bool) or z3.is_bool(value) else terms.truncated(value, 1)
        if isinstance(value, bool) or z3.is_bool(value):
            value = terms.extended(value, 1, 8 * type_.bytes, False)
        if type_.bits != 8 * type_.bytes:
            return terms.truncated(value, type_.bits)
        return value

    def word(self, state, region, offset, type_, place):
        size = type_.bytes
        cells = state.memory.cells(region)
        found = cells.get(offset)
        if found is not None and found[0] == size:
            return found[1]
        written = [a for a, (length, _) in cells.items() if a < offset + size and offset < a + length]
        if not written:
            found = region.content.get(offset)
            if found is not None and found[0] == size:
                return found[1]
            if region.initial == "any":
                return self.first_word(region, offset, size)
            if region.initial == "shared":
                times = sum(1 for a in state.loads if a.region is region and _overlap(a, offset, size))
                return z3.BitVec(region.word_name(offset, size) + (f"'{times}" if times else ""),
                                 8 * size)
            if not region.content:
                return POISON
        elif type_.kind == "pointer":
            return POISON
        return joined([self.byte(region, offset + i, cells) for i in range(size)])

    def first_word(self, region, offset, size):
        """The word of memory whose content is unknown and stays."""
        if size > 8 or _torn(region, offset, size):
            return joined([self.byte(region, offset + i, {}) for i in range(size)])
        return z3.BitVec(region.word_name(offset, size), 8 * size)

    def byte(self, region, offset, cells):
        for source in (cells, region.content):
            for at in range(offset, offset - 8, -1):
                found = source.get(at)
                if found is not None and at + found[0] > offset:
                    return byte_of(found[1], offset - at, 8 * found[0])
        if region.initial == "any":
            for at, size in _words_of(region):
                if at <= offset < at + size:
                    return byte_of(z3.BitVec(region.word_name(at, size), 8 * size), offset - at,
                                   8 * size)
            return self.first_word(region, offset, 1)
        return POISON

    def load_somewhere(self, state, address, type_, place, volatile):
        """At an unknown place: of a table of the library's own, a path for each word that stands
        there; of other memory, an unknown word."""
        region, offset = address.region, address.offset
        if region.words is not None:
            return region.words(state, address, type_)
        if region.content and not region.writable:
            return self.listed_word(state, address, type_) or Cases(self.table_cases(address, type_))
        if region.initial in ("any", "shared"):
            value = self.fresh(f"{region.name}+?", 8 * type_.bytes)
            self.note_load(state, Access(region, offset, type_.bytes, value, volatile, place))
            return self.of_type(value, type_)
        raise NotUnderstood(f"{place}: a load at an unknown place of {region.name}")

    def listed_word(self, state, address, type_):
        """Of a table at a place that depends on a number of a list alone. None for other places."""
        for finite, open_ in state.open.items():
            places = finite.values(open_, address.offset)
            if places is None or max(places.values()) + type_.bytes > address.region.bytes:
                continue
            words = {at: self.of_type(self.word(State(), address.region, at, type_, ""), type_)
                     for at in set(places.values())}
            cases = finite.choice({n: words[at] for n, at in places.items()}, type_.bits)
            if cases is not None:
                return Cases(cases)
        return None

    def table_cases(self, address, type_):
        region, offset = address.region, address.offset
        groups = []  # [value, runs of places]
        places = range(address.known % address.step, region.bytes - type_.bytes + 1, address.step)
        for at in places:
            value = self.word(State(), region, at, type_, "")
            for group in groups:
                if _same(group[0], value):
                    run = group[1][-1]
                    if run[1] + address.step == at:
                        run[1] = at
                    else:
                        group[1].append([at, at])
                    break
            else:
                groups.append([value, [[at, at]]])
        if len(groups) == 1:
            return [(True, self.of_type(groups[0][0], type_))]
        return [(terms.disjunction(*(_between(offset, low, high) for low, high in runs)),
                 self.of_type(value, type_)) for value, runs in groups]

    def store(self, state, address, value, type_, place, alignment=1, volatile=False):
        if type_.kind in ("vector", "array"):
            part = type_.element
            for i, one in enumerate(value):
                self.store(state, moved(address, i * part.bytes), one, part, place,
                           alignment if i == 0 else 1, volatile)
            return
        if isinstance(address, Poison):
            self.claim(state, "undefined", False, "a store to nowhere", place)
            raise _Ends
        self.check_access(state, address, type_.bytes, alignment, True, place)
        if not terms.known(address.offset):
            raise NotUnderstood(f"{place}: a store at an unknown place of {address.region.name}")
        if address.region.inside is None and address.offset + type_.bytes > address.region.bytes:
            raise _Ends
        if type_.kind == "int" and type_.bits not in (1, 8 * type_.bytes):
            raise NotUnderstood(f"{place}: a store of {type_.bits} bits")
        state.memory = state.memory.store(address.region, address.offset, type_.bytes, value)
        if address.region.initial in ("any", "shared"):
            state.stores.append(Access(address.region, address.offset, type_.bytes, value, volatile,
                                       place))

    def copy(self, state, to, source, count, place):
        if not terms.known(count) or not terms.known(to.offset) or not terms.known(source.offset):
            raise NotUnderstood(f"{place}: a copy of an unknown place or length")
        if count == 0:
            return
        self.check_access(state, source, count, 1, False, place)
        self.check_access(state, to, count, 1, True, place)
        if source.region is to.region and abs(source.offset - to.offset) < count:
            self.claim(state, "promise", False, "a copy of memory to memory beside it", place)
        words = self.words_between(state, source, count, place)
        cells = state.memory.cells(to.region)
        for edge in (to.offset, to.offset + count):  # what the copy covers a part of
            for at in [a for a, (size, _) in cells.items() if a < edge < a + size]:
                cells = dict(cells)
                size, word = cells.pop(at)
                cells.update({at + i: (1, byte_of(word, i, 8 * size)) for i in range(size)})
        cells = {a: w for a, w in cells.items() if a < to.offset or a >= to.offset + count}
        for at, word in words.items():
            cells[at - source.offset + to.offset] = word
        state.memory = state.memory.with_cells(to.region, cells)
        if to.region.initial in ("any", "shared"):
            for at, (size, value) in words.items():
                state.stores.append(Access(to.region, at - source.offset + to.offset, size, value,
                                           False, place))

    def words_between(self, state, source, count, place):
        """All that stands in a run of bytes: whole words where words stand there, else bytes."""
        region, cells, words = source.region, state.memory.cells(source.region), {}
        at, end = source.offset, source.offset + count
        while at < end:
            size, word = cells.get(at, (0, None))
            if not size and not any(a < at + region.content.get(at, (0,))[0] and at < a + length
                                    for a, (length, _) in cells.items()):
                size, word = region.content.get(at, (0, None))
            if not size or at + size > end:
                size, word = 1, self.byte(region, at, cells)
                written = any(a <= at < a + length for a, (length, _) in cells.items())
                if region.initial == "shared" and not written:
                    raise NotUnderstood(f"{place}: a copy of memory that others write to")
            words[at] = (size, word)
            at += size
        return words

    # ---- instructions

    def do_ret(self, state, frame, instruction):
        value = self.value(frame, instruction.operands[0]) if instruction.operands else None
        function = frame.function
        if value is not None:
            self.check_result(state, function, value)
        state.frames.pop()
        if not state.frames:
            self.finish(state, "returns", value, function.name)
        caller = state.frames[-1]
        caller.values[frame.call.number] = value
        caller.index += 1
        return _CONTINUES

    def check_result(self, state, function, value):
        place = f"what {function.name} returns"
        if function.result_noundef and isinstance(value, Poison):
            self.claim(state, "undefined", False, "a number that means nothing", place)
        if function.result_range and not isinstance(value, (Poison, Address, list)):
            low, high = function.result_range
            bits = function.result.bits
            if terms.known(value):
                value = int(value)
            elif z3.is_bool(value):
                value = terms.extended(value, 1, bits, False)
            self.claim(state, "promise", _in_range(value, low, high, bits),
                       f"{low} to below {high}", place)

    def do_br(self, state, frame, instruction):
        if not instruction.operands:
            return self.went(state, self.go(state, instruction.targets[0]))
        condition = self.number(state, frame, instruction, instruction.operands[0])
        yes, no = instruction.targets
        if not terms.known(condition):
            known = state.known.get(condition.get_id())
            if known is None:
                negated = terms.negation(condition)
                if state.known.get(negated.get_id()):
                    known = False
            if known is None:
                return self.to_targets(state, [(condition, yes), (negated, no)])
            condition = known
        return self.went(state, self.go(state, yes if condition else no))

    def went(self, state, waits):
        if waits is None:
            return _CONTINUES
        raise _Waits

    def to_targets(self, state, cases):
        left = self.open_cases(state, cases)
        made = []
        for condition, target in left:
            other = state.copy() if len(left) > 1 else state
            self.assume(other, condition)
            if self.go(other, target) is None:
                made.append(other)
        if not made:
            raise _Waits
        return made

    def do_switch(self, state, frame, instruction):
        number = self.number(state, frame, instruction, instruction.operands[0])
        if terms.known(number):
            for case, target in instruction.cases:
                if case == int(number):
                    return self.went(state, self.go(state, target))
            return self.went(state, self.go(state, instruction.targets[0]))
        if z3.is_bool(number):
            raise NotUnderstood("a switch on a truth value")
        targets = {}
        for case, target in instruction.cases:
            targets.setdefault(target, []).append(number == case)
        cases = [(terms.disjunction(*c), t) for t, c in targets.items()]
        others = terms.conjunction(*(terms.negation(number == c) for c, _ in instruction.cases))
        return self.to_targets(state, cases + [(others, instruction.targets[0])])

    def do_unreachable(self, state, frame, instruction):
        self.claim(state, "promise", False, "never reached", instruction.place)
        raise _Ends

    def do_phi(self, state, frame, instruction):
        raise NotUnderstood("a phi behind another instruction")

    def arithmetic(self, state, frame, instruction):
        a = self.value(frame, instruction.operands[0])
        b = self.value(frame, instruction.operands[1])
        if isinstance(a, list):
            element = instruction.type.element
            parts = [self.compute(state, instruction, x, y, element.bits) for x, y in zip(a, b)]
            if any(isinstance(p, Cases) for p in parts):
                raise NotUnderstood(f"{instruction.place}: a promise of a vector's that may be broken")
            return parts
        return self.compute(state, instruction, a, b, instruction.type.bits)

    def compute(self, state, instruction, a, b, bits):
        operation = instruction.opcode
        if isinstance(a, Poison) or isinstance(b, Poison):
            if operation in ("udiv", "sdiv", "urem", "srem") and isinstance(b, Poison):
                self.claim(state, "undefined", False, "a divisor that means nothing",
                           instruction.place)
                raise _Ends
            return POISON
        if isinstance(a, Address) or isinstance(b, Address):
            return self.difference(instruction, a, b)
        if operation in ("udiv", "sdiv", "urem", "srem"):
            self.claim(state, "undefined", terms.negation(terms.compare("eq", b, 0, bits)),
                       "a division by what is not 0", instruction.place)
            if operation in ("sdiv", "srem"):
                wraps = terms.conjunction(terms.compare("eq", a, 1 << (bits - 1), bits),
                                          terms.compare("eq", b, terms.mask(bits), bits))
                self.claim(state, "undefined", terms.negation(wraps),
                           "a quotient that fits", instruction.place)
            if terms.known(b) and b == 0:
                raise _Ends
        result = terms.compute(operation, a, b, bits)
        if result is None:
            return POISON
        promises = [_promise(flag, operation, a, b, bits) for flag in sorted(instruction.flags)]
        if operation in ("shl", "lshr", "ashr"):
            promises.append(terms.compare("ult", b, bits, bits))
        kept = terms.conjunction(*promises)
        return self.promised(state, kept, result,
                             f"{operation} {' '.join(sorted(instruction.flags))}", instruction.place)

    def difference(self, instruction, a, b):
        if (instruction.opcode == "sub" and isinstance(a, Address) and isinstance(b, Address)
                and a.region is b.region):
            return terms.compute("sub", a.offset, b.offset, 64)
        raise NotUnderstood(f"{instruction.place}: {instruction.text}")

    def do_icmp(self, state, frame, instruction):
        a = self.value(frame, instruction.operands[0])
        b = self.value(frame, instruction.operands[1])
        if isinstance(a, list):
            bits = _element_bits(frame, instruction)
            return [self.compare(instruction, x, y, bits) for x, y in zip(a, b)]
        return self.compare(instruction, a, b, _operand_bits(frame, instruction, a, b))

    def compare(self, instruction, a, b, bits):
        if isinstance(a, Poison) or isinstance(b, Poison):
            return POISON
        if isinstance(a, Address) or isinstance(b, Address):
            if a.region is b.region:
                return terms.compare(instruction.predicate, a.offset, b.offset, 64)
            if instruction.predicate in ("eq", "ne"):
                return instruction.predicate == "ne"
            raise NotUnderstood(f"{instruction.place}: {instruction.text}")
        return terms.compare(instruction.predicate, a, b, bits)

    def do_zext(self, state, frame, instruction):
        value = self.value(frame, instruction.operands[0])
        if isinstance(value, Poison):
            return value
        if isinstance(value, list):
            raise NotUnderstood(instruction.text)
        bits = _bits(value, instruction.operands[0], frame)
        result = terms.extended(value, bits, instruction.type.bits, False)
        if "nneg" in instruction.flags:
            return self.promised(state, terms.compare("sge", value, 0, bits), result, "zext nneg",
                                 instruction.place)
        return result

    def do_sext(self, state, frame, instruction):
        value = self.value(frame, instruction.operands[0])
        if isinstance(value, Poison):
            return value
        if isinstance(value, list):
            raise NotUnderstood(instruction.text)
        return terms.extended(value, _bits(value, instruction.operands[0], frame),
                              instruction.type.bits, True)

    def do_trunc(self, state, frame, instruction):
        value = self.value(frame, instruction.operands[0])
        if isinstance(value, (Poison, Address)):
            return POISON
        if isinstance(value, list):
            raise NotUnderstood(instruction.text)
        to = instruction.type.bits
        result = terms.truncated(value, to)
        if instruction.flags:
            bits = _bits(value, instruction.operands[0], frame)
            kept = terms.conjunction(*(
                terms.compare("eq", terms.extended(result, to, bits, flag == "nsw"), value, bits)
                for flag in sorted(instruction.flags)))
            return self.promised(state, kept, result, f"trunc {' '.join(sorted(instruction.flags))}",
                                 instruction.place)
        return result

    def do_select(self, state, frame, instruction):
        a, b = (self.value(frame, o) for o in instruction.operands[1:])
        condition = self.value(frame, instruction.operands[0])
        if isinstance(condition, Poison):
            return POISON
        if isinstance(condition, list):
            raise NotUnderstood(instruction.text)
        if terms.known(condition):
            return a if condition else b
        known = state.known.get(condition.get_id())
        if known:
            return a
        negated = terms.negation(condition)
        if state.known.get(negated.get_id()):
            return b
        for finite, open_ in state.open.items():
            left = finite.numbers_for(open_, condition, self.prover)
            if left is not None:
                return a if left == open_ else Cases([(condition, a), (negated, b)]) if left else b
        if (any(isinstance(v, (Address, Poison, list)) for v in (a, b)) or
                frame.function.name in self.parts):
            return Cases([(condition, a), (negated, b)])
        return terms.choose(condition, a, b, 0 if instruction.type.bits == 1 else
                            instruction.type.bits)

    def do_freeze(self, state, frame, instruction):
        value = self.value(frame, instruction.operands[0])
        if isinstance(value, list):
            return [self.frozen(v, instruction.type.element) for v in value]
        return self.frozen(value, instruction.type)

    def frozen(self, value, type_):
        return self.fresh("frozen", type_.bits) if isinstance(value, Poison) else value

    def do_ptrtoint(self, state, frame, instruction):
        return self.value(frame, instruction.operands[0])

    def do_bitcast(self, state, frame, instruction):
        """Of a vector to a number: its first part is the lowest."""
        value = self.value(frame, instruction.operands[0])
        if not isinstance(value, list) or instruction.type.kind != "int":
            raise NotUnderstood(instruction.text)
        if any(isinstance(v, Poison) for v in value):
            return POISON
        result, bits = 0, instruction.type.bits
        each = bits // len(value)
        for i, one in enumerate(value):
            wide = terms.extended(one, each, bits, False)
            result = terms.compute("or", result, terms.compute("shl", wide, i * each, bits), bits)
        return result

    def do_alloca(self, state, frame, instruction):
        key = (len(state.frames), frame.function.name, instruction.number)
        if key not in self.locals:  # the same one on every path, so that paths can meet
            name = f"{frame.function.name}'s {instruction.text.partition(' ')[0]}"
            self.locals[key] = Region(name, instruction.source.bytes,
                                      instruction.alignment)
        state.memory = state.memory.forget(self.locals[key])
        return Address(self.locals[key], 0)

    def do_getelementptr(self, state, frame, instruction):
        base, *indices = instruction.operands
        address, source = self.value(frame, base), instruction.source
        if isinstance(address, Poison):
            return address
        for place, index in enumerate(indices):
            number = self.value(frame, index)
            if isinstance(number, Poison):
                return POISON
            if place and source.kind == "struct":
                address = moved(address, source.offsets[number])
                source = source.parts[number]
                continue
            if place:
                source = source.element
            bits = index.bits if isinstance(index, Int) else _bits(number, index, frame)
            wide = number if bits == 64 else terms.extended(number, bits, 64, True)
            if instruction.flags & {"inbounds", "nusw"}:
                self.claim(state, "promise", _fits(wide, source.bytes),
                           "a distance that does not wrap", instruction.place)
            distance = terms.compute("mul", wide, source.bytes, 64)
            address = moved(address, distance, source.bytes)
        if instruction.flags & {"inbounds", "nusw", "nuw"} and address.region is not None:
            region, offset = address.region, address.offset
            if region.inside is not None:
                inside = region.inside(offset, 0)
            else:
                inside = terms.compare("ule", offset, region.bytes, 64)
            return self.promised(state, inside, address, f"an address in {region.name}",
                                 instruction.place)
        return address

    def do_load(self, state, frame, instruction):
        value = self.load(state, self.value(frame, instruction.operands[0]), instruction.type,
                          instruction.place, instruction.alignment, instruction.volatile)
        for condition, one in (value.cases if isinstance(value, Cases) else [(True, value)]):
            if instruction.noundef and isinstance(one, Poison):
                self.claim(state, "undefined", terms.negation(condition),
                           "a word that nothing has written", instruction.place)
            if instruction.range and not isinstance(one, Poison):
                low, high = instruction.range
                inside = _in_range(one, low, high, instruction.type.bits)
                self.claim(state, "promise", terms.implies(condition, inside),
                           f"{low} to below {high}", instruction.place)
        return value

    def do_store(self, state, frame, instruction):
        value, address = (self.value(frame, o) for o in instruction.operands)
        self.store(state, address, value, instruction.source, instruction.place,
                   instruction.alignment, instruction.volatile)

    def do_extractvalue(self, state, frame, instruction):
        value = self.value(frame, instruction.operands[0])
        for index in instruction.indices:
            value = value[index]
        return value

    def do_insertvalue(self, state, frame, instruction):
        value, part = (self.value(frame, o) for o in instruction.operands)
        index, = instruction.indices
        return value[:index] + [part] + value[index + 1:]

    def do_extractelement(self, state, frame, instruction):
        value, index = (self.value(frame, o) for o in instruction.operands)
        return value[index]

    def do_insertelement(self, state, frame, instruction):
        value, part, index = (self.value(frame, o) for o in instruction.operands)
        return value[:index] + [part] + value[index + 1:]

    def do_shufflevector(self, state, frame, instruction):
        a, b = (self.value(frame, o) for o in instruction.operands[:2])
        both = a + b
        return [both[i] if 0 <= i < len(both) else POISON for i in instruction.indices]

    # ---- calls

    def do_call(self, state, frame, instruction):
        if isinstance(instruction.callee, Assembly):
            return self.assembly(state, frame, instruction)
        if not isinstance(instruction.callee, Symbol):
            raise NotUnderstood(f"{instruction.place}: a call of an unknown function")
        name = instruction.callee.name
        if name.startswith(("llvm.lifetime", "llvm.experimental.noalias", "llvm.dbg")):
            return None
        arguments = [self.value(frame, o) for o in instruction.operands]
        if name in self.instead:
            return self.instead[name](self, state, arguments)
        if name in self.module.functions:
            self.enter(state, name, arguments, instruction)
            return _CONTINUES
        if name.startswith("llvm."):
            return self.intrinsic(state, name, instruction, arguments)
        if name in self.services:
            return self.services[name](self, state, arguments)
        raise NotUnderstood(f"{instruction.place}: nothing says what {name} does")

    def assembly(self, state, frame, instruction):
        text = instruction.callee.text
        if '"brk #0xF004"' in text:
            self.finish(state, "faults", None, instruction.place)
        if 'asm sideeffect ""' in text or 'asm ""' in text:
            return self.value(frame, instruction.operands[0])
        raise NotUnderstood(f"{instruction.place}: {text}")

    def intrinsic(self, state, name, instruction, arguments):
        kind = name.split(".")[1]
        if any(isinstance(a, list) for a in arguments):
            raise NotUnderstood(f"{instruction.place}: {name}")
        if any(isinstance(a, Poison) for a in arguments):
            if instruction.type.kind == "void":
                self.claim(state, "undefined", False, f"{name} of what means nothing",
                           instruction.place)
                raise _Ends
            return _undefined(instruction.type)
        if kind in ("umin", "umax", "smin", "smax"):
            a, b = arguments
            bits = instruction.type.bits
            less = terms.compare("ult" if kind[0] == "u" else "slt", a, b, bits)
            return terms.choose(less, *((a, b) if kind.endswith("min") else (b, a)), bits)
        if name.startswith(("llvm.umul.with.overflow", "llvm.uadd.with.overflow")):
            a, b = arguments
            width = instruction.type.parts[0].bits
            operation = kind[1:]
            return [terms.compute(operation, a, b, width),
                    terms.overflows(operation, a, b, width, False)]
        if kind == "memcpy":
            to, source, count, _ = arguments
            self.copy(state, to, source, count, instruction.place)
            return None
        if kind in ("ctlz", "cttz", "ctpop"):
            return self.count_bits(state, kind, arguments, instruction)
        if name.startswith("llvm.load.relative"):
            return self.load_relative(state, instruction, *arguments)
        raise NotUnderstood(f"{instruction.place}: {name}")

    def load_relative(self, state, instruction, table, distance):
        at = moved(table, distance, 4)
        cases = []
        for place in range(0, table.region.bytes, 4):
            number = table.region.content[place][1]
            if (not isinstance(number, RelativeNumber) or
                    not _same(self.constant(number.base), table)):
                raise NotUnderstood(f"{instruction.place}: a table of distances")
            cases.append((terms.compare("eq", at.offset, place, 64), self.constant(number.target)))
        self.check_access(state, at, 4, 4, False, instruction.place)
        return Cases(cases)

    def count_bits(self, state, kind, arguments, instruction):
        value, bits = arguments[0], instruction.type.bits
        if kind == "ctpop":
            if terms.known(value):
                return bin(value).count("1")
            ones = [z3.ZeroExt(bits - 1, z3.Extract(i, i, value)) for i in range(bits)]
            return sum(ones[1:], ones[0])
        if arguments[1]:
            self.claim(state, "promise", terms.negation(terms.compare("eq", value, 0, bits)),
                       f"{kind} of what is not 0", instruction.place)
        if terms.known(value):
            if value == 0:
                return bits
            return bits - value.bit_length() if kind == "ctlz" else (value & -value).bit_length() - 1
        result = bits
        for i in range(bits) if kind == "ctlz" else reversed(range(bits)):
            one = terms.truncated(terms.compute("lshr", value, i, bits), 1)
            result = terms.choose(one, bits - 1 - i if kind == "ctlz" else i, result, bits)
        return result


class _Waits(_Ends):
    pass


_CONTINUES = object()
Machine.continues = _CONTINUES


class _AnyOf:
    """Known numbers that differ where paths meet; an unknown one is made of them when it is clear how
    many bits it has. Used by nothing behind the meeting, or the executor stops."""

    def __init__(self, machine, name, values):
        self.values = values


for _operation in ("add", "sub", "mul", "udiv", "sdiv", "urem", "srem", "shl", "lshr", "ashr", "and",
                   "or", "xor"):
    setattr(Machine, "do_" + _operation, Machine.arithmetic)


def moved(address, distance, step=1):
    """So many bytes further; `step` divides them."""
    if isinstance(address, Poison) or isinstance(distance, Poison):
        return POISON
    if terms.known(address.offset) and terms.known(distance):
        return Address(address.region, address.offset + distance & terms.mask(64))
    offset = terms.compute("add", address.offset, distance, 64)
    if terms.known(distance):
        known, each = address.known + distance, address.step
    elif terms.known(address.offset):
        known, each = address.offset, step
    else:
        known, each = address.known, _gcd(address.step, step)
    return Address(address.region, offset, known % each if each > 1 else 0, max(each, 1))


def _fits(number, step):
    """Whether so many steps, with sign, are a number of 64 bits with sign."""
    if step <= 1:
        return True
    if (not terms.known(number) and
            number.decl().kind() in (z3.Z3_OP_ZERO_EXT, z3.Z3_OP_SIGN_EXT) and
            number.arg(0).size() <= 32 and step < 1 << 31):
        return True
    most = terms.mask(63) // step
    moved_up = terms.compute("add", number, most, 64)  # from -most to most: 0 to 2 * most
    return terms.compare("ule", moved_up, 2 * most, 64)


def _gcd(a, b):
    while b:
        a, b = b, a % b
    return a


def _between(offset, low, high):
    if low == high:
        return offset == z3.BitVecVal(low, 64)
    if low == 0:
        return z3.ULE(offset, high)
    return z3.And(z3.UGE(offset, low), z3.ULE(offset, high))


def _in_range(value, low, high, bits):
    """From `low` up to but not with `high`, around the end of the numbers if need be."""
    span = (high - low) & terms.mask(bits)
    moved_down = terms.compute("sub", value, low & terms.mask(bits), bits)
    return terms.compare("ult", moved_down, span, bits)


def _promise(flag, operation, a, b, bits):
    if operation in ("shl", "lshr", "ashr") and terms.known(b) and b >= bits:
        return False
    if flag == "disjoint":
        return terms.compare("eq", terms.compute("and", a, b, bits), 0, bits)
    if flag == "exact":
        if operation in ("lshr", "ashr"):
            back = terms.compute("shl", terms.compute(operation, a, b, bits), b, bits)
            return terms.compare("eq", back, a, bits)
        rest = {"udiv": "urem", "sdiv": "srem"}[operation]
        return terms.compare("eq", terms.compute(rest, a, b, bits), 0, bits)
    if operation == "shl":
        back = "ashr" if flag == "nsw" else "lshr"
        shifted = terms.compute("shl", a, b, bits)
        return terms.compare("eq", terms.compute(back, shifted, b, bits), a, bits)
    return terms.negation(terms.overflows(operation, a, b, bits, flag == "nsw"))


def _undefined(type_):
    if type_.kind == "struct":
        return [_undefined(p) for p in type_.parts]
    if type_.kind in ("array", "vector"):
        return [_undefined(type_.element) for _ in range(type_.count)]
    return POISON


def _bits(value, operand, frame):
    """How many bits a number has."""
    if isinstance(operand, Int):
        return operand.bits
    if isinstance(value, bool) or z3.is_bool(value):
        return 1
    if not terms.known(value):
        return value.size()
    return _types_of(frame.function)[operand.number].bits


def _operand_bits(frame, instruction, a, b):
    for operand, value in zip(instruction.operands, (a, b)):
        if isinstance(operand, Int):
            return operand.bits
        if isinstance(value, (bool, int, z3.ExprRef)):
            return _bits(value, operand, frame)
    return 64


def _element_bits(frame, instruction):
    """Of the parts of the vectors that an instruction works on."""
    for operand in instruction.operands:
        if isinstance(operand, Local):
            return _types_of(frame.function)[operand.number].element.bits
    raise NotUnderstood(instruction.text)


_types = {}


def _types_of(function):
    if function.name not in _types or _types[function.name][0] is not function:
        made = {local.number: t for local, t in zip(function.arguments, function.argument_types)}
        for block in function.blocks:
            for instruction in block.instructions:
                made[instruction.number] = instruction.type
        _types[function.name] = (function, made)
    return _types[function.name][1]


def _same(a, b):
    if a is b:
        return True
    if isinstance(a, Address) and isinstance(b, Address):
        return a.region is b.region and terms.same(a.offset, b.offset)
    if isinstance(a, list) and isinstance(b, list):
        return len(a) == len(b) and all(_same(x, y) for x, y in zip(a, b))
    plain = (bool, int, z3.ExprRef)
    return isinstance(a, plain) and isinstance(b, plain) and terms.same(a, b)


def _plain(value):
    """What paths must have in common to meet."""
    if isinstance(value, Address) and terms.known(value.offset):
        return (value.region.name, value.offset)
    if isinstance(value, int):
        return value
    return None


def _overlap(access, offset, size):
    return (not terms.known(access.offset) or
            access.offset < offset + size and offset < access.offset + access.bytes)


_any_words = {}


def _words_of(region):
    return _any_words.setdefault(region, [])


def _torn(region, offset, size):
    """Whether a word of unknown memory overlaps another one without being the same."""
    words = _words_of(region)
    if (offset, size) in words:
        return False
    if any(a < offset + size and offset < a + s for a, s in words):
        return True
    words.append((offset, size))
    return False
