"""Mip chains: the code of korvel_init_multi_level_surface, run for a known number of levels and planes.

The code sizes the images of all levels and places them afterwards. Sizing parts into many paths, the
alignment rules being inlined; placing does not. So the loop that sizes by the rules is run by itself
(rounds of it, in the theorem), and here it stands for itself: it leaves each image's width and height
and each flag buffer's words, which are unknown. All that is placed is then one path or a few, for all
15 levels at once.
"""

import itertools
from dataclasses import dataclass, field

import z3

import setting
from executor import terms
from executor.ir import Assembly, Symbol
from executor.machine import Machine, NotUnderstood
from executor.memory import Access, Address, Poison
from format_rows import OF_A_PLANE, AnyFormat
from layouts import FLAG_UBWC, READ_HEAD, equal, has_flag, rounded_up, times_depth, unknown, wide
from records import LAYOUT

EXPORT = "korvel_init_multi_level_surface"
REFUSED = "refused_extent"
CHAIN_BYTES, FLAG_BYTES_AT = 240, 120  # of a plane's sizes, in the code's own memory
IMAGE_WORDS = ("image_offset", "image_size", "image_pitch", "image_slice_pitch",
               "image_element_size", "image_width", "image_height", "flag_valid")
SIZE_WORDS = ("flag_size", "flag_pitch")
PLACE_WORDS = ("flag_offset", "flag_slice_pitch")
LEVEL_WORDS = ("slices", "tiled", "size", "planes", "lrz_valid", "lrz_fc_valid")
SAMPLE_TILES = ("_ZN6korvel18kSampleTilesBySizeE", "_ZN6korvel17kVideoSampleTilesE")
TILES = "_ZN6korvel17kTileSizesByBytesE"
OTHER = "_ZN6korvel14kOtherTileSizeE"


# ---- the loops of the code


class Loop:
    def __init__(self, header, body):
        self.header, self.body = header, body
        self.parent = None


class Loops:
    """The loops of a function, each with the blocks inside it."""

    def __init__(self, function):
        self.blocks = function.blocks
        self.after = [self._successors(b) for b in function.blocks]
        before = [[] for _ in self.blocks]
        for number, successors in enumerate(self.after):
            for successor in successors:
                before[successor].append(number)
        dominators = self.dominators = self._dominators(before)
        bodies = {}
        for number, successors in enumerate(self.after):
            for header in successors:
                if header in dominators[number]:  # an edge back
                    bodies.setdefault(header, {header}).update(self._body(header, number, before))
        self.loops = [Loop(h, body) for h, body in bodies.items()]
        for loop in self.loops:
            around = [o for o in self.loops if o is not loop and loop.header in o.body]
            loop.parent = min(around, key=lambda o: len(o.body), default=None)

    def _successors(self, block):
        last = block.instructions[-1]
        return list(last.targets) + [target for _, target in last.cases]

    def _dominators(self, before):
        everything = set(range(len(self.blocks)))
        found = [everything] * len(self.blocks)
        found[0] = {0}
        changed = True
        while changed:
            changed = False
            for number in range(1, len(self.blocks)):
                coming = [found[b] for b in before[number]]
                new = {number} | (set.intersection(*coming) if coming else set())
                if new != found[number]:
                    found[number], changed = new, True
        return found

    def _body(self, header, number, before):
        body, stack = {header}, [number]
        while stack:
            top = stack.pop()
            if top not in body:
                body.add(top)
                stack.extend(before[top])
        return body

    def calls(self, loop, part):
        return any(i.opcode == "call" and isinstance(i.callee, Symbol) and part in i.callee.name
                   for number in loop.body for i in self.blocks[number].instructions)

    def faults(self, number):
        return any(i.opcode == "call" and isinstance(i.callee, Assembly) and "brk" in i.callee.text
                   for i in self.blocks[number].instructions)

    def whole_tile_blocks(self, loop):
        """Those that the first branch of the loop leads to alone, of the way that comes first."""
        first = self.after[loop.header][0]
        return {b for b in range(len(self.blocks)) if first in self.dominators[b]}

    def way_out(self, loop):
        """The one (block inside, block behind) by which the loop is left, but for faults."""
        ways = {(b, s) for b in loop.body for s in self.after[b]
                if s not in loop.body and not self.faults(s)}
        if len(ways) != 1:
            raise SystemExit(f"a loop of {EXPORT} is left in {len(ways)} ways")
        return ways.pop()


