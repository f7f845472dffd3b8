"""The buffers of a mip chain are disjoint, in order and inside the surface.

Of the words that chains_write_what_they_document shows korvel_init_multi_level_surface to write, by the
same relations, for chains of 1 to 15 levels (--quick: 1 and 2), any number of slices, any sizes, pitches
and alignments. The planes of a surface follow by one of them at a time: each behind any others.

1. Flag buffers that are gathered follow each other from 0 on without a gap; their slice pitch holds all
   of them. Images start at or behind all slices of them.
2. Images, each behind its own flag buffer where it has one, follow each other without a gap; the chain
   ends at or below its start and the slice pitch.
3. Of all slices each buffer that ends in the first slice ends at or below the chain's start and
   depth x slice pitch, and slice k + 1 of a buffer starts at or behind the end of slice k.
4. The next plane starts at or behind all slices of this one: other than in surfaces of one level,
   slices of planes do not overlap.
5. total_size - size is a multiple of `alignment`, and at least where the last plane ends and the extra
   buffer behind it.

Where: depth is 1 or more; sums and depth x slice pitch do not wrap 64 bits; `alignment` is a power of
two; so are the three alignments of the chip, and not 0: on chips without the property what is rounded
up by it comes out as 0.

Exceptions, each found with products as they are: where level_offset_alignment is 0 every plane's chain
starts at 0, so that planes overlap; where base_alignment is 0 the slice pitch is 0; where
level_size_alignment is 0 images start inside the flag buffers in front of them; and a flag buffer's size
that wraps 32 bits is smaller than its rows, those of 65536 x 65536 tiles for example.

Not shown: that the rows of an image lie inside it: layouts_fit shows it of the same relation.

Lemmas on products of numbers without sign, the first two of which the solver checks on numbers of 4
bits: (d - 1) x t + t = d x t; s <= t makes (d - 1) x s <= (d - 1) x t; where d x t does not wrap and d is
not 0, (d - 1) x t does not either.
"""

import z3

import chains
from executor import terms
from layouts import equal, rounded_up, unknown, wide
from theorems.layouts_fit import lemmas_of_4_bits, no_wrap, power_of_two

BITS = 64
_MOST_FLAG_BYTES = (1 << 32) - 1  # of a level


def prove(proof):
    lemmas_of_4_bits(proof)
    for placement in ("none", "own", "gathered"):
        one_plane(proof, placement, (1, 2) if proof.quick else range(1, 16))
    all_slices(proof)
    the_end(proof)
    exceptions(proof)


class Any:
    """Words of any chain of one kind, in the place of a call: one plane behind any others."""

    def __init__(self, placement, levels):
        self.placement, self.levels, self.planes = placement, levels, 1
        self.given = {"depth": unknown("depth")}
        self.words = {}

    def wide_property(self, name):
        return z3.ZeroExt(48, unknown(name, 16))

    def image_alignment(self):
        return unknown("image_alignment")

    def element_bytes(self):
        return unknown("element_bytes")

    def word(self, where, name):
        bits = 8 * chains.LAYOUT.word(where, name)[1]
        if name == "flag_size":  # a number of 32 bits
            return wide(unknown(f"{name}{list(where)}"))
        return unknown(f"{name}{list(where)}", bits)


PROPERTIES = ("base_alignment", "level_offset_alignment", "level_size_alignment")


def relations_of(any_, before):
    """What is known of the words of a plane that starts behind `before`."""
    relations = chains.Relations(any_, any_.word)
    known = [equal(any_.word(where, name), expected, 8 * chains.LAYOUT.word(where, name)[1])
             for _, where, name, expected in relations.all(before)
             if name not in ("image_element_size", "image_pitch", "size")]
    return relations, [*known, *relations.lemmas]


