"""The pitch-padding tables, searched as the rules state it, and the look-up of a pitch in them.

The rules state 5 rows of 2 x 33 entries. What the search finds comes to one short rule, which
`looked_up` writes as a term; it is held against every entry whenever this file is loaded.
"""

from words import (
    add,
    all_of,
    bits_of_both,
    choose,
    equal,
    negation,
    round_up_by_mask,
)

ELEMENT_CLASSES = 5  # elements of 1, 2, 4, 8 and 16 bytes
HALF = 33  # entries for the unpadded pitches 0, 64, ..., 2048
LAST_PITCH_EL = 2048
STEP_EL = 64


def _rows_to_fill_spans(row_el, element_bytes, span_el):
    """How many rows of this pitch fill the smallest whole number of spans of 2048 bytes."""
    row_bytes = (row_el % span_el or span_el) * element_bytes
    spans = 1
    while spans * 2048 % row_bytes != 0:
        spans += 1
    return spans * 2048 // row_bytes


def _searched(pitch_el, element_bytes, accepts):
    """The first pitch from `pitch_el` on, a step at a time, whose period is accepted."""
    step_el = 1024 // element_bytes
    span_el = 2048 // element_bytes
    candidate_el = pitch_el
    while candidate_el - pitch_el <= 2048:
        if accepts(_rows_to_fill_spans(candidate_el, element_bytes, span_el)):
            return candidate_el
        candidate_el += step_el
    return pitch_el


def _searched_row(element_bytes):
    normal = [0]
    second = [0]
    for pitch_el in range(STEP_EL, LAST_PITCH_EL + 1, STEP_EL):
        normal.append(_searched(pitch_el, element_bytes, lambda n: n != 1 and n <= 4))
        second.append(_searched(pitch_el, element_bytes, lambda n: n != 1 and n < 17))
    return normal + second


# TABLE[class][entry]: the normal half, then the one of selector 2.
TABLE = [_searched_row(1 << element_class) for element_class in range(ELEMENT_CLASSES)]


def looked_up(width_el, element_class):
    """The look-up for a width, unclamped, with either selector: both come to the same.

    As the rules state it: up to 2048, the entry of the width divided by 64, rounded up; beyond, the
    whole 2048s with the entry of the rest, if there is a rest. check_pitch_padding.py proves that
    it is what stands here.

    An entry is its unpadded pitch, moved on by one step where that is a multiple of the span. As
    spans divide 2048 elements, this holds for what lies beyond whole 2048s as well, and 2048 itself
    is the one multiple of 2048 that moves.
    """
    step_el = 1024 >> element_class
    span_el = 2048 >> element_class
    pitch_el = round_up_by_mask(width_el, STEP_EL)
    on_span = equal(bits_of_both(pitch_el, span_el - 1), 0)
    stays = all_of(
        equal(bits_of_both(width_el, 2047), 0), negation(equal(width_el, LAST_PITCH_EL))
    )
    return choose(stays, width_el, add(pitch_el, choose(on_span, step_el, 0)))


for _element_class, _row in enumerate(TABLE):
    for _entry, _padded_el in enumerate(_row):
        if looked_up(_entry % HALF * STEP_EL, _element_class) != _padded_el:
            raise ValueError(f"class {_element_class}: the short rule misses entry {_entry}")