_loops = {}


def loops_of(module):
    if id(module) not in _loops:
        _loops[id(module)] = (module, Loops(module.functions[EXPORT]))
    return _loops[id(module)][1]


def sizing_loop(module):
    """The outermost loop that asks the alignment rules: over the levels, and in it over the planes."""
    loops = loops_of(module)
    found = [l for l in loops.loops if l.parent is None and loops.calls(l, REFUSED)]
    if len(found) != 1:
        raise SystemExit(f"{len(found)} loops of {EXPORT} size images by the rules")
    return found[0]


# ---- a call


class ChainMachine(Machine):
    """Paths do not meet at the rounds of loops, but at one block that all of them pass."""

    def __init__(self, module, prover):
        super().__init__(module, prover, services=dict(setting.SERVICES), meets=[EXPORT])
        self.at_meeting = self.goes_on
        self.meets_at = None  # a block: paths are kept there, by what tells them apart
        self.kept = {}
        self.at_header = None  # called with a path at the start of a round; True: it goes no further
        self.at_edge = None  # called with a path that has gone from one block to another; the same

    def goes_on(self, state, _phis):
        if not (self.at_header and self.at_header(state)):
            self.waiting[((EXPORT,), next(self.counter))] = [state]
        return True

    def go(self, state, target):
        came_from = state.frame.block
        waits = super().go(state, target)
        if waits is None and len(state.frames) == 1 and self.at_edge and self.at_edge(
                state, came_from, target):
            return []
        if waits is None and target == self.meets_at and len(state.frames) == 1:
            self.kept.setdefault(_told_apart(state), []).append(state)
            return []
        return waits

    def meeting(self, key, states):
        """What all of them have loaded and stored alike has been loaded and stored once."""
        first = states[0]
        accesses = first.loads, first.stores
        for kept, others in zip(accesses, ([s.loads for s in states], [s.stores for s in states])):
            for other in others:
                if list(map(_done, other)) != list(map(_done, kept)):
                    raise NotUnderstood(f"{EXPORT}: paths that meet have loaded or stored other words")
        super().meeting(key, states)
        first.loads, first.stores = accesses
        return first

    def starts(self):
        """One path of those that have met, for each way in which they differ that matters."""
        return [self.meeting(None, states) for states in self.kept.values()]


def _told_apart(state):
    """Truth values that are known behind the meeting, and places in tables."""
    frame = state.frame
    block = frame.function.blocks[frame.block]
    phis = tuple(_plain(frame.values[i.number]) for i in block.instructions if i.opcode == "phi")
    places = tuple((n, v.region.name, v.offset if terms.known(v.offset) else v.offset.get_id())
                   for n, v in sorted(frame.values.items()) if isinstance(v, Address) and v.region)
    return phis, places if phis[:1] == (True,) else ()


def _done(access):
    value = access.value
    return (access.region.name, access.offset, access.bytes,
            value.get_id() if isinstance(value, z3.ExprRef) else value)


def _plain(value):
    return value if terms.known(value) and not isinstance(value, Address) else None


@dataclass
class Case:
    """Of what is known in a run: the rest is any."""

    chip: object
    tiled: bool = True  # tiling mode 1, else any other
    flags: str = ""  # of flag buffers: "made", "not compressed" though asked for, or "not asked" for
    exact_tiles: bool = False  # of flag buffers, by the code's own tables; else any
    more: list = field(default_factory=list)  # conditions
    formats: object = None  # format_classes.FormatClass, by the code's own table; None: any format

    @property
    def flag_buffers(self):
        return self.flags == "made"


