"""The images of a mip chain have the sizes that the alignment rules give: for all its arguments.

Of the loop in korvel_init_multi_level_surface that asks the rules, on any chip row of families 5, 6 and
7, for each class of formats, each plane and mode, and all samples, flags and sizes of a level:

1. The width and height that a round leaves are those that requirements/alignment.py gives for the
   level's elements, where no row is long enough to be padded, steps are divided by the bytes of an
   element's samples, and there is extra padding for LAYOUT_FLAG_EXTRA with LAYOUT_FLAG_EXTENDED. What the
   rules refuse stays as it is, or is 1 x 1 where it is negative, and is reported.
2. A round divides by 0 where the rules do.
3. No access outside of the library's tables and the code's own arrays, no promise of the compiler
   broken.

How rounds follow each other, and what a level's texels are, is shown by chains_are_sized_level_by_level
and on the way here. Rounds of the levels 0, 1 and 14 are run. Not shown: those of the levels between.

--quick: level 0 of one class of formats, as plane 1, on family 5, linear.

Assumed: the GPU is identified. Of level 0, that there are no flag buffers, which are sized in its rounds:
not shown on known chips.
"""

import itertools

import z3

import alignment_calls as calls
import alignment_claims as claims
import chains
from chain_rounds import Rounds
from executor import terms
from format_classes import joined_classes
from layouts import FLAG_EXTENDED, FLAG_EXTRA, FLAG_UBWC, LOG_OF_PLANES, has_flag, unknown

_FIRST, _SECOND, _LAST = 0, 1, 14
_NO_ROW_IS_PADDED = 0x7FFFFFFF  # bytes, the threshold


def prove(proof):
    for case in proof.each(cases(proof.quick)):
        show_case(proof, case)


def cases(quick):
    made = []
    for family, tiled, plane in [(5, False, 1)] if quick else itertools.product(
            (5, calls.SIX_OR_SEVEN), (True, False), range(3)):
        def key(class_, family=family, tiled=tiled):
            case = calls.Case(calls.FDM, family, class_.plane, tiled, class_)
            traits = calls.formats.traits(class_.representative)
            blocks = traits.is_block_compressed and (traits.block_width, traits.block_height)
            return calls.terms_of(case), traits.bytes, blocks
        made += [calls.Case(calls.FDM, family, plane, tiled, c)
                 for c in joined_classes((plane,), key)]
    return made[:1] if quick else made


def show_case(proof, case):
    chip, _ = calls.any_chip(case.family)
    parts = [((_SECOND, _LAST), []), ((_FIRST,), [no_flag_buffers(case)])]
    for levels, more in parts[1:] if proof.quick else parts:
        rounds = Rounds(proof, chains.Case(chip, case.tiled, formats=case.formats, more=more))
        starts = rounds.starts()
        proof.require(f"{case}: some come to the rules", starts)
        for level in levels:
            ends = {end for start in starts for saved in rounds.of_level(start, level)
                    for end in one_round(proof, case, rounds, start, saved, level)}
            wanted = {"plane", "end"} | ({"level"} if level != _LAST else set())
            proof.require(f"{case}: rounds are followed by others and by the end",
                          wanted - {"plane" if case.plane == 2 else ""} <= ends)
        claims.show_compiler(proof, case, rounds.machine.claims)


def no_flag_buffers(case):
    """As the code asks."""
    flag = terms.compute("and", unknown("flags", 64), 1 << FLAG_UBWC, 64)
    return terms.disjunction(terms.compare("ugt", case.formats.number, 721, 32),
                             terms.compare("eq", flag, 0, 64))


def one_round(proof, case, rounds, start, saved, level):
    answer = required(case, rounds)

    def path(state, how):
        known = state.conditions

        def show(what, claim):
            claims.show(proof, case, f"level {level}: {what}", known, claim)

        if how == "faults":
            show("divides by 0 where the rules do", answer.fault)
            return
        show("does not divide by 0 where the rules do not", z3.Not(answer.fault))
        refused = z3.Or(answer.negative_size, answer.unknown_chip)
        show("a report of what the rules refuse", refused if state.messages else z3.Not(refused))
        for message in state.messages:
            proof.require(f"{case}: one report, under its name",
                          len(state.messages) == 1 and message.function == LOG_OF_PLANES)
            for told, side in zip(message.arguments, rounds.elements(), strict=True):
                show("it tells the level's size", terms.compare("eq", told, side, 32))
        cells = rounds.cells(state, saved, case.plane)
        size = cells.get(8 * level)
        if not proof.require(f"{case}, level {level}: a size is stored", size is not None and size[0] == 8):
            return
        wide, high = (terms.truncated(terms.compute("lshr", size[1], at, 64), 32) for at in (0, 32))
        show("the width", terms.compare("eq", wide, answer.width, 32))
        show("the height", terms.compare("eq", high, answer.height, 32))

    return rounds.of_plane(start, saved, level, case.plane, path)


def required(case, rounds):
    """What the rules say to a level's elements."""
    width, height = rounds.elements()
    given = rounds.call.given
    element_bytes = calls.formats.traits(case.format_id).bytes
    extended = z3.And(*(has_flag(given["flags"], bit) for bit in (FLAG_EXTRA, FLAG_EXTENDED)))
    put = [(calls.WIDTH, width), (calls.HEIGHT, height),
           (calls.THRESHOLD, z3.BitVecVal(_NO_ROW_IS_PADDED, 32)),
           (calls.DIVISOR, element_bytes * calls.SAMPLES),
           (calls.PADDING_WANTED, z3.If(extended, z3.BitVecVal(1, 32), z3.BitVecVal(0, 32)))]
    answer = calls.required(case)
    return type(answer)(**{name: z3.substitute(value, *put) if isinstance(value, z3.ExprRef) else value
                           for name, value in vars(answer).items()})