def one_plane(proof, placement, all_levels):
    for levels in all_levels:
        any_ = Any(placement, levels)
        before = unknown("end of the planes before", 64)
        relations, known = relations_of(any_, before)
        depth, word = unknown("depth"), any_.word
        signed = z3.SignExt(32, depth)
        sane = [depth > 0, *(power_of_two(unknown(name, 16)) for name in PROPERTIES)]
        first = "flag_offset" if placement == "own" else "image_offset"
        start, slice_ = word((0, 0), first), word((0, 0), "image_slice_pitch")
        whole = terms.product(signed, slice_, BITS)
        others = whole.decl()(signed - 1, slice_)
        counted = [others + slice_ == whole, z3.ULE(others, whole), no_wrap(start, whole)]
        # What comes before the images, of which no sum wraps.
        flags = z3.BitVecVal(0, 64)
        if placement == "gathered":
            flags = gathered(proof, any_, [*known, *sane])
        room = z3.ZeroExt(48, unknown("level_offset_alignment", 16))
        sane += [no_wrap(before, flags), no_wrap(before + flags, room)]
        proof.show("images start behind the planes before and all flag buffers", [*known, *sane],
                   z3.ULE(before + flags, start))
        at, sums = start, []
        for level in range(levels):
            where = (level, 0)
            buffers = [("image_offset", "image_size", "image_slice_pitch")]
            if placement == "own":
                buffers.insert(0, ("flag_offset", "flag_size", "flag_slice_pitch"))
            for offset, size, pitch in buffers:
                proof.show(f"{offset}: in order, without a gap", known,
                           word(where, offset) == at)
                proof.show("a buffer's slice pitch is the chain's", known, word(where, pitch) == slice_)
                at = word(where, offset) + word(where, size)
                sums.append(z3.ULE(word(where, offset), at))
        base = z3.ZeroExt(48, unknown("base_alignment", 16))
        proof.show("the slice pitch is the chain's bytes, rounded up", known,
                   slice_ == rounded_up(at - start, base, 64))
        chain = unknown("bytes of the chain", 64)  # any, in the place of at - start
        proof.show("the slice pitch holds the chain", [
            power_of_two(unknown("base_alignment", 16)), no_wrap(chain, base),
            slice_ == rounded_up(chain, base, 64)], z3.ULE(chain, slice_))
        proof.show("the next plane is placed behind all slices", [*known, *relations_end(relations)],
                   relations.end == start + whole)
        proof.find(f"a chain of {levels} levels", [*known, *sane, *counted, *sums,
                                                   z3.ULE(start, at), z3.UGT(at, 1 << 20)])


def relations_end(relations):
    return chains.in_either_order(relations.end)


def all_slices(proof):
    """All slices of a buffer that ends in the first slice of its chain end inside all slices of it. Of any
    numbers: `end` of the buffer, `slice_end` of the first slice, bytes of all slices but the first."""
    start, slice_, others, whole = (unknown(n, 64) for n in ("start", "slice", "others", "whole"))
    end, slice_end = unknown("end of a buffer", 64), unknown("end of the slice", 64)
    counted = [others + slice_ == whole, z3.ULE(others, whole)]
    fits = [slice_end == start + slice_, no_wrap(start, slice_), no_wrap(start, whole)]
    proof.show("behind the first slice the others end where all slices do", [*counted, *fits],
               slice_end + others == start + whole)
    proof.show("and do not wrap", [*counted, *fits], no_wrap(slice_end, others))
    proof.show("a buffer's last slice ends at or below", [z3.ULE(end, slice_end),
                                                          no_wrap(slice_end, others)],
               z3.And(no_wrap(end, others), z3.ULE(end + others, slice_end + others)))
    size, offset = unknown("size of a buffer", 64), unknown("offset", 64)
    proof.show("a slice ends before the next one starts",
               [no_wrap(start, slice_), no_wrap(offset, size), z3.UGE(offset, start),
                z3.ULE(offset + size, start + slice_)], z3.ULE(size, slice_))
    proof.find("such slices", [*counted, *fits, z3.UGT(others, slice_), slice_ != 0])