# What the code asks of a format behind the sizing by the rules.
ASKED = ("rules", "bytes", "ubwc_group", "video_sample_tile", "has record", "is unknown",
         *(f"plane {plane}.{name}" for plane in range(3) for name in OF_A_PLANE))


class Call:
    """A call of the initialiser, and what is known of it."""

    def __init__(self, proof, case, facts=None, names=ASKED):
        self.proof, self.case, self.chip = proof, case, case.chip
        self.machine = ChainMachine(proof.module, proof.prover)
        self.machine.exhausted = 50_000_000
        self.start_memory = setting.place_chip(self.machine, self.chip)
        self.format = None if case.formats else AnyFormat(
            self.machine, facts, apart=False,
            names=list(names) + list(facts or {}) if names else None)
        self.record = setting.record("record", LAYOUT.bytes, 8, True, True)
        self.record.named = lambda offset, size: (
            f"{LAYOUT.name_of(offset)[0]} as it was" if LAYOUT.name_of(offset)[1] == size
            else f"record+{offset}:{size}")
        self.given = {
            "width": unknown("width"), "height": unknown("height"), "depth": unknown("depth"),
            "format": case.formats.number if case.formats else unknown("format"),
            "samples": unknown("samples"),
            "tiling_mode": 1 if case.tiled else unknown("tiling_mode"),
            "flags": unknown("flags", 64), "planes": unknown("planes")}
        self.head = {name: z3.BitVec(self.record.named(at, size), 8 * size)
                     for name, (at, size) in READ_HEAD.items()}
        self.conditions = [*self._formats(), *self.chip.conditions, *case.more]
        if not case.tiled:
            self.conditions.append(terms.negation(equal(self.given["tiling_mode"], 1, 32)))
        if not case.exact_tiles:
            for name in SAMPLE_TILES:
                self.machine.variable(name).words = _any_word(name)
        if not case.formats:
            self.machine.variable(TILES).words = _any_power_of_two(self.machine, TILES)
            show_other_tile(self.machine)
        self.late = []
        self.machine.at_load = self._note_late
        self.levels = self.planes = None  # where a run knows them

    def _formats(self):
        if not self.case.formats:
            return [self.format.condition, self.format.number_is_the_rows(), *self._flag_buffers()]
        if self.case.formats.finite is not None:
            self.machine.finite.append(self.case.formats.finite)
        return self.case.formats.conditions

    def _flag_buffers(self):
        """In the words of the code, which then asks no more."""
        flag = terms.compute("and", self.given["flags"], 1 << FLAG_UBWC, 64)
        not_asked = terms.disjunction(terms.compare("ugt", self.given["format"], 721, 32),
                                      terms.compare("eq", flag, 0, 64))
        made = terms.compare("ne", terms.compute("and", self.format.word("ubwc_group"),
                                                 terms.vector(self.chip.words["ubwc"], 8), 8), 0, 8)
        return {"not asked": [not_asked],
                "not compressed": [terms.negation(not_asked), terms.negation(made)],
                "made": [terms.negation(not_asked), made]}[self.case.flags]

    def _note_late(self, state, access):
        if state.stores:
            self.late.append(access)

    # ---- running

    def begin(self):
        """Runs up to the block behind the sizing by the rules. Returns the outcomes of refused calls,
        and one path for each of the others' kinds, of any number of levels and planes."""
        loops, loop = loops_of(self.proof.module), sizing_loop(self.proof.module)
        last, self.machine.meets_at = loops.way_out(loop)

        def pass_over(state):
            if state.frame.block == loop.header:
                state.frame.block = last
                self.machine.go(state, self.machine.meets_at)
                return True
            return False

        self.machine.at_header = pass_over
        outcomes = self.proof.run(self.machine, EXPORT,
                                  [setting.at(self.record), *self.given.values()],
                                  self.start_memory, self.conditions)
        self.machine.at_header, self.machine.meets_at = None, None
        return outcomes, self.machine.starts()

    def place(self, start, levels, planes):
        """All outcomes behind the sizing, for so many levels and planes."""
        self.levels, self.planes = levels, planes
        numbers = [(self.head["levels"], z3.BitVecVal(levels, 32)),
                   (self.given["planes"], z3.BitVecVal(planes, 32))]
        state = with_numbers(start, numbers)
        if state is None:
            return []
        if not whole_tiles(state):
            self._leave_sizes(state)
        self.late.clear()
        loops = loops_of(self.proof.module)
        self.plane_loop = placing_loop(self.proof.module)
        self.tile_blocks = loops.whole_tile_blocks(self.plane_loop)
        self.machine.at_header, self.machine.at_edge = self._round, self._edge
        paths, steps = self.machine.paths, self.machine.steps
        outcomes = self.machine.resume([state])
        self.proof.report.paths += self.machine.paths - paths
        self.proof.report.instructions += self.machine.steps - steps
        return outcomes

    # Sizing in whole tiles: what it leaves of a plane is shown, and then forgotten but for the words.

    def _round(self, state):
        block = state.frame.block
        if block == self.plane_loop.header:
            state.notes["plane"] = state.notes.get("plane", -1) + 1
            state.notes.setdefault("before it", frozenset(state.frame.values))
            state.notes["tile"] = {}
            state.notes["level"] = -1
            state.notes["stored"] = len(state.stores)
        elif block in self.tile_blocks and self._is_over_texels(state):
            self._next_texels(state)
        return False

    def _is_over_texels(self, state):
        return len(self._phis(state)) == 2

    def _phis(self, state):
        frame = state.frame
        return [i.number for i in frame.function.blocks[frame.block].instructions
                if i.opcode == "phi"]

    def _next_texels(self, state):
        """The size of a level in texels: that of level 0 as it is given, then half of the last."""
        number, texels = self._phis(state)
        level = state.frame.values[number]
        self.proof.require("levels are sized in their order", level == state.notes["level"] + 1)
        state.notes["level"] = level
        expected = first_texels(self.given) if level == 0 else halved(texels_of(level - 1))
        self.proof.show("a level has half the texels of the one before it", state.conditions,
                        equal(state.frame.values[texels], z3.Concat(*reversed(expected)), 64))
        state.frame.values[texels] = z3.Concat(*reversed(texels_of(level)))
        for side in texels_of(level):
            state.assume(side >= 1)

    def _edge(self, state, came_from, target):
        if came_from not in self.tile_blocks or target in self.tile_blocks:
            return False
        if self.levels:
            self._sized_in_tiles(state)
        # What means nothing on one path and something on another would mean nothing on both.
        values = state.frame.values
        nothing = frozenset(n for n in state.notes["before it"] if isinstance(values[n], Poison))
        self.machine.waiting.setdefault(
            ((EXPORT,), "sized", target, state.notes["plane"], nothing), []).append(state)
        return True

    def _sized_in_tiles(self, state):
        plane, known, show = state.notes["plane"], state.conditions, self.proof.show
        chains = self.chains(state)
        cells, base = state.memory.cells(chains), CHAIN_BYTES * plane
        tile = state.notes["tile"] or dict(enumerate(OTHER_TILE))
        for level in range(self.levels):
            image = cells[base + 8 * level][1]
            for at, side in enumerate(texels_of(level)):
                show("an image is whole tiles", known, equal(
                    terms.truncated(terms.compute("lshr", image, 32 * at, 64), 32),
                    rounded_up(side, terms.extended(tile[at], 16, 32, False), 32), 32))
        if self.case.flag_buffers:
            self.show_flag_sizes(state, plane, self.levels)
        self._leave_sizes(state, [plane])

    def show_flag_sizes(self, state, plane, levels):
        """Of a path that has sized the flag buffers of a plane. Returns the tile's two sides."""
        known, show, require = state.conditions, self.proof.show, self.proof.require
        cells = state.memory.cells(self.chains(state))
        new = state.stores[state.notes["stored"]:]
        written = {a.offset: a for a in new}
        expected = {LAYOUT.word((level, plane), n) for level in range(levels) for n in SIZE_WORDS}
        require("the words of flag buffers' sizes are written once each, and no others",
                len(new) == len(written) and {(a.offset, a.bytes) for a in new} == expected
                and all(a.region is self.record for a in new))
        least = self.chip.word("min_level_extent")
        least = terms.choose(terms.compare("ugt", least, 1, 32), least, 1, 32)
        first = written[LAYOUT.word((0, plane), "flag_pitch")[0]].value
        size = written[LAYOUT.word((0, plane), "flag_size")[0]].value
        tiles, tile = [], []
        for term, given in zip(sides_of(first, size), (self.base_width(), self.given["height"])):
            quotient, divisor, covered = term
            show("a power of two is covered, that of the surface's own size", known,
                 next_power_of_two(covered, given))
            tiles.append(quotient)
            tile.append(divisor)
        for level in range(levels):
            pitch, rows = (at_least(terms.compute("lshr", t, level, 32), least) for t in tiles)
            at = CHAIN_BYTES * plane + FLAG_BYTES_AT + 8 * level
            size = written[LAYOUT.word((level, plane), "flag_size")[0]].value
            show("a flag buffer's pitch", known, equal(
                written[LAYOUT.word((level, plane), "flag_pitch")[0]].value, pitch, 32))
            show("a flag buffer's size", known,
                 equal(size, wide(terms.compute("mul", rows, pitch, 32)), 64))
            require("the size that is stored is the one that is counted",
                    cells[at][0] == 8 and terms.same(cells[at][1], size))
        return tile

    def base_width(self):
        return rounded_up(self.given["width"], 64, 32)

    def _leave_sizes(self, state, planes=None):
        """What sizing by the rules leaves."""
        if not self.levels or not self.planes:
            return
        chains = self.chains(state)
        if planes is not None:  # of the plane, nothing else is left
            cells = {a: c for a, c in state.memory.cells(chains).items()
                     if not 0 <= a - CHAIN_BYTES * planes[0] < CHAIN_BYTES}
            state.memory = state.memory.with_cells(chains, cells)
            state.stores = state.stores[:state.notes["stored"]]
        for plane, level in itertools.product(range(self.planes) if planes is None else planes,
                                              range(self.levels)):
            at = CHAIN_BYTES * plane
            for word, name in ((0, "image_width"), (4, "image_height")):
                state.memory = state.memory.store(chains, at + 8 * level + word, 4,
                                                  size_of(name, level, plane))
            if self.case.flag_buffers:
                size = wide(size_of("flag_size", level, plane))
                state.memory = state.memory.store(chains, at + FLAG_BYTES_AT + 8 * level, 8, size)
                self._store(state, (level, plane), "flag_pitch", size_of("flag_pitch", level, plane))
                self._store(state, (level, plane), "flag_size", size)

    def _store(self, state, where, name, value):
        at, bytes_ = LAYOUT.word(where, name)
        state.memory = state.memory.store(self.record, at, bytes_, value)
        state.stores.append(Access(self.record, at, bytes_, value, False, "sized by the rules"))

    def chains(self, state):
        """The code's own memory of sizes."""
        found = {v.region for v in state.frame.values.values()
                 if isinstance(v, Address) and v.region in self.machine.locals.values()}
        sizes = [r for r in found if r.bytes == 3 * CHAIN_BYTES]
        if len(sizes) != 1:
            raise SystemExit(f"{EXPORT} has {len(sizes)} arrays of chains")
        return sizes[0]

    # ---- what is known

    @property
    def placement(self):
        if self.planes > 1:
            return "own" if self.case.flag_buffers else "none"
        return "gathered" if self.case.tiled else "none"

    def wide_property(self, name):
        return terms.extended(self.chip.words[name], 16, 64, False)

    def image_alignment(self):
        return self.chip.word("tiled_alignment" if self.case.tiled else "linear_alignment")

    def element_bytes(self):
        return terms.compute("mul", self.format.wide("bytes"), self.given["samples"], 32)


