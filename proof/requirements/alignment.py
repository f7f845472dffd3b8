"""The alignment rules as terms: what each alignment entry answers, for sizes that are unknown.

A format, plane, tiling mode and chip family are known numbers; everything else may be an int or a
32-bit z3 term, and a condition a bool or a z3 Bool. Nothing here is taken from the library's
sources or from its tests: the rules are written down a second time, each in its order, with its
wraps and its signedness. Where a `fault` holds, a division by 0 ends the
call and the other answers mean nothing.

The selector of a padded pitch is no argument: both selectors come to the same pitches, which
pitch_padding.py checks. `tiling_mode` is 1 for tiled; any other number is linear.
"""

from dataclasses import dataclass
from math import gcd
from typing import Any

import chips
import formats
from pitch_padding import ELEMENT_CLASSES, looked_up
from words import (
    add,
    all_of,
    any_of,
    at_most_signed,
    bits_of_both,
    choose,
    choose_condition,
    condition,
    divide_signed,
    divide_unsigned,
    equal,
    first_match,
    less_signed,
    less_unsigned,
    multiply,
    negation,
    round_up_by_mask,
    round_up_exactly,
    subtract,
    term,
    word,
)

TILED = 1
LINEAR = 0
WIDEST_PADDED_EL = 16384  # what families 5 and 6 clamp a looked-up pitch to


# ---- Answers -------------------------------------------------------------------------------------


@dataclass(frozen=True)
class Answer:
    """Of an entry with two outputs. Where `written` does not hold, they keep what they held."""

    fault: Any  # z3 Bool, as are the next three
    negative_size: Any  # the message "Invalid width or height: ..."
    unknown_chip: Any  # the message "Unknown Chip ID ..."; with neither there is no message
    written: Any
    width: Any  # 32-bit term
    height: Any  # 32-bit term


@dataclass(frozen=True)
class BytesAnswer:
    """Of the entry in bytes. A message is told by the minimal entry, then by the full one."""

    fault: Any
    negative_size: Any
    unknown_chip: Any
    aligned_row_bytes: Any
    minimal_row_bytes: Any
    aligned_height: Any
    tiling_mode_written: Any  # z3 Bool: 0 is stored to the caller's tiling mode
    tiling_mode: Any  # what it holds afterwards


@dataclass(frozen=True)
class CompressedAnswer:
    """Of the entry for sizes in blocks; at most one of the three messages holds."""

    fault: Any
    negative_size: Any
    not_compressed: Any
    null_pointer: Any
    written: Any
    width: Any
    height: Any
    bpp: Any


@dataclass(frozen=True)
class ValueAnswer:
    """Of an entry that returns a number."""

    fault: Any
    negative_size: Any
    unknown_chip: Any
    value: Any


@dataclass(frozen=True)
class _Ruled:
    """What a rule comes to: a word, and whether a division by 0 stands in its way."""

    value: Any
    fault: Any = False


# ---- Tiles ---------------------------------------------------------------------------------------


def _can_be(size, number):
    """Whether some count of samples makes `size` bytes `number`, modulo 2^32."""
    return number % gcd(size, 1 << 32) == 0


def _by_sampled_bytes(size, samples, rows, otherwise):
    """Cases by the bytes of an element with its samples: (listed bytes, word) rows, then a word."""
    sampled_bytes = multiply(size, samples)
    cases = [
        (any_of(*(equal(sampled_bytes, n) for n in listed if _can_be(size, n))), value)
        for listed, value in rows
    ]
    return cases + [(True, otherwise)]


def _tile_width_cases(traits, tall_formats, samples):
    """Pixels of a tile's width, without blocks."""
    wide = traits.format_id in formats.WIDE_TILE
    tall = traits.format_id in tall_formats
    rows = (
        ((1,), 256 if wide else 128),
        ((2,), 64 if tall else 128),
        ((8,), 32),
        ((16,), 16),
        ((32, 64), 8),
    )
    return _by_sampled_bytes(traits.bytes, samples, rows, 64)


def _tile_height_cases(traits, samples):
    """Rows of a tile without blocks, families 6 and 7."""
    wide = traits.format_id in formats.WIDE_TILE
    tall = traits.format_id in formats.TALL_TILE_FAMILY67
    rows = (((1,), 16 if wide else 32), ((2,), 32 if tall else 16))
    return _by_sampled_bytes(traits.bytes, samples, rows, 16)