def gathered(proof, any_, known):
    """Shows that flag buffers lie one behind the other; returns the bytes of all slices of them."""
    word, at = any_.word, z3.BitVecVal(0, 64)
    follows, few = [], []  # of each level: it starts where the one before ends; it ends below its share
    ends = []
    for level in range(any_.levels):
        offset = word((level, 0), "flag_offset")
        follows.append(offset == at)
        at = offset + word((level, 0), "flag_size")
        ends.append(at)
        few.append(z3.ULE(at, (level + 1) * _MOST_FLAG_BYTES))
        proof.show("flag buffers: from 0 on, without a gap", known, follows[level])
        proof.show("flag buffers have fewer than 2^32 bytes each", [follows[level], *few[:-1][-1:]],
                   few[level])
    slice_ = word((0, 0), "flag_slice_pitch")
    step = unknown("level_size_alignment", 16)
    rounded = slice_ == rounded_up(at, z3.ZeroExt(48, step), 64)
    proof.show("the slice pitch is the flag buffers' bytes, rounded up", known, rounded)
    proof.show("the slice pitch holds all flag buffers", [few[-1], rounded, power_of_two(step)],
               z3.ULE(at, slice_))
    for level in range(any_.levels - 1):
        proof.show("a flag buffer lies in the first slice, as the next one does", [
            follows[level + 1], few[level], z3.ULE(ends[level + 1], slice_)], z3.ULE(ends[level], slice_))
    depth = z3.SignExt(32, unknown("depth"))
    for level in range(any_.levels):
        proof.show("slices of flag buffers are one pitch apart", known,
                   word((level, 0), "flag_slice_pitch") == slice_)
    return terms.product(depth, slice_, BITS)


def the_end(proof):
    alignment, size = unknown("alignment"), unknown("size")
    end, extra = unknown("end", 64), unknown("extra bytes", 64)  # 0 without LAYOUT_FLAG_EXTRA
    surface = end + extra
    whole = rounded_up(surface, wide(alignment), 64)
    sane = [power_of_two(alignment), no_wrap(end, extra), no_wrap(surface, wide(alignment)),
            no_wrap(whole, wide(size))]
    bytes_ = whole + wide(size) - wide(size)
    proof.show("the surface is whole alignments", sane, bytes_ & (wide(alignment) - 1) == 0)
    proof.show("it holds the planes and the extra buffer", sane,
               z3.And(z3.ULE(end, bytes_), z3.ULE(surface, bytes_)))
    proof.find("such a surface", sane)


def exceptions(proof):
    depth = z3.SignExt(32, unknown("depth"))
    any_ = Any("own", 2)
    before = unknown("end of the planes before", 64)
    _, known = relations_of(any_, before)
    two = [*known, unknown("depth") == 2]
    proof.find("planes that overlap: no level_offset_alignment",
               [*two, unknown("level_offset_alignment", 16) == 0, z3.UGT(before, 1 << 20),
                unknown("image_size[0, 0]", 64) == 1 << 16, unknown("flag_offset[0, 0]", 64) == 0])
    proof.find("slices that overlap: no base_alignment",
               [*two, unknown("base_alignment", 16) == 0, unknown("image_slice_pitch[0, 0]", 64) == 0,
                unknown("image_size[0, 0]", 64) == 1 << 16])
    any_ = Any("gathered", 2)
    _, known = relations_of(any_, before)
    proof.find("images inside flag buffers: no level_size_alignment",
               [*known, unknown("depth") == 1, unknown("level_size_alignment", 16) == 0, before == 0,
                unknown("image_offset[0, 0]", 64) == 0, unknown("flag_size[0, 0]") == 4096])
    rows, pitch = unknown("rows"), unknown("pitch")
    proof.find("a flag buffer that is smaller than its rows",
               [rows == 1 << 16, pitch == 1 << 16, rows * pitch == 0])