OTHER_TILE = (64, 16)  # elements: of elements that the table of tiles has no row for


def show_other_tile(machine):
    content = machine.variable(OTHER).content
    if tuple(content[at][1] for at in (0, 2)) != OTHER_TILE:
        raise SystemExit(f"{OTHER} is not {OTHER_TILE}")


def texels_of(level):
    """Width and height of a level, where a round starts."""
    return unknown(f"texels wide[{level}]"), unknown(f"texels high[{level}]")


def first_texels(given):
    return [terms.vector(at_least_1(side), 32) for side in (rounded_up(given["width"], 64, 32),
                                                            given["height"])]


def halved(texels):
    return [at_least_1(side >> 1) for side in texels]


def at_least_1(side):
    return terms.choose(terms.compare("sge", side, 1, 32), side, 1, 32)


def at_least(value, least):
    return terms.choose(terms.compare("uge", value, least, 32), value, least, 32)


def next_power_of_two(power, size):
    """Whether one is the least power of two that is not below a size; 0 above 2^31."""
    fits = z3.And(power != 0, power & (power - 1) == 0, z3.UGE(power, size),
                  z3.Or(power == 1, z3.ULT(z3.LShR(power, 1), size)))
    return z3.If(z3.ULE(size, 1 << 31), fits, power == 0)