def _tile_width_cases_family67(traits, samples):
    """A tile's width in pixels, a block's width counted in."""
    cases = _tile_width_cases(traits, formats.TALL_TILE_FAMILY67, samples)
    scale = traits.block_width if traits.is_counted_in_blocks else 1
    return [(test, width_px * scale) for test, width_px in cases]


def _tile_row_bytes(row_bytes, element_bytes, format_id):
    """A tiled row of family 5 rounded up, by the bytes of an element with its samples."""
    one_byte = 256 if format_id in formats.WIDE_TILE else 128
    two_bytes = 128 if format_id in formats.TALL_TILE_FAMILY5 else 256
    multiple = first_match(
        [
            (equal(element_bytes, 1), one_byte),
            (equal(element_bytes, 2), two_bytes),
            (any_of(*(equal(element_bytes, n) for n in (4, 8, 16, 32))), 256),
            (equal(element_bytes, 64), 512),
            (True, 1),  # any other: the row as it is
        ]
    )
    return round_up_by_mask(row_bytes, multiple)


# ---- Linear rows ---------------------------------------------------------------------------------


def _elements_to_64_bytes_cases(sampled_bytes):
    """64 / gcd(64, k): elements of k bytes until whole 64 bytes are full; 1 for a k of 0."""
    cases = [
        (equal(bits_of_both(sampled_bytes, low_bits), 0), 64 // (low_bits + 1))
        for low_bits in (63, 31, 15, 7, 3, 1)
    ]
    return cases + [(True, 64)]


def _elements_in_64_bytes_cases(size, samples):
    """64 / k where k = size * samples is below 64, else 1. A k of 0 faults; the caller notes it."""
    sampled_bytes = multiply(size, samples)
    divisors = [n for n in range(1, 64) if _can_be(size, n)]
    cases = []
    for quotient in sorted({64 // n for n in divisors}, reverse=True):
        largest = max(n for n in divisors if 64 // n == quotient)
        cases.append((less_unsigned(sampled_bytes, largest + 1), quotient))
    return cases + [(True, 1)]


def _by_divisor(width, step_bytes, divisor):
    """The last step of both base widths: a mask round-up, whatever the quotient is."""
    step_el = divide_unsigned(step_bytes, divisor)
    aligned = choose(equal(step_el, 0), width, round_up_by_mask(width, step_el))
    return aligned, equal(divisor, 0)


def _odd_element_width(width, element_bytes, format_id):
    """Of elements that are no power of two: rows of whole units, signed."""
    substitute_bytes = formats.traits(formats.npot_substitute(format_id)).bytes
    unit = word(substitute_bytes * element_bytes * 64)
    units = divide_signed(subtract(add(multiply(width, element_bytes), unit), 1), unit)
    return divide_signed(multiply(units, unit), element_bytes)


def _padded_width(chip, width, element_bytes):
    """The look-up in the padding tables, and the family's clamp; `element_bytes` is known."""
    if element_bytes.bit_length() > ELEMENT_CLASSES or element_bytes == 0:
        return width
    padded = looked_up(width, element_bytes.bit_length() - 1)
    if chip.family == 7:
        limit = word(chip.max_surface_pitch)
        return choose(less_signed(padded, limit), padded, limit)
    return choose(less_unsigned(padded, WIDEST_PADDED_EL), padded, WIDEST_PADDED_EL)


def _linear_pitch(chip, width, element_bytes, format_id, min_padded_row_bytes):
    """What all families make of an aligned linear width: odd elements, threshold, padding."""
    if not formats.traits(format_id).has_padded_pitch:
        return width
    if element_bytes != 0 and not formats.is_power_of_two(element_bytes):
        return _odd_element_width(width, element_bytes, format_id)
    row_bytes = multiply(width, element_bytes)
    return choose(
        at_most_signed(row_bytes, min_padded_row_bytes),
        width,
        _padded_width(chip, width, element_bytes),
    )


# ---- Families 6 and 7 ----------------------------------------------------------------------------


def _base_width_family67(width, plane, samples, format_id, tiling_mode, again, divisor):
    traits = formats.traits(format_id)
    block_width = traits.block_width
    if tiling_mode == TILED:
        described = formats.traits(formats.plane_format(format_id, plane))
        row_px = multiply(width, block_width)

        def whole_tiles(tile_px):
            rounded = choose(equal(row_px, 0), tile_px, round_up_exactly(row_px, tile_px))
            return divide_unsigned(rounded, block_width)

        return _Ruled(first_match(_tile_width_cases_family67(described, samples), whole_tiles))

    substitute = formats.traits(formats.listed_substitute(format_id))
    size = formats.traits(formats.listed_substitute(substitute.format_id)).bytes
    sampled_bytes = multiply(size, samples)
    if substitute.is_counted_in_blocks:
        linear_cases = [
            (test, elements * substitute.block_width)
            for test, elements in _elements_in_64_bytes_cases(size, samples)
        ]
        linear_fault = equal(sampled_bytes, 0)
    else:
        linear_cases = _elements_to_64_bytes_cases(sampled_bytes)
        linear_fault = False

    if traits.is_counted_in_blocks:

        def step_bytes_of(step_px):
            return word(traits.bytes * (step_px // block_width))

    else:

        def step_bytes_of(step_px):
            step_bytes = multiply(multiply(substitute.bytes, step_px), samples)
            return round_up_by_mask(step_bytes, 64)

    whole_tiles = equal(again, TILED)
    step_bytes = choose(
        whole_tiles,
        first_match(_tile_width_cases_family67(substitute, samples), step_bytes_of),
        first_match(linear_cases, step_bytes_of),
    )
    aligned, divisor_fault = _by_divisor(width, step_bytes, divisor)
    return _Ruled(aligned, any_of(all_of(negation(whole_tiles), linear_fault), divisor_fault))


def _width_family67(
    chip,
    width,
    plane,
    element_bytes,
    samples,
    format_id,
    tiling_mode,
    again,
    min_padded_row_bytes,
    divisor,
    extra_width,
):
    base = _base_width_family67(
        add(width, extra_width), plane, samples, format_id, tiling_mode, again, divisor
    )
    if tiling_mode == TILED:
        return base
    pitch = _linear_pitch(chip, base.value, element_bytes, format_id, min_padded_row_bytes)
    return _Ruled(pitch, base.fault)


def _height_family67(height, plane, samples, format_id, tiling_mode, extra_rows):
    traits = formats.traits(format_id)
    padded = add(height, extra_rows)
    if tiling_mode == TILED:
        described = formats.traits(formats.plane_format(format_id, plane))
        scale = described.block_height if described.is_counted_in_blocks else 1
        cases = [
            (test, rows * scale)
            for test, rows in _tile_height_cases(described, samples)
        ]
    elif format_id == formats.ROWS_OF_64:
        return round_up_by_mask(padded, 64)
    else:
        cases = [(True, traits.block_height if traits.is_counted_in_blocks else 1)]

    rows_px = multiply(padded, traits.block_height)

    def whole_steps(step_px):
        # Signed: above 0 as the rows are here, the inner division is the same either way.
        steps = divide_signed(subtract(rows_px, 1), step_px)
        rounded = add(step_px, multiply(steps, step_px))
        at_least_one = choose(less_signed(0, rows_px), rounded, step_px)
        return divide_signed(at_least_one, traits.block_height)

    return first_match(cases, whole_steps)


# ---- Family 5 ------------------------------------------------------------------------------------


def _width_of_64s(width):
    return choose(equal(width, 0), 64, round_up_by_mask(width, 64))


def _tiled_width_family5(width, element_bytes, format_id, in_64s):
    """in_64s: the full alignment rounds the width of elements of 4 bytes and more up once more."""
    large = divide_unsigned(
        _tile_row_bytes(multiply(width, element_bytes), element_bytes, format_id), element_bytes
    )
    if in_64s:
        large = _width_of_64s(large)
    small_row_bytes = multiply(_width_of_64s(width), element_bytes)
    small = divide_unsigned(
        _tile_row_bytes(small_row_bytes, element_bytes, format_id), element_bytes
    )
    return _Ruled(
        choose(less_unsigned(element_bytes, 4), small, large), equal(element_bytes, 0)
    )


def _height_family5(height, element_bytes, format_id, tiling_mode):
    if tiling_mode != TILED:
        return round_up_by_mask(height, 64) if format_id == formats.ROWS_OF_64 else height
    tall = format_id in formats.TALL_TILE_FAMILY5
    wide = format_id in formats.WIDE_TILE
    rows = first_match(
        [
            (all_of(equal(element_bytes, 2), tall), 32),
            (all_of(equal(element_bytes, 1), wide), 16),
            (less_unsigned(1, element_bytes), 16),
            (True, 32),
        ]
    )
    return round_up_by_mask(height, rows)


def _width_family5(chip, width, element_bytes, format_id, tiling_mode, min_padded_row_bytes):
    if tiling_mode == TILED:
        return _tiled_width_family5(width, element_bytes, format_id, in_64s=True)
    width = _width_of_64s(width)
    return _Ruled(_linear_pitch(chip, width, element_bytes, format_id, min_padded_row_bytes))


def _base_width_family5(width, format_id, again, samples, divisor):
    """The linear base width; its tiled form stands in the minimal entry itself."""
    traits = formats.traits(format_id)
    substitute = formats.traits(formats.npot_substitute(format_id))
    tile_cases = _tile_width_cases(substitute, formats.TALL_TILE_FAMILY5, samples)
    size = formats.traits(formats.npot_substitute(substitute.format_id)).bytes
    sampled_bytes = multiply(size, samples)
    if substitute.is_block_like_family5:
        linear_cases = _elements_in_64_bytes_cases(size, samples)
        linear_fault = equal(sampled_bytes, 0)
        scale = substitute.block_width
    else:
        linear_cases = _elements_to_64_bytes_cases(sampled_bytes)
        linear_fault = False
        scale = 1

    if traits.is_block_like_family5:

        def step_bytes_of(step_px):
            return word(step_px * scale // traits.block_width * traits.bytes)

    else:

        def step_bytes_of(step_px):
            step_bytes = multiply(multiply(substitute.bytes, step_px * scale), samples)
            return round_up_by_mask(step_bytes, 64)

    whole_tiles = negation(equal(again, 0))
    step_bytes = choose(
        whole_tiles,
        first_match(tile_cases, step_bytes_of),
        first_match(linear_cases, step_bytes_of),
    )
    aligned, divisor_fault = _by_divisor(width, step_bytes, divisor)
    return _Ruled(aligned, any_of(all_of(negation(whole_tiles), linear_fault), divisor_fault))


# ---- What the entries share ----------------------------------------------------------------------


def _is_negative(width, height):
    return any_of(less_signed(width, 0), less_signed(height, 0))


def _element_bytes(format_id, plane, samples, tiling_mode):
    size = formats.plane_bytes(format_id, plane)
    return multiply(size, samples) if tiling_mode == TILED else size


def _answer(chip, width, height, aligned_width, aligned_height):
    """Sizes that pass the checks as ruled; negative ones 1 x 1; an unknown chip's as they came."""
    negative = _is_negative(width, height)
    ruled = all_of(negation(negative), chip.supported)

    def output(aligned, asked):
        return term(choose(negative, 1, choose(chip.supported, aligned, asked)))

    return Answer(
        fault=condition(all_of(ruled, aligned_width.fault)),
        negative_size=condition(negative),
        unknown_chip=condition(all_of(negation(negative), negation(chip.supported))),
        written=condition(True),
        width=output(aligned_width.value, width),
        height=output(aligned_height, height),
    )


def _unaligned(chip, width, height):
    return _answer(chip, width, height, _Ruled(width), height)


def _has_rules(chip):
    if chip.supported is False:
        return False
    if chip.family not in (5, 6, 7):
        raise ValueError(f"a supported chip of family {chip.family}")
    return True


def _extra(chip, format_id, want_extra_padding):
    wanted = negation(equal(want_extra_padding, 0))
    width = chips.extra_width_padding(chip, formats.extra_width_unit(format_id))
    return choose(wanted, width, 0), choose(wanted, chips.extra_height_padding(chip), 0)


def _aligned_family67(
    chip,
    width,
    height,
    plane,
    format_id,
    samples,
    tiling_mode,
    again,
    min_padded_row_bytes,
    divisor,
    want_extra_padding,
):
    element_bytes = _element_bytes(format_id, plane, samples, tiling_mode)
    extra_width, extra_rows = _extra(chip, format_id, want_extra_padding)
    aligned_width = _width_family67(
        chip,
        width,
        plane,
        element_bytes,
        samples,
        format_id,
        tiling_mode,
        again,
        min_padded_row_bytes,
        divisor,
        extra_width,
    )
    aligned_height = _height_family67(height, plane, samples, format_id, tiling_mode, extra_rows)
    return _answer(chip, width, height, aligned_width, aligned_height)


# ---- Entries -------------------------------------------------------------------------------------


def get_gpu_pixel_alignment(chip):
    no = condition(False)
    return ValueAnswer(no, no, no, term(chip.pixel_alignment))


def _least_common_multiple(mode_alignment, base_alignment):
    """Of two known numbers, the product taken modulo 2^32; None where it divides by 0."""
    divisor = gcd(base_alignment, mode_alignment)  # gcd(b, 0) is b, as in Euclid's loop
    return word(base_alignment * mode_alignment) // divisor if divisor else None


def get_slice_pitch_alignment(chip, tiling_mode):
    """`tiling_mode` may be a term here."""
    tiled = equal(word(tiling_mode), TILED)
    fault = False
    value = 0
    for mode_test, has_mode, mode_values in (
        (tiled, chip.has_tiled_alignment, chips.TILED_ALIGNMENT),
        (negation(tiled), chip.has_linear_alignment, chips.LINEAR_ALIGNMENT),
    ):
        for with_mode, mode_value in zip((has_mode, negation(has_mode)), mode_values):
            has_base = chip.has_base_alignment
            for with_base, base_value in zip((has_base, negation(has_base)), chips.BASE_ALIGNMENT):
                here = all_of(mode_test, with_mode, with_base)
                multiple = _least_common_multiple(mode_value, base_value)
                if multiple is None:
                    fault = any_of(fault, here)
                else:
                    value = choose(here, multiple, value)
    no = condition(False)
    return ValueAnswer(condition(fault), no, no, term(value))


def compute_compressedfmt_aligned_width_and_height(
    chip, texel_width, texel_height, format_id, any_pointer_null=False
):
    """any_pointer_null: whether one of the three output pointers is null."""
    texel_width, texel_height = word(texel_width), word(texel_height)
    traits = formats.traits(format_id)
    negative = _is_negative(texel_width, texel_height)
    compressed = traits.is_block_compressed
    blocks_wide = divide_signed(
        subtract(add(texel_width, traits.block_width), 1), traits.block_width
    )
    blocks_high = divide_signed(
        subtract(add(texel_height, traits.block_height), 1), traits.block_height
    )
    passes = all_of(negation(negative), compressed)
    return CompressedAnswer(
        fault=condition(False),
        negative_size=condition(negative),
        not_compressed=condition(all_of(negation(negative), negation(compressed))),
        null_pointer=condition(all_of(passes, any_pointer_null)),
        written=condition(any_of(negative, all_of(compressed, negation(any_pointer_null)))),
        width=term(choose(negative, 1, round_up_by_mask(blocks_wide, chip.pixel_alignment))),
        height=term(choose(negative, 1, blocks_high)),
        bpp=term(choose(negative, 1, traits.bytes)),
    )


def compute_aligned_width_and_height(chip, width, height):
    """Its four arguments between the size and the outputs have no effect."""
    width, height = word(width), word(height)
    negative = _is_negative(width, height)
    return Answer(
        fault=condition(False),
        negative_size=condition(negative),
        unknown_chip=condition(all_of(negation(negative), negation(chip.supported))),
        written=condition(any_of(negative, negation(chip.supported))),
        width=term(choose(negative, 1, width)),
        height=term(choose(negative, 1, height)),
    )


def compute_surface_padding(chip, width):
    """Its four further arguments have no effect."""
    checked = compute_aligned_width_and_height(chip, width, 1)
    return ValueAnswer(
        checked.fault,
        checked.negative_size,
        checked.unknown_chip,
        term(choose(checked.written, checked.width, 0)),
    )


def compute_fmt_aligned_width_and_height(
    chip, width, height, plane, format_id, samples, tiling_mode, min_padded_row_bytes
):
    return compute_fmt_aligned_width_and_height_fdm(
        chip, width, height, plane, format_id, samples, tiling_mode, min_padded_row_bytes, 1, 0
    )


def compute_fmt_aligned_width_and_height_fdm(
    chip,
    width,
    height,
    plane,
    format_id,
    samples,
    tiling_mode,
    min_padded_row_bytes,
    divisor,
    want_extra_padding,
):
    width, height, samples = word(width), word(height), word(samples)
    min_padded_row_bytes, divisor = word(min_padded_row_bytes), word(divisor)
    if not _has_rules(chip):
        return _unaligned(chip, width, height)
    if chip.family == 5:  # the divisor and the extra padding are ignored
        element_bytes = _element_bytes(format_id, plane, samples, tiling_mode)
        aligned_width = _width_family5(
            chip, width, element_bytes, format_id, tiling_mode, min_padded_row_bytes
        )
        aligned_height = _height_family5(height, element_bytes, format_id, tiling_mode)
        return _answer(chip, width, height, aligned_width, aligned_height)
    return _aligned_family67(
        chip,
        width,
        height,
        plane,
        format_id,
        samples,
        tiling_mode,
        word(tiling_mode),
        min_padded_row_bytes,
        divisor,
        word(want_extra_padding),
    )


def compute_fmt_minimal_aligned_width_and_height(
    chip,
    width,
    height,
    plane,
    format_id,
    samples,
    tiling_mode,
    tiling_allowed,
    min_padded_row_bytes,
    divisor,
    want_extra_padding,
):
    width, height, samples = word(width), word(height), word(samples)
    min_padded_row_bytes, divisor = word(min_padded_row_bytes), word(divisor)
    tiling_allowed = word(tiling_allowed)
    if not _has_rules(chip):
        return _unaligned(chip, width, height)
    if chip.family != 5:
        return _aligned_family67(
            chip,
            width,
            height,
            plane,
            format_id,
            samples,
            tiling_mode,
            tiling_allowed,
            min_padded_row_bytes,
            divisor,
            word(want_extra_padding),
        )
    element_bytes = _element_bytes(format_id, plane, samples, tiling_mode)
    if tiling_mode == TILED:
        aligned_width = _tiled_width_family5(width, element_bytes, format_id, in_64s=False)
    else:
        base = _base_width_family5(width, format_id, tiling_allowed, samples, divisor)
        pitch = _linear_pitch(chip, base.value, element_bytes, format_id, min_padded_row_bytes)
        aligned_width = _Ruled(pitch, base.fault)
    aligned_height = _height_family5(height, element_bytes, format_id, tiling_mode)
    return _answer(chip, width, height, aligned_width, aligned_height)


def compute_fmt_aligned_width_and_height_in_bytes(
    chip, width, height, plane, format_id, samples, tiling_mode, min_padded_row_bytes
):
    """`tiling_mode` is what the caller's pointer holds before the call."""
    width, height, samples = word(width), word(height), word(samples)
    traits = formats.traits(format_id)
    divisor = formats.plane_bytes(format_id, plane)
    record_bytes = formats.traits(formats.npot_substitute(format_id)).bytes
    block_width = traits.block_width if traits.is_block_compressed else 1
    cleared = all_of(chip.supported, less_signed(width, 16 * block_width))

    def calls(mode, tiling_allowed):
        common = (chip, width, height, plane, format_id, samples, mode)
        minimal = compute_fmt_minimal_aligned_width_and_height(
            *common, tiling_allowed, min_padded_row_bytes, divisor, 0
        )
        full = compute_fmt_aligned_width_and_height(*common, min_padded_row_bytes)
        element_bytes = multiply(record_bytes, samples) if mode == TILED else record_bytes
        return BytesAnswer(
            fault=any_of(minimal.fault, full.fault),
            negative_size=full.negative_size,
            unknown_chip=full.unknown_chip,
            aligned_row_bytes=multiply(element_bytes, full.width),
            minimal_row_bytes=multiply(element_bytes, minimal.width),
            aligned_height=full.height,
            tiling_mode_written=None,
            tiling_mode=None,
        )

    if tiling_mode == TILED:
        narrow, own = calls(LINEAR, 0), calls(TILED, 1)
    else:
        narrow = own = calls(LINEAR, choose(cleared, 0, 1))
    return BytesAnswer(
        fault=condition(choose_condition(cleared, narrow.fault, own.fault)),
        negative_size=own.negative_size,
        unknown_chip=own.unknown_chip,
        aligned_row_bytes=term(choose(cleared, narrow.aligned_row_bytes, own.aligned_row_bytes)),
        minimal_row_bytes=term(choose(cleared, narrow.minimal_row_bytes, own.minimal_row_bytes)),
        aligned_height=term(choose(cleared, narrow.aligned_height, own.aligned_height)),
        tiling_mode_written=condition(cleared),
        tiling_mode=term(choose(cleared, 0, word(tiling_mode))),
    )
