"""Rounds of the loop that sizes the images of a chain by the alignment rules: level by level, and in it
plane by plane.

A round is run for one known plane of one known level, from the state that every such round starts in:
the size of the level in texels is unknown, at least 1 x 1, and so are the numbers of levels and planes.
What comes to the start of the next round is held against the state that the next round is run from.
"""

import z3

import chains
import setting
from executor import terms
from executor.memory import Address, Poison
from executor.state import Message
from format_rows import BLOCK_COMPRESSED
from layouts import equal
from records import LAYOUT


class Rounds:
    def __init__(self, proof, case, facts=None):
        self.proof, self.case = proof, case
        self.call = chains.Call(proof, case, facts, names=())
        self.machine, self.given = self.call.machine, self.call.given
        self.levels, self.planes = self.call.head["levels"], self.given["planes"]
        self.loop = chains.sizing_loop(proof.module)
        self.inner = {l.header for l in chains.loops_of(proof.module).loops if l.parent is self.loop}
        _, self.behind = chains.loops_of(proof.module).way_out(self.loop)
        refused = setting.function_named(proof.module, chains.REFUSED)
        self.machine.instead[refused] = self._refused

    def _refused(self, machine, state, arguments):
        """Reports once, and returns a size: shown of the function itself."""
        entry, width, height = arguments
        state.messages.append(Message(0, machine.text_at(entry), "refused", (width, height)))
        return z3.BitVec("refused size", 64)

    # ---- where rounds start

    def starts(self):
        """The states in which paths first come to the loop, those together that differ in numbers
        alone."""
        kept = {}

        def arrived(state):
            if state.frame.block != self.loop.header:
                return False
            kept.setdefault(_kinds(state.frame.values), []).append(state)
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
        return found

    def _not_here(self, _state):
        return not self.proof.require("a level comes to its planes first", False)

    def _edge(self, left):
        def gone(state, _, target):
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
        blocks = self.call.format.word("rules") & BLOCK_COMPRESSED != 0
        columns = (width - 1 + self.call.format.wide("block_width")) / self.call.format.wide("block_width")
        rows = (height - 1 + self.call.format.wide("block_height")) / self.call.format.wide("block_height")
        step = self.call.chip.word("pixel_alignment")
        return z3.If(blocks, chains.rounded_up(columns, step, 32), width), z3.If(blocks, rows, height)

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
