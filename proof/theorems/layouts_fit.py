"""The buffers of a layout of one level are disjoint, in order and inside the surface.

Of the words that layouts_write_what_they_document shows the initialisers to write, for 1 and 2 planes
(--quick: 1) with and without flag buffers and 3 planes without, any number of slices, any sizes and alignments:

1. Of one slice the flag buffer of a plane, its image, the next plane's flag buffer and so on follow
   each other without a gap; the last ends at T, the bytes of one slice of all planes.
2. Of all slices each buffer ends at or below depth x T: offset + (depth - 1) x slice pitch + size.
3. Slice k + 1 of a plane starts at or behind the end of slice k.
4. total_size - size is a multiple of `alignment` and at least depth x T and the extra buffer.
5. The rows of an image lie inside it.

Where: depth is 1 or more; sums and depth x T do not wrap 64 bits; for 4 `alignment` is a power of two;
for 5 the 32-bit product of pitch and rows does not wrap, nor does rounding it up, and both alignments
are powers of two and not 0.

Exceptions, each found with products as they are: of two planes and two slices, slice 1 of the
first plane starts where the second plane does, as planes are counted with one slice each; where the
base alignment is 0 an image is smaller than its rows; and where the product of pitch and rows wraps,
65536 rows of 65536 bytes for example, it is smaller than they are in exact arithmetic.

Not shown: 3 planes with flag buffers; chains.

Lemmas on products of numbers without sign, the first two of which the solver checks on numbers of 4
bits: (d - 1) x t + t = d x t; s <= t makes (d - 1) x s <= (d - 1) x t; where d x t does not wrap and d is
not 0, (d - 1) x t does not either.
"""

import z3

from executor import terms
from layouts import plane_conditions, rounded_up, unknown, wide

BITS = 64


def prove(proof):
    lemmas_of_4_bits(proof)
    for planes in (1,) if proof.quick else (1, 2, 3):
        for with_flags in (False, True) if planes < 3 else (False,):
            one_level(proof, planes, with_flags)


def lemmas_of_4_bits(proof):
    d, s, t = (z3.ZeroExt(4, unknown(n, 4)) for n in ("d", "s", "t"))
    counted = [d != 0]
    proof.show("(d - 1) x t + t = d x t", counted, (d - 1) * t + t == d * t)
    proof.show("products grow with their factors", [*counted, z3.ULE(s, t)],
               z3.ULE((d - 1) * s, (d - 1) * t))


def any_plane(number, with_flags):
    words = {name: unknown(f"{number}.{name}", bits) for name, bits in (
        ("image_offset", 64), ("image_size", 64), ("image_pitch", 32), ("image_slice_pitch", 64),
        ("image_element_size", 32), ("image_width", 32), ("image_height", 32))}
    words["image_alignment"] = unknown("image_alignment")
    if with_flags:
        words |= {name: unknown(f"{number}.{name}", 64)
                  for name in ("flag_offset", "flag_size", "flag_slice_pitch")}
    return words


def no_wrap(a, b):
    return z3.BVAddNoOverflow(a, b, False)


def power_of_two(value):
    return z3.And(value != 0, value & (value - 1) == 0)


def one_level(proof, planes, with_flags):
    base = {"base_alignment": z3.ZeroExt(48, unknown("base_alignment", 16))}
    depth = z3.SignExt(32, unknown("depth"))
    others = depth - 1
    laid, known, end = [], [unknown("depth") > 0], z3.BitVecVal(0, BITS)
    for number in range(planes):
        words = any_plane(number, with_flags)
        known += plane_conditions(end, words, with_flags, base).values()
        known += [z3.ULT(words["image_size"], 1 << 33), no_wrap(end, words["image_slice_pitch"])]
        laid.append((words, end))
        end = end + words["image_slice_pitch"]
    of_all = terms.product(depth, end, BITS)
    product = of_all.decl()
    known += [product(depth, end) == of_all, product(end, depth) == of_all,
              product(others, end) + end == of_all, z3.ULE(product(others, end), of_all)]

    for words, start in laid:
        at = start
        buffers = ([("flag_offset", "flag_size", "flag_slice_pitch")] if with_flags else []) + [
            ("image_offset", "image_size", "image_slice_pitch")]
        for offset, size, pitch in buffers:
            proof.show(f"{offset}: in order, without a gap", known, words[offset] == at)
            at = at + words[size]
            proof.show("one slice ends inside T", known, z3.ULE(at, end))
            step = product(others, words[pitch])
            lemma = z3.Implies(z3.ULE(words[pitch], end), z3.ULE(step, product(others, end)))
            last = words[offset] + step
            proof.show("all slices end inside depth x T, exactly", [*known, lemma],
                       z3.And(no_wrap(words[offset], step), no_wrap(last, words[size]),
                              z3.ULE(last + words[size], of_all)))
            proof.show("a slice ends before the next one starts", known,
                       z3.ULE(words[size], words[pitch]))
        proof.show("the next plane starts behind it", known, at == start + words["image_slice_pitch"])
        rows_inside(proof, words, known, planes == 1)
    total_size(proof, known, of_all)
    proof.find("such planes", [*known, z3.UGT(end, 1 << 20)])
    if planes == 2:
        first, second = laid[0][0], laid[1][0]
        slice_1 = laid[0][1] + first["image_slice_pitch"]
        first_word = "flag_offset" if with_flags else "image_offset"
        as_they_are = [unknown("depth") == 2, of_all == 2 * end, product(others, end) == end]
        proof.find("slices of two planes that overlap",
                   [*known, *as_they_are, slice_1 == second[first_word],
                    second["image_size"] != 0, first["image_size"] != 0])


def rows_inside(proof, words, known, alone):
    alignment, base = words["image_alignment"], unknown("base_alignment", 16)
    rows = terms.compute("mul", words["image_pitch"], words["image_height"], 32)
    sane = [power_of_two(base), power_of_two(alignment), z3.ULE(alignment, 1 << 16),
            z3.ULE(rows, (1 << 32) - (1 << 16))]
    proof.show("the rows of an image lie inside it", [*known, *sane],
               z3.ULE(wide(rows), words["image_size"]))
    if not alone:
        return
    as_they_are = rows == words["image_pitch"] * words["image_height"]
    proof.find("without a base alignment they do not",
               [*known, as_they_are, base == 0, rows != 0, z3.ULT(words["image_size"], wide(rows))])
    proof.find("65536 rows of 65536 bytes do not",
               [*known, as_they_are, power_of_two(base), power_of_two(alignment),
                words["image_pitch"] == 1 << 16, words["image_height"] == 1 << 16,
                z3.ULT(words["image_size"], 1 << 32)])


def total_size(proof, known, of_all):
    alignment, size = unknown("alignment"), unknown("size")
    extra = unknown("extra bytes", 64)  # 0 without LAYOUT_FLAG_EXTRA
    surface = of_all + extra
    whole = rounded_up(surface, wide(alignment), 64)
    total = whole + wide(size)
    sane = [*known, power_of_two(alignment), no_wrap(of_all, extra), no_wrap(surface, wide(alignment)),
            no_wrap(whole, wide(size))]
    bytes_ = total - wide(size)
    proof.show("the surface is whole alignments", sane, bytes_ & (wide(alignment) - 1) == 0)
    proof.show("it holds the planes and the extra buffer", sane,
               z3.And(z3.ULE(of_all, bytes_), z3.ULE(surface, bytes_)))