def sides_of(pitch, size):
    """(tiles, tile, elements) of the width and of the height: of a quotient of unknown numbers, rounded
    up, which a pitch and a size of a flag buffer have been made of."""
    across = _quotients(pitch)
    both = _quotients(size)
    down = [q for q in both if not any(q.eq(a) for a in across)]
    if len(across) != 1 or len(both) > 2 or len(down) > 1:
        raise SystemExit(f"{EXPORT}: a flag buffer's size is made in another way")
    made = []
    for quotient in (across[0], (down or across)[0]):
        dividend, divisor = quotient.children()
        made.append((quotient, divisor, z3.simplify(dividend - divisor + 1)))
    return made


def _quotients(term):
    """The outermost quotients in a term."""
    found, seen, stack = [], set(), [term]
    while stack:
        top = stack.pop()
        if top.get_id() in seen:
            continue
        seen.add(top.get_id())
        if z3.is_app_of(top, z3.Z3_OP_BUDIV):
            found.append(top)
        else:
            stack.extend(top.children())
    return found


def placing_loop(module):
    """The outermost loop over the planes behind the sizing by the rules: it has loops in it."""
    loops = loops_of(module)
    found = [l for l in loops.loops if l.parent is None and l is not sizing_loop(module)
             and any(o.parent is l for o in loops.loops)]
    if len(found) != 1:
        raise SystemExit(f"{len(found)} loops of {EXPORT} place the images")
    return found[0]


