"""An alignment entry divides by 0 exactly where the header says under "Faults", and nowhere else.

Assumed: as alignment_is_as_required. The header's sentences stand here as terms of their own, beside
the flags, bytes and planes of the formats; the library's paths are held against them. Shown: every
path that ends in a division by 0 has the header's condition, no path that returns has it, and each
of the header's sentences has a case. Excepted: nothing.
Quick: the entries of formats once, all families, plane 0; the rest is left out.
"""

import z3

import alignment_calls as calls
import alignment_claims as claims

SHARES_RUNS_OF = "alignment"


def _is_zero(*factors):
    """A product of 32 bits that comes to 0."""
    made = z3.BitVecVal(1, 32)
    for factor in factors:
        made = made * factor
    return made == 0


def _is_supported(case):
    return z3.Bool("chip is supported") if case.family else z3.BoolVal(False)


def _is_block_or_packed(case):
    return bool(calls.formats.traits(case.format_id).flags & calls.formats.FLAGS_IN_BLOCKS)


def _without_samples(case):
    """0 samples: also those whose product with the bytes of an element wraps to 0. Bytes that are no
    power of two count as the next larger one."""
    row = calls.formats.traits(calls.formats.npot_substitute(case.format_id))
    return _is_zero(row.bytes, calls.SAMPLES)


def _tiled_on_family5(case):
    """Elements of 0 bytes, or 0 samples."""
    return _is_zero(calls.formats.plane_bytes(case.format_id, case.plane), calls.SAMPLES)


def full(case, tiled):
    if case.family == 5:
        return _tiled_on_family5(case) if tiled else z3.BoolVal(False)
    if tiled or not _is_block_or_packed(case):
        return z3.BoolVal(False)
    return _without_samples(case)


def fdm(case, tiled):
    if tiled or case.family == 5:
        return full(case, tiled)
    return z3.Or(full(case, tiled), calls.DIVISOR == 0)


def minimal(case, tiled, divisor=calls.DIVISOR, tiling_allowed=calls.TILING_ALLOWED):
    if tiled:
        return full(case, tiled)
    in_blocks = calls.is_listed_family5(case) if case.family == 5 else _is_block_or_packed(case)
    may_not_become_tiled = tiling_allowed == 0 if case.family == 5 else tiling_allowed != 1
    without = z3.And(may_not_become_tiled, _without_samples(case)) if in_blocks else False
    return z3.Or(divisor == 0, without)


def in_bytes(case):
    """Which mode: linear for a surface that is too narrow to tile."""
    made = calls.formats.traits(case.format_id)
    blocks = made.block_width if made.is_block_compressed else 1
    narrow = calls.WIDTH < 16 * blocks
    bytes_ = z3.BitVecVal(calls.formats.plane_bytes(case.format_id, case.plane), 32)
    allowed = z3.If(narrow, z3.BitVecVal(0, 32), z3.BitVecVal(1, 32))

    def both(tiled):
        return z3.Or(minimal(case, tiled, bytes_, allowed), full(case, tiled))

    return z3.If(narrow, both(False), both(True)) if case.tiled else both(False)


OF_THE_HEADER = {
    calls.FULL: lambda case: full(case, case.tiled),
    calls.FDM: lambda case: fdm(case, case.tiled),
    calls.MINIMAL: lambda case: minimal(case, case.tiled),
    calls.IN_BYTES: in_bytes,
}


def expected(case):
    """Sizes that are negative, and chips that are not supported, do not come to the rules."""
    if case.family == calls.NO_FAMILY:
        return z3.BoolVal(False)
    return z3.And(_is_supported(case), calls.WIDTH >= 0, calls.HEIGHT >= 0,
                  OF_THE_HEADER[case.entry](case))


def show_case(proof, case):
    faults = expected(case)
    members = [expected(c) for c in case.of_members()]
    proof.require(f"{case}: the header says the same of all of the class",
                  members and all(m.eq(faults) for m in members))
    seen = False
    for run in calls.ran(proof, case).runs:
        if run.kind == "faults":
            seen = True
            claims.show(proof, case, "a division by 0 is one of the header's", run.conditions, faults,
                        run.place)
        else:
            claims.show(proof, case, "what returns is none of the header's", run.conditions,
                        z3.Not(faults), run.place)
    return seen


def _show_slice_pitch(proof):
    """Linear on a chip that has neither property, an unknown chip among them."""
    for family in (5, 6, 7, calls.NO_FAMILY):
        case = calls.Case(calls.SLICE_PITCH, family)
        neither = z3.BoolVal(True) if not family else z3.Not(z3.Or(
            z3.Bool("chip has linear_alignment"), z3.Bool("chip has base_alignment")))
        faults = z3.And(calls.MODE != 1, neither)
        kinds = set()
        for run in calls.ran(proof, case).runs:
            kinds.add(run.kind)
            claims.show(proof, case, "a division by 0 is the header's", run.conditions,
                        faults if run.kind == "faults" else z3.Not(faults), run.place)
        proof.require(f"{case}: it can divide by 0 and need not", kinds == {"returns", "faults"})


def _show_never(proof):
    """Entries whose header names no fault."""
    for entry in (calls.WITHOUT_FORMAT, calls.PADDING, calls.PIXEL):
        for family in (5, 6, 7, calls.NO_FAMILY):
            case = calls.Case(entry, family)
            for run in calls.ran(proof, case).runs:
                claims.show(proof, case, "does not divide by 0", run.conditions,
                            run.kind == "returns", run.place)


def _show_exists(proof, faulting):
    """Each way to divide by 0 that the header names has a case, and no other has."""
    for entry in calls.OF_FORMATS:
        for family in (5, calls.SIX_OR_SEVEN):
            for tiled in (True, False):
                # Tiled, families 6 and 7 divide in bytes alone, as a narrow surface becomes linear;
                # linear, family 5 divides by a divisor alone.
                never = (tiled and family != 5 and entry != calls.IN_BYTES or
                         not tiled and family == 5 and entry in (calls.FULL, calls.FDM))
                proof.require(f"{entry}, family {'5' if family == 5 else '6 or 7'}, {'tiled' if tiled else 'linear'}: it "
                              f"{'never divides' if never else 'can divide'} by 0",
                              ((entry, family, tiled) in faulting) != never)


_SAMPLE = (
    (calls.FULL, 5, True, 23),
    (calls.FDM, calls.SIX_OR_SEVEN, False, 23),
    (calls.MINIMAL, 5, False, 141),
    (calls.IN_BYTES, 5, False, 141),
)


def prove(proof):
    faulting = set()
    cases = calls.cases_with(_SAMPLE) if proof.quick else calls.cases_of_formats()
    for case in proof.each(cases):
        if show_case(proof, case):
            faulting.add((case.entry, case.family, case.tiled))
            proof.find(f"{case}: a division by 0", [expected(case), *case.conditions])
    if not proof.quick:
        _show_exists(proof, faulting)
    _show_slice_pitch(proof)
    _show_never(proof)
