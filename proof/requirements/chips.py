"""What the rules ask of a chip: known properties, or unknowns for any chip there may be."""

from dataclasses import dataclass
from typing import Any

from words import any_of, choose, equal, multiply, word

# A property's value where the chip has it, and where it has not.
BASE_ALIGNMENT = (4096, 0)
LINEAR_ALIGNMENT = (64, 0)
PIXEL_ALIGNMENT = (64, 1)
TILED_ALIGNMENT = (4096, 1)


@dataclass(frozen=True)
class Chip:
    """A chip. Each `has_` and `supported`: bool or z3 Bool. Numbers: int or 32-bit term."""

    family: int  # 5, 6 or 7; not read where `supported` is False
    supported: Any = True  # in the list of chips that the alignment entries have rules for
    has_base_alignment: Any = True
    has_linear_alignment: Any = True
    has_pixel_alignment: Any = True
    has_tiled_alignment: Any = True
    max_surface_pitch: Any = 16384  # elements, by the model; 0 where its model is not listed
    extra_padding_units: Any = 1  # the family's number times the model's

    @property
    def pixel_alignment(self):
        return choose(self.has_pixel_alignment, *PIXEL_ALIGNMENT)


# One without a row: no property, not supported, no family.
UNKNOWN_CHIP = Chip(0, False, False, False, False, False, 0, 0)


def extra_width_padding(chip, unit_el):
    """Elements added to a width: the units for the counts that the rules list, else none."""
    count = word(chip.extra_padding_units)
    listed = any_of(*(equal(count, n) for n in (1, 2, 3, 4, 6, 8, 16)))
    return choose(listed, multiply(word(unit_el), count), 0)


def extra_height_padding(chip):
    """Rows added to a height; a count of 4 adds as much as one of 2."""
    count = word(chip.extra_padding_units)
    listed = any_of(*(equal(count, n) for n in (1, 2, 3, 6, 8, 16)))
    return choose(equal(count, 4), 32, choose(listed, multiply(16, count), 0))
