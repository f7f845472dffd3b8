"""What is aligned is at least what was asked for, and aligned once more stays as it is, but for the
exceptions listed here.

Of the rules' terms: alignment_is_as_required shows that the library stores just these. Full
alignment of a size that is not negative, on a chip that is supported; samples 1, thresholds any.

Assumed: sizes of at most 2^20 elements and rows, so that no product wraps; above them see the first
exception.
Shown: a tiled size is at least what was asked for, on all families and formats whose planes have
elements; so are all heights; so is a linear width, or it is the limit. The second time, both stay.
Excepted, and each shown to exist: sizes near 2^31 wrap to less; a linear width above 16384 elements
is cut off on families 5 and 6, by the chip's limit on family 7, and to 0 where it lists none.
"""

import z3

import alignment_calls as calls
import alignment_claims as claims
from format_classes import classes

_MOST = 1 << 20
_LIMIT_EL = 16384  # of families 5 and 6


def _full(chip, case, width, height):
    mode = calls.rules.TILED if case.tiled else calls.rules.LINEAR
    return calls.rules.compute_fmt_aligned_width_and_height(
        chip, width, height, case.plane, case.format_id, 1, mode, calls.THRESHOLD)


def _sizes(most):
    return [z3.ULE(calls.WIDTH, most), z3.ULE(calls.HEIGHT, most)]


def _has_elements(case):
    return calls.formats.plane_bytes(case.format_id, case.plane) != 0


def _may_be_limited(case):
    """Rows that can come to the padding and its limit."""
    made = calls.formats.traits(case.format_id)
    bytes_ = calls.formats.plane_bytes(case.format_id, case.plane)
    return (not case.tiled and made.has_padded_pitch and bytes_ != 0
            and calls.formats.is_power_of_two(bytes_))


def _show_enough(proof, case):
    _, chip = calls.any_chip(case.family)
    if case.tiled and case.family == 5 and not _has_elements(case):
        return  # divides by 0
    answer = _full(chip, case, calls.WIDTH, calls.HEIGHT)
    assumed = [chip.supported, *_sizes(_MOST)]
    claims.show(proof, case, "the height is enough", assumed,
                z3.UGE(answer.height, calls.HEIGHT))
    if not _may_be_limited(case):
        claims.show(proof, case, "the width is enough", assumed, z3.UGE(answer.width, calls.WIDTH))
        return
    limit = z3.BitVecVal(_LIMIT_EL, 32) if case.family != 7 else chip.max_surface_pitch
    claims.show(proof, case, "the width is enough up to the limit", assumed,
                z3.Or(z3.UGE(answer.width, calls.WIDTH), answer.width == limit))
    proof.find(f"{case}: a width that is cut off", [*assumed, z3.ULT(answer.width, calls.WIDTH)])
    if case.family == 7:
        proof.find(f"{case}: a width of 0 where the chip has no limit",
                   [*assumed, calls.WIDTH == 64, answer.width == 0])


def _show_once(proof, case):
    """Aligned once more."""
    _, chip = calls.any_chip(case.family)
    if case.tiled and case.family == 5 and not _has_elements(case):
        return
    answer = _full(chip, case, calls.WIDTH, calls.HEIGHT)
    again = _full(chip, case, answer.width, answer.height)
    assumed = [chip.supported, *_sizes(_MOST)]
    claims.show(proof, case, "the height stays", assumed, again.height == answer.height)
    claims.show(proof, case, "the width stays", assumed, again.width == answer.width)


def _find_wraps(proof):
    """Sizes near 2^31 that come to less than was asked for."""
    for family in (5, 6):
        for tiled in (True, False):
            formats_ = next(c for c in classes(0) if c.representative == 141)
            case = calls.Case(calls.FULL, family, 0, tiled, formats_)
            _, chip = calls.any_chip(family)
            answer = _full(chip, case, calls.WIDTH, calls.HEIGHT)
            if family != 5 or tiled:
                proof.find(f"{case}: a size that wraps", [
                    chip.supported, calls.WIDTH >= 0, calls.HEIGHT >= 0,
                    z3.Or(z3.ULT(answer.width, calls.WIDTH), z3.ULT(answer.height, calls.HEIGHT))])


def prove(proof):
    chosen = (23, 5) if proof.quick else None
    for case in calls.cases_of_formats((calls.FULL,), (5, 6, 7), (0,)):
        if chosen is None or any(case.holds(f) for f in chosen):
            _show_enough(proof, case)
            _show_once(proof, case)
    _find_wraps(proof)
