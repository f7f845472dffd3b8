"""The rules for a level of a stored record and its planes, in the order in which they are checked,
as terms. A rule has the message of a record that breaks it, and the numbers that the message prints.
"""

from dataclasses import dataclass
from functools import cached_property

import z3

from executor import terms


@dataclass(frozen=True)
class Rule:
    message: str
    applies: object  # where the rule is asked at all
    broken: object
    numbers: tuple

    @cached_property
    def kept(self):
        return z3.Not(self.fails)

    @cached_property
    def fails(self):
        return z3.And(self.applies, self.broken)


def wide(value):
    return z3.ZeroExt(2, value)


def outside(offset, slices, slice_pitch, size, bound):
    """offset + (slices - 1) x slice pitch + size > bound, in exact arithmetic; slices is 1 or more."""
    others = terms.extended(terms.compute("add", slices, terms.mask(32), 32), 32, 64, False)
    product = terms.product(others, slice_pitch, 64)
    wraps = terms.product_wraps(others, slice_pitch, 64)
    return z3.Or(wraps, z3.UGT(wide(product) + (wide(size) + wide(offset)), wide(bound)))


def no_others(slices, slice_pitch):
    """What is true of a product with the factor 0."""
    others = terms.extended(terms.compute("add", slices, terms.mask(32), 32), 32, 64, False)
    return z3.Implies(others == 0, z3.And(terms.product(others, slice_pitch, 64) == 0,
                                          z3.Not(terms.product_wraps(others, slice_pitch, 64))))


def product32(a, b):
    """A 32-bit product, as 64 bits."""
    return z3.ZeroExt(32, terms.product(a, b, 32))


def level_rules(word, number, before, bound, total_size, linear_fallback):
    """Of a level's own words: word(name) gives them. `before` are the tiled and lrz_valid words of the
    level before it, None for level 0."""
    slices, tiled, planes = word("slices"), word("tiled"), word("planes")
    lrz, fast_clear = word("lrz_valid"), word("lrz_fc_valid")
    size = word("size")
    always = z3.BoolVal(True)
    yield Rule("Metadata level size is invalid value {level %u, size %llu, surface size %llu}", always,
               z3.Or(size == 0, z3.UGT(size, total_size)), (number, size, total_size))
    yield Rule("Metadata level slices is invalid value {level %u, slices %u}", always,
               z3.Or(slices == 0, z3.UGT(slices, 2048)), (number, slices))
    yield Rule("Metadata level tiled is invalid value {level %u, tiled %u}", always,
               z3.UGT(tiled, 1), (number, tiled))
    yield Rule("Metadata level planes is invalid value {level %u, planes %u}", always,
               z3.Or(planes == 0, z3.UGT(planes, 3)), (number, planes))
    yield Rule("Metadata level lrz valid bit is invalid value {level %u, lrz valid %u}", always,
               z3.UGT(lrz, 1), (number, lrz))
    yield Rule("Metadata level lrz fc valid bit is invalid value {level %u, lrz fc valid %u}", always,
               z3.UGT(fast_clear, 1), (number, fast_clear))
    yield Rule("Metadata level lrz valid bits mismatch {level %u, lrz valid %u, lrz fc valid %u}",
               always, lrz != fast_clear, (number, lrz, fast_clear))
    if before is not None:
        tiled_before, lrz_before = before
        yield Rule("Metadata level tiled bit transitioned from untiled to tiled %u",
                   tiled != tiled_before, tiled_before == 0, (number,))
        yield Rule("Metadata level has linear fallback but didnt enable bit in struct %u",
                   tiled != tiled_before, linear_fallback == 0, (number,))
        yield Rule("Metadata lrz buffer is present for some levels but not for others %u", always,
                   lrz != lrz_before, (number,))
    yield from lrz_rules(word, number, slices, bound)


