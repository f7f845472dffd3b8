"""Sizing a mip chain by the alignment rules leaves each image's size and nothing else.

Of the loop in korvel_init_multi_level_surface that asks the rules, on the unknown chip, for any format,
samples, mode and flags, 1 to 15 levels and 1 to 3 planes; one round each for any plane of any level,
whose size in texels is any that is at least 1 x 1:

1. Rounds follow each other plane by plane and level by level: the state in which one ends is the one
   that the next is run from; a level has half the texels of the one before it, at least 1. The loop
   ends behind the last plane of the last level.
2. A round stores the image's width and height where placing looks for them, 8 bytes. Nothing of the
   record is loaded or stored to.
3. A round reports once, of a size that is negative (blocks near 2^31 texels) or of a chip that is not
   supported: so messages come level by level, and the planes of a level in turn. The report is "Invalid
   width or height" or else "Unknown Chip ID", under the name of
   compute_fmt_aligned_width_and_height_fdm(). No round divides by 0.
4. No access outside of the library's tables and the code's own arrays, no promise of the compiler
   broken.

--quick: tiled, levels 0 and 1.

Assumed: the GPU is identified. Products of two unknowns are unknown functions.

Not shown: what sizing flag buffers stores in this loop on known chips, and where it divides by 0:
one_round() says it, and has not been run to its end on them. Their images are those of
chains_have_aligned_images.
"""

import z3

import chains
import setting
from chain_rounds import Rounds, refused_size
from executor import terms
from layouts import LOG_OF_PLANES, chip_of_any_family, equal

def prove(proof):
    refusals(proof)
    for tiled in (True,) if proof.quick else (True, False):
        one_kind(proof, chains.Case(setting.unknown_chip(), tiled, "not asked"),
                 (0, 1) if proof.quick else range(15))


def one_kind(proof, case, levels, counted=None):
    rounds = Rounds(proof, case)
    starts = rounds.starts()
    proof.require("some come to the rules", starts)
    for level in levels:
        ends = set()
        for start in starts:
            for saved in rounds.of_level(start, level):
                for plane in range(3):
                    ends |= set(one_round(proof, rounds, start, saved, level, plane, counted))
        proof.show_claims(rounds.machine)
        wanted = {"plane"} | ({"level"} if level < 14 and counted in (None, 2) else set())
        proof.require("rounds are followed by others and by the end",
                      wanted <= ends and ("end" in ends or counted == 2))


def one_round(proof, rounds, start, saved, level, plane, counted):
    call, case = rounds.call, rounds.case
    width, height = rounds.elements()
    negative = z3.Or(width < 0, height < 0)
    supported = terms.truth(terms.compare("ne", call.chip.words["supported"], 0, 8))

    def path(state, how):
        known = state.conditions
        proof.require("nothing of the record is loaded",
                      not any(a.region is call.record for a in state.loads))
        if how == "faults":
            if not (case.flag_buffers and level == 0):
                proof.show("a fault is one of the rules", known,
                           z3.And(supported, z3.Not(negative)))
            return
        if state.messages:
            message, = state.messages if len(state.messages) == 1 else [None]
            proof.require("one report, under its name",
                          message is not None and message.function == LOG_OF_PLANES)
            proof.show("a report is of a size or of a chip", known,
                       z3.Or(negative, z3.Not(supported)))
            for told, side in zip(message.arguments, (width, height)):
                proof.show("it tells the level's size", known, equal(told, side, 32))
        else:
            proof.show("no report is left out", known, z3.And(supported, z3.Not(negative)))
        cells = rounds.cells(state, saved, plane)
        expected = {8 * level: 8}
        if case.flag_buffers and level == 0:
            expected |= {chains.FLAG_BYTES_AT + 8 * l: 8 for l in range(counted)}
            state.notes["stored"] = 0
            call.show_flag_sizes(state, plane, counted)
        else:
            proof.require("nothing of the record is stored to", not state.stores)
        proof.require("the sizes of this image are stored, and no others",
                      {at: size for at, (size, _) in cells.items()} == expected)

    return rounds.of_plane(start, saved, level, plane, path)


def refusals(proof):
    """The function that reports."""
    name = setting.function_named(proof.module, chains.REFUSED)
    width, height = z3.BitVec("width", 32), z3.BitVec("height", 32)
    negative = z3.Or(width < 0, height < 0)
    texts = {"Invalid width or height: W = %d, H = %d": negative,
             "Unknown Chip ID %d": z3.Not(negative)}
    machine = proof.machine()
    memory = setting.place_chip(machine, chip_of_any_family())
    entry = next(i for f in proof.module.functions.values() for b in f.blocks for i in b.instructions
                 if f.name == chains.EXPORT and i.opcode == "call" and
                 getattr(i.callee, "name", "") == name)
    outcomes = proof.run(machine, name, [machine.constant(entry.operands[0]), width, height], memory)
    for outcome in outcomes:
        state = outcome.state
        proof.require("one report that the header names", len(state.messages) == 1 and
                      state.messages[0].format in texts and
                      state.messages[0].function == LOG_OF_PLANES)
        proof.show("of what it says", state.conditions, texts[state.messages[0].format])
        proof.show("the size that it returns", state.conditions,
                   equal(outcome.value, refused_size(width, height), 64))
    proof.require("there are both", {o.state.messages[0].format for o in outcomes} == set(texts))
    proof.show_claims(machine)
