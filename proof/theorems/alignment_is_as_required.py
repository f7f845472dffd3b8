"""Every alignment entry stores, prints and returns what the rules require, for all its arguments.

The rules stand in requirements/alignment.py, written from their text alone. For each entry, each
family and chips that are not known, each class of formats (all 2^32 numbers), each plane (all 2^32
numbers) and each mode, of the arguments nothing is assumed: sizes, samples, thresholds, divisors,
selectors, tiling_allowed and want_extra_padding are any of 2^32 numbers, and the chip's own words
any that hardware_data_checks.cpp lets a row have.

Assumed: outputs are memory of the caller's that does not overlap; the GPU is identified.
Shown: the same words are stored, or none; the same messages are printed with the same numbers, or
none; nothing else is stored to; a division by 0 happens where the rules divide by 0 alone; no access
outside of what the header names, and no promise of the compiler's is broken.
Quick: one class of formats for each entry, plane 0: in blocks, of 12 bytes (tiled), of video, and a
plain one on an unknown chip; the rest is left out.
Excepted: what is stored before a division by 0 ends the program, and the low halves of pointers
that the message of null pointers prints.
"""

import itertools

import z3

import alignment_calls as calls
import alignment_claims as claims
from format_classes import classes

SHARES_RUNS_OF = "alignment"

_ALWAYS = z3.BoolVal(True)
_FAMILIES = (5, 6, 7, calls.NO_FAMILY)


def _two_sizes(answer):
    return {"width": (answer.written, answer.width), "height": (answer.written, answer.height)}


def _bytes(answer):
    return {"aligned_row_bytes": (_ALWAYS, answer.aligned_row_bytes),
            "minimal_row_bytes": (_ALWAYS, answer.minimal_row_bytes),
            "aligned_height": (_ALWAYS, answer.aligned_height),
            "tiling_mode": (answer.tiling_mode_written, answer.tiling_mode)}


def _show(proof, case, answer, outputs, messages):
    ran = calls.ran(proof, case)
    for run in ran.runs:
        claims.show_path(proof, case, run, answer, outputs, messages)
    claims.show_compiler(proof, case, ran.claims)
    return ran.runs


def show_case(proof, case):
    """An entry that takes a format, a plane and a mode."""
    chip, _ = calls.any_chip(case.family)
    answer = calls.required(case)
    outputs = (_bytes if case.entry == calls.IN_BYTES else _two_sizes)(answer)
    _show(proof, case, answer, outputs, claims.expected_messages(case, answer, chip))


def _show_in_blocks(proof, case):
    _, required_chip = calls.any_chip(case.family)
    answer = calls.rules.compute_compressedfmt_aligned_width_and_height(
        required_chip, calls.WIDTH, calls.HEIGHT, case.format_id, bool(case.nulls))
    outputs = {"width": (answer.written, answer.width), "height": (answer.written, answer.height),
               "bpp": (answer.written, answer.bpp)}
    outputs = {name: o for name, o in outputs.items() if name not in case.nulls}
    _show(proof, case, answer, outputs, claims.expected_messages_in_blocks(case, answer))


def _show_without_format(proof, family):
    chip, required_chip = calls.any_chip(family)
    case = calls.Case(calls.WITHOUT_FORMAT, family)
    answer = calls.rules.compute_aligned_width_and_height(required_chip, calls.WIDTH, calls.HEIGHT)
    _show(proof, case, answer, _two_sizes(answer), claims.expected_messages(case, answer, chip))

    case = calls.Case(calls.PADDING, family)
    answer = calls.rules.compute_surface_padding(required_chip, calls.WIDTH)
    messages = claims.expected_messages(case, answer, chip)
    for run in _show(proof, case, answer, {}, messages):
        claims.show_value(proof, case, run, answer)


def _show_properties(proof, family):
    _, required_chip = calls.any_chip(family)
    for entry, answer in (
            (calls.SLICE_PITCH, calls.rules.get_slice_pitch_alignment(required_chip, calls.MODE)),
            (calls.PIXEL, calls.rules.get_gpu_pixel_alignment(required_chip))):
        case = calls.Case(entry, family)
        for run in _show(proof, case, answer, {}, [(_ALWAYS, [])]):
            if run.kind == "returns":
                claims.show_value(proof, case, run, answer)


def _subsets(names):
    return [s for n in range(1, len(names) + 1) for s in itertools.combinations(names, n)]


_PLAIN, _OF_12_BYTES, _VIDEO, _IN_BLOCKS = 23, 5, 103, 141
_SAMPLE = (
    (calls.FULL, calls.NO_FAMILY, False, _PLAIN),
    (calls.FDM, calls.SIX_OR_SEVEN, False, _VIDEO),
    (calls.MINIMAL, 5, False, _IN_BLOCKS),
    (calls.MINIMAL, calls.SIX_OR_SEVEN, True, _OF_12_BYTES),
    (calls.IN_BYTES, 5, False, _IN_BLOCKS),
)


def prove(proof):
    for case in proof.each(calls.cases_with(_SAMPLE) if proof.quick else calls.cases_of_formats()):
        show_case(proof, case)
    for family in (7,) if proof.quick else _FAMILIES:
        _show_without_format(proof, family)
        _show_properties(proof, family)
    for formats_ in classes(0):
        if proof.quick and _IN_BLOCKS not in formats_.ids:
            continue
        for nulls in [(), *_subsets(calls.OUTPUTS_IN_BLOCKS)]:
            _show_in_blocks(proof, calls.Case(calls.COMPRESSED, 6, formats=formats_, nulls=nulls))
        _show_in_blocks(proof, calls.Case(calls.COMPRESSED, calls.NO_FAMILY, formats=formats_))
