"""Rounds of the loop that sizes the images of a chain by the alignment rules: level by level, and in it
plane by plane.

A round is run for one known plane of one known level, from the state that every such round starts in:
the size of the level in texels is unknown, at least 1 x 1, and so are the numbers of levels and planes.
What comes to the start of the next round is held against the state that the next round is run from.
"""

import z3

import chains
import formats
import setting
from executor import terms
from executor.ir import Local
from executor.memory import Address, Poison
from executor.state import Message
from format_rows import BLOCK_COMPRESSED
from layouts import equal, unknown
from records import LAYOUT


class Rounds:
    def __init__(self, proof, case, facts=None):
        self.proof, self.case = proof, case
        self.call = chains.Call(proof, case, facts, names=())
        self.machine, self.given = self.call.machine, self.call.given
        self.levels, self.planes = self.call.head["levels"], self.given["planes"]
        self.is_in_blocks = case.formats and formats.traits(
            case.formats.representative).is_block_compressed
        self.loop = chains.sizing_loop(proof.module)
        self.inner = {l.header for l in chains.loops_of(proof.module).loops if l.parent is self.loop}
        _, self.behind = chains.loops_of(proof.module).way_out(self.loop)
        self.refused = setting.function_named(proof.module, chains.REFUSED)
        self.machine.instead[self.refused] = self._refused
        self.packed = self._packed_elements()
        self.read = self._numbers_read()

    def _refused(self, machine, state, arguments):
        """Reports once, and returns a size: shown of the function itself."""
        entry, width, height = arguments
        state.messages.append(Message(0, machine.text_at(entry), "refused", (width, height)))
        return refused_size(width, height)

    # ---- where rounds start

    def starts(self):
        """The states in which paths first come to the loop: those together that differ in numbers
        alone; of a class of formats, in numbers that rounds do not read."""
        kept, told_apart = {}, self._all_that_is_read if self.case.formats else _kinds

        def arrived(state):
            if state.frame.block != self.loop.header:
                return False
            kept.setdefault(told_apart(state.frame.values), []).append(state)
            return True

        self.machine.at_header = arrived
        self.machine.at_edge = lambda state, _, target: target == self.behind
        limits = [z3.UGE(self.planes, 1), z3.ULE(self.planes, 3), z3.UGE(self.levels, 1),
                  z3.ULE(self.levels, 15)]
        self.machine.run(chains.EXPORT, [setting.at(self.call.record), *self.given.values()],
                         self.call.start_memory, [*self.call.conditions, *limits])
        found = [self.machine.meeting(None, states) for states in kept.values()]
        for state in found:
            self._show_first(state)
            state.loads = []
        return found

    def _numbers_read(self):
        """Of the values that instructions of the loop read."""
        blocks = self.machine.module.functions[chains.EXPORT].blocks
        return {o.number for block in self.loop.body for i in blocks[block].instructions
                for o in [*i.operands, *(value for value, _ in i.incoming)] if isinstance(o, Local)}

    def _all_that_is_read(self, values):
        return _kinds(values) | frozenset(
            (n, v if terms.known(v) else v.get_id()) for n, v in values.items()
            if n in self.read and (terms.known(v) or isinstance(v, z3.ExprRef)))

    def phis(self, state):
        """The numbers of planes, of the level and of its texels."""
        frame = state.frame
        numbers = [i.number for i in frame.function.blocks[frame.block].instructions
                   if i.opcode == "phi"]
        level = [n for n in numbers if terms.known(frame.values[n])]
        planes = [n for n in numbers if n not in level and frame.values[n].size() == 32]
        texels = [n for n in numbers if n not in level + planes]
        if [len(level), len(planes), len(texels)] != [1, 1, 1]:
            raise SystemExit(f"{chains.EXPORT}: a loop over levels of another kind")
        return planes[0], level[0], texels[0]

    def _show_first(self, state):
        planes, level, texels = self.phis(state)
        values, first = state.frame.values, chains.first_texels(self.given)
        self.proof.require("levels are counted from 0, and nothing has been written",
                           values[level] == 0 and not state.stores)
        self.proof.show("all planes", state.conditions, equal(values[planes], self.planes, 32))
        self.proof.show("the first level's texels", state.conditions,
                        equal(values[texels], z3.Concat(*reversed(first)), 64))

    def of_level(self, start, level):
        """The states in which the first plane's round of a level starts."""
        state = start.copy()
        planes, number, texels = self.phis(state)
        width, height = sides = chains.texels_of("of the level")
        state.frame.values[number] = level
        state.frame.values[planes] = self.planes
        state.frame.values[texels] = z3.Concat(height, width)
        for side in sides:
            state.assume(side >= 1)
        state.assume(z3.UGT(self.levels, level))
        found = []

        def arrived(state):
            if state.frame.block in self.inner:
                found.append(state)
                return True
            return self._not_here(state)

        self.machine.at_header, self.machine.at_edge = arrived, self._edge(self._not_here)
        outcomes = self.machine.resume([state])
        self.proof.require("a level comes to its planes", found and not outcomes)
        self.proof.require("sizes in blocks are counted", not self.is_in_blocks or all(
            s.notes.get("of any elements") for s in found))
        return found

    def _packed_elements(self):
        """block -> where a level's size in elements is kept that a report in its round tells: both sides
        in 64 bits."""
        function = self.machine.module.functions[chains.EXPORT]
        reported = {i.operands[1].number for block in self.loop.body
                    for i in function.blocks[block].instructions
                    if i.opcode == "call" and getattr(i.callee, "name", "") == self.refused}
        made = {block: i.operands[0].number for block in self.loop.body
                for i in function.blocks[block].instructions
                if i.number in reported and i.opcode == "trunc"}
        if len(made) != len(reported):
            raise SystemExit(f"{chains.EXPORT}: sizes of a level are kept in another way")
        return made

    def _of_any_elements(self, state, block):
        """From here on the level's size in elements is any, once it is shown to be what it should be."""
        if not self.is_in_blocks or block not in self.packed:
            return
        kept = self.packed[block]
        wide, high = self._blocks(*chains.texels_of("of the level"))
        self.proof.show("a level's size in elements", state.conditions,
                        equal(state.frame.values[kept], z3.Concat(high, wide), 64))
        state.frame.values[kept] = z3.Concat(*reversed(self.elements()))
        state.notes["of any elements"] = True

    def _not_here(self, _state):
        return not self.proof.require("a level comes to its planes first", False)

    def _edge(self, left):
        def gone(state, _, target):
            self._of_any_elements(state, target)
            return target == self.behind and (left(state) or True)
        return gone

    # ---- a round

    def of_plane(self, start, saved, level, plane, show_path):
        """Runs the round; show_path(state) is called with each path that ends it, and with those that
        fault. Returns how many paths there are."""
        state, count = saved.copy(), []
        phi, = [i.number for i in state.frame.function.blocks[state.frame.block].instructions
                if i.opcode == "phi"]
        state.frame.values[phi] = plane
        state.assume(z3.UGT(self.planes, plane))

        def ends(state, what):
            count.append(what)
            show_path(state, "goes on")

        def arrived(state):
            if state.frame.block == self.loop.header:
                self._show_next_level(state, start, level, plane)
                ends(state, "level")
                return True
            if state.frame.block in self.inner:
                self._show_next_plane(state, saved, phi, plane)
                ends(state, "plane")
                return True
            return False

        def left(state):
            self.proof.show("the loop ends behind the last level", state.conditions, z3.And(
                self.levels == level + 1, self.planes == plane + 1))
            ends(state, "end")

        self.machine.at_header, self.machine.at_edge = arrived, self._edge(left)
        for outcome in self.machine.resume([state]):
            self.proof.require("a round goes on or faults", outcome.kind == "faults")
            count.append("faults")
            show_path(outcome.state, "faults")
        return count

    def _show_next_plane(self, state, saved, phi, plane):
        values = state.frame.values
        self.proof.require("the next plane is the next", values[phi] == plane + 1 and
                           state.frame.block == saved.frame.block)
        self._show_kept(values, saved.frame.values, {phi})

    def _show_next_level(self, state, start, level, plane):
        planes, number, texels = self.phis(state)
        values, known = state.frame.values, state.conditions
        self.proof.require("the next level is the next", values[number] == level + 1)
        self.proof.show("behind the last plane", known, self.planes == plane + 1)
        self.proof.show("the next level has all planes", known, equal(values[planes], self.planes, 32))
        half = chains.halved(chains.texels_of("of the level"))
        self.proof.show("it has half the texels", known,
                        equal(values[texels], z3.Concat(*reversed(half)), 64))
        self.proof.show("there is a next level", known, z3.UGT(self.levels, level + 1))
        self._show_kept(values, start.frame.values, {planes, number, texels})

    def _show_kept(self, values, before, phis):
        for number, value in before.items():
            if number not in phis:
                self.proof.require("what stays through the rounds", _same(values[number], value))

    # ---- what is documented

    def elements(self):
        """The level's size in elements: its texels, or its blocks in whole pixel alignments."""
        width, height = chains.texels_of("of the level")
        if self.case.formats:
            return (unknown("elements wide"), unknown("elements high")) if self.is_in_blocks else (
                width, height)
        blocks = self.call.format.word("rules") & BLOCK_COMPRESSED != 0
        columns = (width - 1 + self.call.format.wide("block_width")) / self.call.format.wide("block_width")
        rows = (height - 1 + self.call.format.wide("block_height")) / self.call.format.wide("block_height")
        step = self.call.chip.word("pixel_alignment")
        return z3.If(blocks, chains.rounded_up(columns, step, 32), width), z3.If(blocks, rows, height)

    def _blocks(self, width, height):
        """In whole pixel alignments; all formats of a class have blocks of one size."""
        made = formats.traits(self.case.formats.representative)
        columns, rows = ((side - 1 + block) / block for side, block in (
            (width, made.block_width), (height, made.block_height)))
        return chains.rounded_up(columns, self.call.chip.word("pixel_alignment"), 32), rows

    def cells(self, state, before, plane):
        """What a path has stored of the plane's sizes."""
        chains_ = self.call.chains(state)
        old = before.memory.cells(chains_)
        new = {at: cell for at, cell in state.memory.cells(chains_).items() if old.get(at) is not cell}
        base = chains.CHAIN_BYTES * plane
        self.proof.require("sizes of this plane alone are stored",
                           all(base <= at < base + chains.CHAIN_BYTES for at in new)
                           and set(old) <= set(state.memory.cells(chains_)))
        return {at - base: cell for at, cell in new.items()}


def refused_size(width, height):
    """What the rules leave of a size that they do not see: 1 x 1 of one that is negative, else itself."""
    width, height = terms.vector(width, 32), terms.vector(height, 32)
    return z3.If(z3.Or(width < 0, height < 0), z3.BitVecVal(1 | 1 << 32, 64), z3.Concat(height, width))


def _kinds(values):
    """What tells paths apart whose numbers may become unknown: places in memory, and what means
    nothing."""
    return frozenset((n, "nothing") if isinstance(v, Poison) else
                     (n, v.region.name if v.region else None,
                      v.offset if terms.known(v.offset) else v.offset.get_id())
                     for n, v in values.items() if isinstance(v, (Poison, Address)))


def _same(a, b):
    if isinstance(a, Poison) or isinstance(b, Poison):
        return isinstance(b, Poison)
    if isinstance(a, Address) or isinstance(b, Address):
        return isinstance(a, Address) and isinstance(b, Address) and a.region is b.region and (
            terms.same(a.offset, b.offset))
    if isinstance(a, list) or isinstance(b, list) or a is None or b is None:
        return a is b
    return a is b or (type(a) is type(b) and (a.eq(b) if isinstance(a, z3.ExprRef) else a == b))