def lrz_rules(word, number, slices, bound):
    exists = word("lrz_valid") == 1
    offset, pitch, size = word("lrz_offset"), word("lrz_slice_pitch"), word("lrz_size")
    row, width, height = word("lrz_pitch"), word("lrz_width"), word("lrz_height")
    yield Rule("Metadata level lrz buffer exceeds surface bounds {level %u, lrz offset %llu, lrz slice "
               "pitch %llu, slices %u, lrz size %llu, surface size %llu}", exists,
               outside(offset, slices, pitch, size, bound),
               (number, offset, pitch, slices, size, bound))
    yield Rule("Metadata level lrz size mismatch {level %u, lrz size %llu, lrz pitch %u, lrz height "
               "%u, lrz slice pitch %llu}", exists,
               z3.Or(z3.ULT(size, product32(row, height)), z3.UGT(size, pitch)),
               (number, size, row, height, pitch))
    yield Rule("Metadata level lrz pitch mismatch {level %u, lrz pitch %u, lrz width %u}", exists,
               z3.ULT(row, width), (number, row, width))
    yield Rule("Metadata level lrz dimensions are invalid {level %u, lrz width %u, lrz height %u}",
               exists, z3.Or(width == 0, height == 0), (number, width, height))
    offset, size = word("lrz_fc_offset"), word("lrz_fc_size")
    yield Rule("Metadata level lrz fc buffer exceeds surface bounds {level %u, lrz fc offset %llu, lrz "
               "fc size %llu, surface size %llu}", word("lrz_fc_valid") == 1,
               z3.UGT(wide(offset) + wide(size), wide(bound)), (number, offset, size, bound))


def plane_rules(word, level_word, level, plane, bound, has_actual_size):
    """Of a plane's words: word(name) gives them, level_word(name) those of its level."""
    slices, tiled = level_word("slices"), level_word("tiled")
    counted = z3.UGT(level_word("planes"), plane)
    offset, pitch, size = word("image_offset"), word("image_slice_pitch"), word("image_size")
    row, element = word("image_pitch"), word("image_element_size")
    width, height = word("image_width"), word("image_height")
    covered_width = word("actual_width") if has_actual_size else width
    covered_height = word("actual_height") if has_actual_size else height
    of_height = "actual height" if has_actual_size else "image height"
    of_width = "actual width" if has_actual_size else "image width"
    yield Rule("Metadata level image buffer exceeds surface bounds {level %u, plane %u, image offset "
               "%llu, image slice pitch %llu, slices %u, image size %llu, surface size %llu}", counted,
               outside(offset, slices, pitch, size, bound),
               (level, plane, offset, pitch, slices, size, bound))
    yield Rule("Metadata level image size mismatch {level %u, plane %u, image size %llu, image pitch "
               f"%u, {of_height} %u, image slice pitch %llu}}", counted,
               z3.Or(z3.ULT(size, product32(row, covered_height)), z3.UGT(size, pitch)),
               (level, plane, size, row, covered_height, pitch))
    yield Rule("Metadata level image pitch mismatch {level %u, plane %u, image pitch %u, "
               f"{of_width} %u, image element size %u}}", counted,
               z3.ULT(row, terms.product(element, covered_width, 32)),
               (level, plane, row, covered_width, element))
    sizes = [width, height] + ([covered_width, covered_height] if has_actual_size else []) + [element]
    actual = "actual width %u, actual height %u, " if has_actual_size else ""
    yield Rule("Metadata level image invalid dimensions {level %u, plane %u, image width %u, image "
               f"height %u, {actual}image element size %u}}", counted,
               z3.Or(*(s == 0 for s in sizes)), (level, plane, *sizes))
    yield from flag_rules(word, level, plane, slices, tiled, counted, bound)


def flag_rules(word, level, plane, slices, tiled, counted, bound):
    valid = word("flag_valid")
    exists = z3.And(counted, valid != 0)
    offset, pitch, size = word("flag_offset"), word("flag_slice_pitch"), word("flag_size")
    row = word("flag_pitch")
    yield Rule("Metadata level flagbuffer valid bit invalid {level %u, plane %u, valid %u}", exists,
               valid != 1, (level, plane, valid))
    yield Rule("Metadata level flagbuffer enabled but tiling is disabled {level %u, plane %u}", exists,
               tiled == 0, (level, plane))
    yield Rule("Metadata level flagbuffer buffer exceeds surface bounds {level %u, plane %u, flag "
               "offset %llu, flag slice pitch %llu, slices %u, flag size %llu, surface size %llu}",
               exists, outside(offset, slices, pitch, size, bound),
               (level, plane, offset, pitch, slices, size, bound))
    yield Rule("Metadata level flagbuffer pitch mismatch {level %u, plane %u, flag pitch %u, flag "
               "slice pitch %llu}", exists,
               z3.Or(row == 0, z3.UGT(z3.ZeroExt(32, row), pitch)), (level, plane, row, pitch))
    yield Rule("Metadata level flagbuffer slice pitch mismatch {level %u, plane %u, flag slice pitch "
               "%llu, flag size %llu}", exists, z3.ULT(pitch, size), (level, plane, pitch, size))
