"""What the theorems about layouts have in common: surfaces as the initialisers describe them to the
code that lays out one plane, and that code as a function whose words alone are known.

The initialisers of one level call one function of the library for each plane, lay_out_plane. One
theorem looks at that function; where the initialisers are looked at, it stands for itself: it writes
the words that it is shown to write, with unknown values that are what they are shown to be.
"""

from dataclasses import dataclass

import z3

import setting
from executor import terms
from executor.machine import NotUnderstood, PathEnds
from executor.memory import Access, Address, Poison, Region
from format_rows import TABLE
from records import LAYOUT

FLAG_UBWC, FLAG_EXTRA, FLAG_EXTENDED = 28, 56, 60  # bits of `flags`
EXTRA_SLICE_BYTES = 8224
LOG_OF_PLANES = "compute_fmt_aligned_width_and_height_fdm"

IMAGE_WORDS = ("image_offset", "image_size", "image_pitch", "image_slice_pitch",
               "image_element_size", "image_width", "image_height", "flag_valid")
FLAG_WORDS = ("flag_offset", "flag_size", "flag_pitch", "flag_slice_pitch")
LEVEL_WORDS = ("slices", "tiled", "size", "planes", "lrz_valid", "lrz_fc_valid")
EXTRA_WORDS = {"extra_valid": (5472, 4), "extra_offset": (5480, 8), "extra_size": (5488, 8),
               "extra_slice_pitch": (5496, 8), "extended": (5504, 4)}
READ_HEAD = {"size": (4, 4), "alignment": (48, 4), "levels": (68, 4)}

# Of the Surface that describes a surface to lay_out_plane.
SURFACE_BYTES = 75
SURFACE_WORDS = {
    "chip": (0, 8), "format": (8, 8), "samples": (16, 4), "tiling_mode": (20, 4),
    "min_padded_row_bytes": (24, 4), "tiling_allowed": (28, 4), "step_divisor": (32, 4),
    "padding_width": (36, 4), "padding_rows": (40, 4), "width": (48, 4), "height": (52, 4),
    "depth": (56, 4), "planes": (60, 4), "element_bytes": (64, 4), "image_alignment": (68, 4),
    "flag_buffers": (72, 1), "extra_buffer": (73, 1), "extended": (74, 1),
}


def unknown(name, bits=32):
    return z3.BitVec(name, bits)


def has_flag(flags, bit):
    return z3.Extract(bit, bit, flags) == 1


def rounded_up(value, alignment, bits):
    """To a multiple of a power of two, modulo 2^bits; 0 for an alignment of 0."""
    last = terms.compute("sub", alignment, 1, bits)
    sum_ = terms.compute("add", value, last, bits)
    return terms.compute("and", sum_, terms.compute("xor", last, terms.mask(bits), bits), bits)


def wide(value):
    """A number of 32 bits without its sign, as one of 64."""
    return terms.extended(value, 32, 64, False)


def times_depth(depth, bytes_):
    return terms.compute("mul", terms.extended(depth, 32, 64, True), bytes_, 64)


def depth_without_sign(depth, bytes_):
    """Lemma: products do not depend on the order of their factors, which is that of the terms, nor on
    how a depth that is not negative is extended."""
    if terms.known(bytes_):
        return z3.BoolVal(True)
    product = terms.product(z3.SignExt(32, depth), bytes_, 64).decl()
    signed, plain = z3.SignExt(32, depth), z3.ZeroExt(32, depth)
    one = product(signed, bytes_)
    return z3.And(one == product(bytes_, signed), z3.Implies(depth >= 0, z3.And(
        one == product(plain, bytes_), one == product(bytes_, plain))))


def total(values):
    sum_ = 0
    for value in values:
        sum_ = terms.compute("add", sum_, value, 64)
    return sum_


def equal(a, b, bits):
    return terms.compare("eq", a, b, bits)


# ---- one plane


def plane_code(module):
    return setting.function_named(module, "lay_out_plane")


def any_surface(machine, memory, format_):
    """A surface that an initialiser of one level describes: (region, words, memory)."""
    region = Region("surface", SURFACE_BYTES, 8, False)
    words = {name: unknown(f"surface.{name}", 8 * size)
             for name, (_, size) in SURFACE_WORDS.items()}
    words["chip"] = Address(machine.variable(setting.CHIP_ROWS),
                            setting.ROW_OF_A_CHIP * setting.ROW_BYTES)
    words["format"] = Address(machine.variable(TABLE), format_.row, 0, 16)
    words["tiling_allowed"], words["step_divisor"] = 0, 1
    for name in ("flag_buffers", "extra_buffer", "extended"):
        words[name] = terms.choose(z3.Bool(f"surface.{name}"), 1, 0, 8)
    cells = {at: (size, words[name]) for name, (at, size) in SURFACE_WORDS.items()}
    return region, words, memory.with_cells(region, cells)