def whole_tiles(state):
    """Whether a path behind the sizing by the rules has not sized anything yet."""
    frame = state.frame
    phis = [i for i in frame.function.blocks[frame.block].instructions if i.opcode == "phi"]
    if len(phis) != 1 or not isinstance(frame.values[phis[0].number], bool):
        raise SystemExit(f"{EXPORT}: what sizes whole tiles is not told by one truth value")
    return frame.values[phis[0].number]


def with_numbers(state, numbers):
    """A path with known numbers in the place of unknown ones. None where it cannot be taken."""
    names = {str(unknown_) for unknown_, _ in numbers}

    def put(value):
        if not isinstance(value, z3.ExprRef) or not terms.unknowns(value) & names:
            return value
        made = z3.simplify(z3.substitute(value, *numbers))
        if z3.is_bv_value(made):
            return made.as_long()
        if z3.is_true(made) or z3.is_false(made):
            return z3.is_true(made)
        return made

    other = state.copy()
    conditions = [put(c) for c in other.conditions]
    if any(c is False for c in conditions):
        return None
    other.conditions, other.known = [], {}
    for condition in conditions:
        other.assume(condition)
    frame = other.frame
    frame.values = {n: put(v) for n, v in frame.values.items()}
    return other


def size_of(name, level, plane):
    """What sizing leaves of an image or a flag buffer, 32 bits."""
    return unknown(f"{name}[{level}][{plane}]")


