"""The rows of the hardware data, read from the library's own file as text.

The file is laid out for people: one row a line. Whoever's rows stand there are taken over; a
table, a field or a line that is not as expected ends the reading with a sentence.
"""

import re
from dataclasses import dataclass
from pathlib import Path

from identification import Chip

HARDWARE_DATA = Path(__file__).resolve().parents[2] / "src" / "identify" / "hardware_data.h"

# The records of the file with their fields in order; a field that is a record itself is a pair.
_FAMILY_FIELDS = ("family_id", "extra_padding_units")
_MODEL_FIELDS = (
    "model_code",
    "max_surface_pitch",
    "extra_padding_factor",
    "yuv16_ext",
    "p016",
    "family5_sample_excluded",
)
_COLUMNS_FIELDS = (
    "base_alignment",
    "linear_alignment",
    "aux_alignment",
    "small_alignment",
    "pixel_alignment",
    "tiled_alignment",
    "min_level_extent",
    "level_offset_alignment",
    "level_size_alignment",
    "wide_enough_for_tiling",
)
_UBWC_FIELDS = ("never", "depth_excluded", "yuv_a", "yuv_b", "yuv16")
_CHIP_FIELDS = ("chip_id", "family_id", "model_code", "rev_id", "columns", "supported", "ubwc")

_FLAGS = {"yuv16_ext", "p016", "family5_sample_excluded", "supported"}
_FLAGS.update(_COLUMNS_FIELDS, _UBWC_FIELDS)


class OddRow(ValueError):
    """The hardware data is not laid out as it is read here."""


@dataclass(frozen=True)
class HardwareData:
    """The three tables: families by id, models by code, chips by id; each row a dictionary from a
    field's name to its number (flags: True or False; `columns` and `ubwc`: dictionaries)."""

    families: dict
    models: dict
    chips: dict


def read_chips(path=HARDWARE_DATA):
    """The chips of the file by chip id, each with all that the rules want to know of it."""
    data = read_hardware_data(path)
    return {chip_id: _chip(row, data.models[row["model_code"]]) for chip_id, row in
            data.chips.items()}


def read_hardware_data(path=HARDWARE_DATA):
    """All rows of the file."""
    text = Path(path).read_text(encoding="utf-8")
    if "/*" in text:
        raise OddRow("the hardware data holds a comment that may span lines")
    text = re.sub(r"//[^\n]*", "", text)
    _expect_fields(text, "FamilyData", _FAMILY_FIELDS)
    _expect_fields(text, "ModelData", _MODEL_FIELDS)
    _expect_fields(text, "ChipColumns", _COLUMNS_FIELDS)
    _expect_fields(text, "ChipUbwc", _UBWC_FIELDS)
    _expect_fields(text, "ChipData", _CHIP_FIELDS)
    chip_shape = list(_CHIP_FIELDS)
    chip_shape[_CHIP_FIELDS.index("columns")] = ("columns", _COLUMNS_FIELDS)
    chip_shape[_CHIP_FIELDS.index("ubwc")] = ("ubwc", _UBWC_FIELDS)
    data = HardwareData(
        families=_table(text, "FamilyData", "kFamilyData", _FAMILY_FIELDS),
        models=_table(text, "ModelData", "kModelData", _MODEL_FIELDS),
        chips=_table(text, "ChipData", "kChipData", chip_shape),
    )
    _expect_whole(data)
    return data


def _chip(row, model):
    return Chip(
        chip_id=row["chip_id"],
        family_id=row["family_id"],
        model_code=row["model_code"],
        yuv16_ext=model["yuv16_ext"],
        p016=model["p016"],
        family5_sample_excluded=model["family5_sample_excluded"],
        ubwc_never=row["ubwc"]["never"],
        ubwc_depth_excluded=row["ubwc"]["depth_excluded"],
        ubwc_yuv_a=row["ubwc"]["yuv_a"],
        ubwc_yuv_b=row["ubwc"]["yuv_b"],
        ubwc_yuv16=row["ubwc"]["yuv16"],
    )


def _expect_fields(text, record, fields):
    """The numbers of a row are told apart by their place: the record's fields stand in order."""
    found = re.findall(rf"struct {record} {{(.*?)}};", text, re.DOTALL)
    if len(found) != 1:
        raise OddRow(f"the hardware data has {len(found)} records {record}, not one")
    declarations = [item.split() for item in found[0].split(";") if item.strip()]
    names = tuple(words[-1] for words in declarations)
    if names != tuple(fields):
        raise OddRow(f"the fields of {record} are {', '.join(names)}, not {', '.join(fields)}")


def _table(text, record, name, shape):
    """The rows of a table by the number of their first field."""
    found = re.findall(rf"constexpr {record} {name}\[\] = {{\n(.*?)\n}};", text, re.DOTALL)
    if len(found) != 1:
        raise OddRow(f"the hardware data has {len(found)} tables {name}, not one")
    rows = {}
    for line in found[0].splitlines():
        line = line.strip()
        if not line:
            continue
        if not line.endswith(","):
            raise OddRow(f"{name}: a row does not end in a comma: {line}")
        numbers, rest = _numbers(line[:-1], shape, name)
        if rest:
            raise OddRow(f"{name}: more than one row stands on a line: {line}")
        key = numbers[shape[0]]
        if rows and key <= max(rows):
            raise OddRow(f"{name}: {key:#x} stands behind a row that is not below it")
        rows[key] = numbers
    if not rows:
        raise OddRow(f"{name} has no row")
    return rows


def _numbers(text, shape, table):
    """The numbers of a braced row, by the names of `shape`, and the text behind it."""
    match = re.match(r"\s*{", text)
    if not match:
        raise OddRow(f"{table}: a brace is missing before {text}")
    rest = text[match.end():]
    numbers = {}
    for place, name in enumerate(shape):
        if isinstance(name, tuple):
            name, inner = name
            numbers[name], rest = _numbers(rest, inner, table)
        else:
            match = re.match(r"\s*(0x[0-9A-Fa-f]+|0|[1-9][0-9]*)(?![\w'.])", rest)
            if not match:
                raise OddRow(f"{table}: no number for {name} at the front of {rest}")
            numbers[name] = _checked(int(match[1], 0), name, table)
            rest = rest[match.end():]
        end = "}" if place == len(shape) - 1 else ","
        match = re.match(rf"\s*{re.escape(end)}", rest)
        if not match:
            raise OddRow(f"{table}: no {end} behind {name}, but {rest or 'nothing'}")
        rest = rest[match.end():]
    return numbers, rest


def _checked(number, name, table):
    if name in _FLAGS:
        if number > 1:
            raise OddRow(f"{table}: {name} is {number}, neither 0 nor 1")
        return number == 1
    if number > 0xFFFFFFFF:
        raise OddRow(f"{table}: {name} is {number}, more than 32 bits hold")
    return number


def _expect_whole(data):
    for family_id in data.families:
        if family_id not in (5, 6, 7):
            raise OddRow(f"there are no rules of a family {family_id}")
    for chip_id, chip in data.chips.items():
        if chip_id in (0, 0xFFFFFFFF):
            raise OddRow(f"{chip_id:#x} is no chip's id")
        if chip["family_id"] not in data.families:
            raise OddRow(f"chip {chip_id:#x} is of family {chip['family_id']}, which has no row")
        if chip["model_code"] not in data.models:
            raise OddRow(f"chip {chip_id:#x} is of model {chip['model_code']:#x}, which has no row")