def stored(state, region, base=0):
    """offset from `base` -> (bytes, value, how often) of all that a path has stored."""
    found = {}
    for access in state.stores:
        if access.region is region:
            at = access.offset - base
            found[at] = (access.bytes, access.value, found.get(at, (0, 0, 0))[2] + 1)
    return found


def plane_conditions(offset, words, with_flags, properties):
    """What lay_out_plane is shown to do, as terms over the words of a plane that it has written.
    `properties` are those of the chip, 64 bits."""
    flag = words["flag_size"] if with_flags else 0
    slice_ = terms.compute("add", flag, words["image_size"], 64)
    pitch_bytes = terms.compute("mul", words["image_element_size"], words["image_width"], 32)
    bytes_ = terms.compute("mul", words["image_pitch"], words["image_height"], 32)
    mode_aligned = rounded_up(bytes_, words["image_alignment"], 32)
    found = {
        "the image starts behind its flag buffer":
            equal(words["image_offset"], terms.compute("add", offset, flag, 64), 64),
        "both make the slice pitch": equal(words["image_slice_pitch"], slice_, 64),
        "a row is its elements": equal(words["image_pitch"], pitch_bytes, 32),
        "an image is its rows, rounded up":
            equal(words["image_size"], rounded_up(wide(mode_aligned),
                                                  properties["base_alignment"], 64), 64),
    }
    if with_flags:
        base = terms.truncated(properties["base_alignment"], 32)
        found |= {
            "the flag buffer stands in front": equal(words["flag_offset"], offset, 64),
            "its slice pitch is the image's": equal(words["flag_slice_pitch"], slice_, 64),
            "its size has 32 bits": z3.ULT(words["flag_size"], 1 << 32),
            "its size is whole alignments": equal(
                terms.compute("and", terms.truncated(words["flag_size"], 32),
                              terms.compute("sub", base, 1, 32), 32), 0, 32),
        }
    return found


@dataclass
class Laid:
    """A call of lay_out_plane."""

    plane: object
    out: int  # where in the caller's memory
    offset: object  # bytes
    width: object
    height: object
    surface: dict  # words
    words: dict  # what it wrote


def laid_planes(state):
    return state.notes.get("planes", ())


def plane_by_name(chip, flag_buffers):
    """Stands for lay_out_plane on the paths of an initialiser: (machine, state, arguments) -> bytes.
    `flag_buffers`: whether the surface has them, which the path must have decided."""
    def laid(machine, state, arguments):
        surface, size, plane, offset, out = arguments
        if isinstance(out, Poison):
            machine.claim(state, "access", False, "a plane that lies nowhere", "lay_out_plane")
            raise PathEnds
        words = {}
        for name, (at, bytes_) in SURFACE_WORDS.items():
            words[name] = machine.word(state, surface.region, at,
                                       _Bytes(bytes_), "a word of the surface")
            if isinstance(words[name], Poison):
                raise NotUnderstood(f"{name} of the surface has not been written")
        number = len(laid_planes(state))
        written = {}
        for name in IMAGE_WORDS + (FLAG_WORDS if flag_buffers else ()):
            at, bytes_ = LAYOUT.plane[name]
            value = unknown(f"laid {number}.{name}", 8 * bytes_)
            if name == "flag_valid":
                value = int(flag_buffers)
            elif name == "image_element_size":
                value = words["element_bytes"]
            written[name] = value
            machine.check_access(state, out, at + bytes_, 8, True, "lay_out_plane")
            _store(state, out.region, out.offset + at, bytes_, value)
        written["image_alignment"] = words["image_alignment"]
        properties = {"base_alignment": terms.extended(chip.words["base_alignment"], 16, 64, False)}
        for condition in plane_conditions(offset, written, flag_buffers, properties).values():
            state.assume(condition)
        state.notes["planes"] = laid_planes(state) + (Laid(
            plane, out.offset, offset, terms.truncated(size, 32),
            terms.truncated(terms.compute("lshr", size, 32, 64), 32), words, written),)
        return written["image_slice_pitch"]
    return laid


@dataclass(frozen=True)
class _Bytes:
    """The type of a word that is looked at and not loaded by the code."""

    bytes: int
    kind: str = "int"

    @property
    def bits(self):
        return 8 * self.bytes


def _store(state, region, offset, bytes_, value):
    state.memory = state.memory.store(region, offset, bytes_, value)
    state.stores.append(Access(region, offset, bytes_, value, False, "lay_out_plane"))


# ---- families


FAMILIES = (5, 6, 7)


def family_bits():
    return unknown("chip.family_id")


def chip_of_any_family():
    """A known chip of any of the families."""
    family = family_bits()
    chip = setting.any_chip(7, family_id=family, uuid_1=family)
    listed = z3.If(family == 7, unknown("chip.max_surface_pitch"), z3.BitVecVal(0, 32))
    chip.words["max_surface_pitch"] = listed
    chip.conditions.append(z3.Or(*(family == f for f in FAMILIES)))
    return chip