def _any_word(table):
    """For a table whose words do not matter: any, the same at the same place."""
    return lambda state, address, type_: z3.BitVec(
        f"{table} at {z3.simplify(address.offset).sexpr()}", type_.bits)


def _any_power_of_two(machine, table):
    """For the table of tiles: all its words are powers of two up to 2^14."""
    region = machine.variable(table)
    for _, value in region.content.values():
        if not (terms.known(value) and value and value & (value - 1) == 0 and value <= 1 << 14):
            raise SystemExit(f"{table} holds {value}, which is not a power of two")

    def load(state, address, type_):
        word = _any_word(table)(state, address, type_)
        place = address.known % 4 // 2  # the width, then the rows
        state.notes["tile"] = {**state.notes.get("tile", {}), place: word}
        state.assume(z3.And(word != 0, word & (word - 1) == 0, z3.ULE(word, 1 << 14)))
        return word
    return load


# ---- what is documented of the words


class Relations:
    """What the words of a laid-out chain are, each by those before it. `word(where, name)` gives a
    word that stands on the right side of a relation."""

    def __init__(self, call_like, word):
        self.of, self.word = call_like, word
        self.lemmas = []  # on the products in them

    def all(self, end=0):
        """(what, where, name, expected) of every word of the planes and of every level's size; in
        the order of the chains. `end`: of the planes before. Behind them, self.end is where the
        planes end."""
        of, word = self.of, self.word
        levels, planes = of.levels, of.planes
        for plane in range(planes):
            gathered = 0
            if of.placement == "gathered":
                for level in range(levels):
                    yield ("flag buffers stand one behind the other", (level, plane), "flag_offset",
                           gathered)
                    gathered = _sum(word((level, plane), "flag_offset"),
                                    word((level, plane), "flag_size"))
            flag_slice = rounded_up(gathered, of.wide_property("level_size_alignment"), 64)
            flags = self.all_slices(flag_slice)
            start = rounded_up(_sum(end, flags), of.wide_property("level_offset_alignment"), 64)
            first = "flag_offset" if of.placement == "own" else "image_offset"
            at = start
            for level in range(levels):
                yield from self.image(level, plane, at, first)
                if level == 0:
                    start = word((0, plane), first)
                at = word((level, plane), first)
                if of.placement == "own":
                    at = _sum(at, word((level, plane), "flag_size"))
                at = _sum(at, word((level, plane), "image_size"))
            slice_ = rounded_up(terms.compute("sub", at, start, 64),
                                of.wide_property("base_alignment"), 64) if levels else 0
            for level in range(levels):
                yield "a slice is the whole chain", (level, plane), "image_slice_pitch", slice_
                if level == 0:
                    slice_ = word((0, plane), "image_slice_pitch")
                if of.placement == "own":
                    yield "so is one of flag buffers", (level, plane), "flag_slice_pitch", slice_
                elif of.placement == "gathered":
                    yield ("all flag buffers, rounded up", (level, plane), "flag_slice_pitch",
                           flag_slice)
            end = _sum(start, self.all_slices(slice_))
        self.end = end

    def all_slices(self, bytes_):
        """Lemma: a product with the factor 0 is 0."""
        depth = self.of.given["depth"]
        made = times_depth(depth, bytes_)
        if not terms.known(bytes_):
            self.lemmas.append(z3.Implies(bytes_ == 0, made == 0))
        return made

    def image(self, level, plane, at, first):
        of, word, where = self.of, self.word, (level, plane)
        own = 0
        if of.placement == "own":
            yield "a flag buffer stands in front of its image", where, "flag_offset", at
            own = word(where, "flag_size")
            if level == 0 and first == "flag_offset":
                at = word(where, "flag_offset")
        yield "images stand one behind the other", where, "image_offset", _sum(at, own)
        yield "the bytes of an element", where, "image_element_size", of.element_bytes()
        width, rows = word(where, "image_width"), word(where, "image_height")
        yield ("a row is its elements", where, "image_pitch",
               terms.compute("mul", word(where, "image_element_size"), width, 32))
        bytes_ = terms.compute("mul", word(where, "image_pitch"), rows, 32)
        yield ("an image is its rows, rounded up", where, "image_size",
               wide(rounded_up(bytes_, of.image_alignment(), 32)))
        if plane == of.planes - 1:
            yield ("a level is all slices of its last plane", (level,), "size",
                   self.all_slices(_sum(own, word(where, "image_size"))))


def _sum(a, b):
    return terms.compute("add", a, b, 64)



class StandIns:
    """Words as unknowns of their own, and what stands for them in the code: so that a question about
    a word holds those before it as what they are, numbers."""

    def __init__(self, actual):
        self.actual, self.pairs = actual, {}

    def word(self, where, name):
        value = self.actual(where, name)
        if terms.known(value):
            return value
        standing = unknown(f"word {name}{list(where)}", value.size())
        self.pairs[str(standing)] = (value, standing)
        return standing

    def seen(self, value, expected):
        """The value of a word with the words that it is expected to be made of."""
        if terms.known(value) or terms.known(expected):
            return value
        used = [self.pairs[n] for n in terms.unknowns(expected) if n in self.pairs]
        return z3.substitute(value, *used) if used else value


def parts_of(term):
    """A term and all terms in it, each once; none of a known number."""
    seen, stack = set(), [] if terms.known(term) else [term]
    while stack:
        top = stack.pop()
        if top.get_id() not in seen:
            seen.add(top.get_id())
            stack.extend(top.children())
            yield top


def in_either_order(term):
    """Lemmas: the products in a term do not depend on the order of their factors."""
    made = []
    for top in parts_of(term):
        if z3.is_app_of(top, z3.Z3_OP_UNINTERPRETED) and top.num_args() == 2:
            a, b = top.children()
            made.append(top.decl()(b, a) == top)
    return made


def as_differences(term):
    """The same number, with -1 - x in the place of the complement of x: sums are compared by their
    parts then."""
    term = in_one_order(term)
    while not terms.known(term):
        found = {}
        for top in parts_of(term):
            if z3.is_app_of(top, z3.Z3_OP_BXOR) and top.num_args() == 2:
                a, b = top.children()
                for one, other in ((a, b), (b, a)):
                    if z3.is_bv_value(other) and other.as_long() == terms.mask(other.size()):
                        found[top.get_id()] = (top, other - one)
        if not found:
            break
        term = z3.substitute(term, *found.values())
    return term


def in_one_order(term):
    """The same, by the lemma that products do not depend on the order of their factors."""
    found = []
    for top in parts_of(term):
        if z3.is_app_of(top, z3.Z3_OP_UNINTERPRETED) and top.num_args() == 2:
            a, b = top.children()
            if a.get_id() > b.get_id():
                found.append((top, top.decl()(b, a)))
    return z3.substitute(term, *found) if found else term
