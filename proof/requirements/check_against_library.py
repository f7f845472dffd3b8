#!/usr/bin/python3
"""Compares what the rules say with what the built library answers, on many calls.

Usage: check_against_library.py [--library DIRECTORY] [--calls N] [--seed N]

DIRECTORY holds libkorvel_utils.so and the services stand-in libhxluser.so. Every call is answered
three times: by the rules with all arguments known, by the rules' terms with every argument and
every property of the chip unknown and then substituted, and by the library, in a child process
whose chip the stand-in reports. Compared are outputs, outputs left alone, messages with their
functions, returned numbers, and whether a division by 0 ended the call. Calls that ask for each
format and plane come on top, with known arguments alone.
"""

import argparse
import ctypes
import json
import os
import random
import re
import signal
import sys
import tempfile
import time
from dataclasses import dataclass
from pathlib import Path

import z3

import alignment
import formats
from chips import UNKNOWN_CHIP, Chip
from words import signed, word

ROOT = Path(__file__).resolve().parents[2]
HARDWARE_DATA = ROOT / "src" / "identify" / "hardware_data.h"
UNKNOWN_CHIP_ID = 0x12345678

CALLS_OF_A_CLASS = 5  # calls that share format, plane, mode and family, and so their terms


# ---- Chips ---------------------------------------------------------------------------------------


def rows_of(text, name):
    """The numbers of each row of one table of the hardware data."""
    body = re.search(rf"{name}\[\] = \{{\n(.*?)\n\}};", text, re.S)
    if not body:
        raise SystemExit(f"{HARDWARE_DATA}: no table {name}")
    rows = []
    for line in body.group(1).splitlines():
        code = line.split("//")[0].strip()
        if code:
            rows.append([int(n, 0) for n in re.findall(r"0x[0-9A-Fa-f]+|\d+", code)])
    return rows


def chips_of_hardware_data():
    """Every chip of the data: id -> Chip."""
    text = HARDWARE_DATA.read_text()
    columns = re.search(r"struct ChipColumns \{\n(.*?)\n\};", text, re.S).group(1)
    names = re.findall(r"bool (\w+);", columns)
    units = {family: number for family, number in rows_of(text, "kFamilyData")}
    models = {row[0]: row for row in rows_of(text, "kModelData")}
    found = {}
    for row in rows_of(text, "kChipData"):
        chip_id, family, model_code, _ = row[:4]
        has = dict(zip(names, row[4 : 4 + len(names)]))
        found[chip_id] = Chip(
            family=family,
            supported=bool(row[4 + len(names)]),
            has_base_alignment=bool(has["base_alignment"]),
            has_linear_alignment=bool(has["linear_alignment"]),
            has_pixel_alignment=bool(has["pixel_alignment"]),
            has_tiled_alignment=bool(has["tiled_alignment"]),
            max_surface_pitch=models[model_code][1],
            extra_padding_units=word(units[family] * models[model_code][2]),
        )
    return found


def chips_to_ask(every_chip):
    """One chip for each way in which chips differ for the rules, and one without a row."""
    first_of = {}
    for chip_id, chip in sorted(every_chip.items()):
        first_of.setdefault(chip, chip_id)
    asked = {chip_id: chip for chip, chip_id in first_of.items()}
    for family in (5, 6, 7):
        of_family = [chip for chip in asked.values() if chip.family == family]
        if len(of_family) < 3 or not any(chip.supported for chip in of_family):
            raise SystemExit(f"{HARDWARE_DATA}: too few chips of family {family}")
    asked[UNKNOWN_CHIP_ID] = UNKNOWN_CHIP
    return asked


# ---- Calls ---------------------------------------------------------------------------------------


@dataclass(frozen=True)
class Entry:
    """An export: its arguments in order; those of `known` are numbers in the rules' terms."""

    name: str
    arguments: tuple
    known: tuple = ()


FULL_ARGUMENTS = (
    "width",
    "height",
    "plane",
    "format",
    "samples",
    "tiling_mode",
    "selector",
    "min_padded_row_bytes",
)
CLASS_ARGUMENTS = ("plane", "format", "tiling_mode")

IN_BYTES = "compute_fmt_aligned_width_and_height_in_bytes"
COMPRESSED = "compute_compressedfmt_aligned_width_and_height"

ENTRIES = {
    entry.name: entry
    for entry in (
        Entry("get_gpu_pixel_alignment", ()),
        Entry("get_slice_pitch_alignment", ("tiling_mode",)),
        Entry("compute_aligned_width_and_height", ("width", "height", "a3", "a4", "a5", "a6")),
        Entry("compute_surface_padding", ("width", "a2", "tiling_mode", "a4", "a5")),
        Entry(COMPRESSED, ("width", "height", "format", "null_pointers"), ("format",)),
        Entry("compute_fmt_aligned_width_and_height", FULL_ARGUMENTS, CLASS_ARGUMENTS),
        Entry(
            "compute_fmt_minimal_aligned_width_and_height",
            FULL_ARGUMENTS[:6]
            + ("tiling_allowed",)
            + FULL_ARGUMENTS[6:]
            + ("divisor", "want_extra_padding"),
            CLASS_ARGUMENTS,
        ),
        Entry(
            "compute_fmt_aligned_width_and_height_fdm",
            FULL_ARGUMENTS + ("divisor", "want_extra_padding"),
            CLASS_ARGUMENTS,
        ),
        Entry(IN_BYTES, FULL_ARGUMENTS, CLASS_ARGUMENTS),
    )
}

# Of 100 classes. The rules are in the entries with formats.
SHARES = {
    "get_gpu_pixel_alignment": 1,
    "get_slice_pitch_alignment": 2,
    "compute_aligned_width_and_height": 3,
    "compute_surface_padding": 2,
    COMPRESSED: 12,
    "compute_fmt_aligned_width_and_height": 20,
    "compute_fmt_minimal_aligned_width_and_height": 25,
    "compute_fmt_aligned_width_and_height_fdm": 17,
    IN_BYTES: 18,
}

ALL_FORMATS = list(range(formats.RECORD_COUNT)) + [
    722,
    723,
    1000,
    formats.FOURCC_FORMAT,
    0x7FFFFFFF,
    0x80000000,
    0xFFFFFFFF,
]

# Formats that a rule names, by the kind of rule; half of all classes are of one of these.
NOTABLE_FORMATS = [
    [number for number in range(formats.RECORD_COUNT) if test(number)]
    for test in (
        lambda number: formats.traits(number).planes > 1 or number in (20, 551),
        lambda number: formats.npot_substitute(number) != number,
        lambda number: formats.traits(number).is_block_compressed,
        lambda number: formats.traits(number).is_counted_in_blocks
        and not formats.traits(number).is_block_compressed,
        lambda number: number in formats.TALL_TILE_FAMILY5 | formats.TALL_TILE_FAMILY67,
        lambda number: number in formats.WIDE_TILE or number == formats.ROWS_OF_64,
        lambda number: formats.extra_width_unit(number) != 16,
    )
]

ROUND_SIZES = [16, 48, 64, 128, 192, 256, 512, 1024, 2048, 4096, 16384, 65536]
WRAP_FACTORS = [2, 3, 4, 5, 6, 8, 10, 12, 16, 24, 32, 48, 64, 128, 256]


def size_at_a_wrap(chance, factor):
    """A size whose product with `factor` lies just below or above a multiple of 2^31."""
    wraps = chance.randrange(1, max(2, factor))
    return min((wraps * (1 << 31) + chance.randrange(-250, 130)) // factor, 0x7FFFFFFF)


def random_size(chance, factors):
    """Mostly sizes that pass the checks, and among them those at which rules change or wrap."""
    kind = chance.randrange(13)
    if kind >= 10:
        return size_at_a_wrap(chance, chance.choice(factors))
    if kind == 0:
        return chance.choice([0, 1, 2, 3, 0x7FFFFFFF, 0x7FFFFFFE, -1, -2, -0x80000000])
    if kind == 1:
        return -chance.randrange(1, 1 << chance.randrange(1, 32))
    if kind <= 4:
        return chance.choice(ROUND_SIZES) * chance.randrange(1, 9) + chance.randrange(-2, 3)
    if kind <= 6:
        wrap = (1 << chance.choice([31, 32])) // chance.choice(WRAP_FACTORS)
        return min(wrap * chance.randrange(1, 4) + chance.randrange(-70, 71), 0x7FFFFFFF)
    if kind == 7:
        return 0x7FFFFFFF - chance.randrange(1, 300)
    return chance.randrange(1 << chance.randrange(1, 32))


def random_samples(chance):
    return chance.choice(
        list(range(10)) + [1, 1, 2, 4, 8, 16, 32, 64, 0x0FFFFFFF, 0x3FFFFF40]
        + [1 << n for n in (26, 27, 28, 29, 30, 31)]
        + [0xFFFFFFFF, chance.randrange(1 << 32)]
    )


def random_argument(chance, name, so_far):
    if name in ("width", "height"):
        traits = formats.traits(so_far.get("format", 0))
        block = traits.block_width if name == "width" else traits.block_height
        return word(random_size(chance, (block, block, traits.bytes)))
    if name == "samples":
        return random_samples(chance)
    if name in ("tiling_allowed", "want_extra_padding"):
        return chance.choice([0, 1, 1, 2, chance.randrange(1 << 32)])
    if name == "selector":
        return chance.choice([0, 1, 2, 3, chance.randrange(1 << 32)])
    if name == "divisor":
        return chance.choice([0, 1, 1, 1, 2, 3, 4, 6, 8, 12, 16, 64, 65, chance.randrange(1 << 32)])
    if name == "min_padded_row_bytes":
        near = so_far["width"] * chance.choice([1, 2, 3, 4, 8, 16]) + chance.randrange(-65, 66)
        return word(chance.choice([0, 0, 512, -1, 0x7FFFFFFF, -0x80000000, near, near]))
    if name == "tiling_mode":  # of an entry whose terms leave it unknown
        return chance.choice([0, 1, 1, 2, chance.randrange(1 << 32)])
    if name == "null_pointers":
        return chance.choice([0] * 6 + list(range(1, 8)))  # a bit for each pointer
    return chance.randrange(1 << 32)


def random_calls(chance, asked, wanted):
    """(entry, chip id, arguments) in groups that share what the terms take as known."""
    format_turn = []
    groups = []
    names = [name for name, share in SHARES.items() for _ in range(share)]
    known_chips = sorted(asked)
    block_formats = [n for n in ALL_FORMATS if formats.traits(n).is_block_compressed]
    while len(groups) * CALLS_OF_A_CLASS < wanted:
        entry = ENTRIES[chance.choice(names)]
        family = chance.choice([5, 6, 7, 7, 6, 5, 0])
        of_family = [chip_id for chip_id in known_chips if asked[chip_id].family == family]
        fixed = {}
        if "format" in entry.known:
            if not format_turn:
                format_turn = list(ALL_FORMATS)
                chance.shuffle(format_turn)
            if entry.name == COMPRESSED and chance.randrange(2):
                fixed["format"] = chance.choice(block_formats)
            elif chance.randrange(2):
                fixed["format"] = chance.choice(chance.choice(NOTABLE_FORMATS))
            else:
                fixed["format"] = format_turn.pop()
        if "plane" in entry.known:
            planes = formats.traits(fixed["format"]).planes
            fixed["plane"] = chance.choice(
                [chance.randrange(planes)] * 5 + [0, 1, 2, 3, 0xFFFFFFFF]
            )
            fixed["tiling_mode"] = chance.choice([0, 0, 0, 1, 1, 1, 2, 0x80000001])
        group = []
        for _ in range(CALLS_OF_A_CLASS):
            arguments = dict(fixed)
            for name in entry.arguments:
                if name not in fixed:
                    arguments[name] = random_argument(chance, name, arguments)
            canaries = [chance.randrange(1 << 32) for _ in range(3)]
            group.append((chance.choice(of_family), arguments, canaries))
        groups.append((entry, family, fixed, group))
    return groups


FDM = "compute_fmt_aligned_width_and_height_fdm"
MINIMAL = "compute_fmt_minimal_aligned_width_and_height"

# Entry, family, mode, width, height, samples, tiling_allowed: sizes that tell tiles, steps and
# extra paddings apart. The first three never divide by 0.
PROBES = (
    (FDM, 6, 1, 1, 1, 1, 0),
    (FDM, 6, 0, 1, 1, 1, 0),
    (FDM, 6, 0, 33, 1, 1, 0),
    (FDM, 6, 1, 1, 1, 2, 0),
    (FDM, 5, 1, 1, 1, 1, 0),
    (FDM, 5, 1, 1, 1, 2, 0),
    (MINIMAL, 5, 0, 1, 1, 1, 0),
    (MINIMAL, 5, 0, 1, 1, 1, 1),
    (MINIMAL, 7, 0, 1, 1, 1, 1),
    (IN_BYTES, 6, 1, 100, 1, 1, 0),
)


def calls_for_every_format(asked):
    """The probes, for each format and plane, so that each word of the format data is asked for."""
    chip_of = {}
    for chip_id, chip in sorted(asked.items()):
        if chip.supported and chip.extra_padding_units == 1 and chip.max_surface_pitch == 0:
            chip_of.setdefault(chip.family, chip_id)
    for chip_id, chip in sorted(asked.items()):
        if chip.family == 7 and chip.supported and chip.max_surface_pitch:
            chip_of.setdefault(7, chip_id)
    calls = []
    for number in ALL_FORMATS:
        blocks = {"width": 119, "height": 119, "format": number, "null_pointers": 0}
        calls.append((chip_of[6], ENTRIES[COMPRESSED], blocks))
        for plane in range(3):
            lacks_plane = formats.plane_bytes(number, plane) == 0
            for name, family, mode, width, height, samples, allowed in (
                PROBES[:3] if lacks_plane else PROBES
            ):
                arguments = {
                    "width": width,
                    "height": height,
                    "plane": plane,
                    "format": number,
                    "samples": samples,
                    "tiling_mode": mode,
                    "tiling_allowed": allowed,
                    "selector": 1,
                    "min_padded_row_bytes": word(-1),
                    "divisor": 1,
                    "want_extra_padding": 1,
                }
                entry = ENTRIES[name]
                calls.append(
                    (chip_of[family], entry, {key: arguments[key] for key in entry.arguments})
                )
    return calls


# ---- The library's answers -----------------------------------------------------------------------


class MessageRecord(ctypes.Structure):
    """hxl_sim_message_record of the stand-in."""

    _fields_ = [
        ("level", ctypes.c_uint32),
        ("zero", ctypes.c_uint32),
        ("line", ctypes.c_uint32),
        ("reserved", ctypes.c_uint32),
        ("text_length", ctypes.c_uint64),
        ("tag", ctypes.c_char * 64),
        ("function", ctypes.c_char * 128),
        ("format", ctypes.c_char * 512),
        ("text", ctypes.c_char * 1024),
    ]


class InBytesParams(ctypes.Structure):
    _fields_ = [
        ("words", ctypes.c_uint32 * 7),
        ("tiling_mode", ctypes.POINTER(ctypes.c_uint32)),
    ]


class InBytesResult(ctypes.Structure):
    _fields_ = [("outputs", ctypes.POINTER(ctypes.c_uint32) * 3)]


class Library:
    """The built library and its stand-in; the library is first called in a child process."""

    def __init__(self, directory):
        for name in ("libhxluser.so", "libkorvel_utils.so"):
            if not (directory / name).is_file():
                raise SystemExit(f"no {directory / name}: build the release preset first")
        self.simulator = ctypes.CDLL(str(directory / "libhxluser.so"), ctypes.RTLD_GLOBAL)
        self.library = ctypes.CDLL(str(directory / "libkorvel_utils.so"))
        self.simulator.hxl_sim_message_count.restype = ctypes.c_size_t
        for entry in ENTRIES:
            returns = entry.startswith("get_") or entry == "compute_surface_padding"
            getattr(self.library, entry).restype = ctypes.c_uint32 if returns else None

    def meet(self, chip_id):
        """In a child: the chip is identified, and the messages of that are forgotten."""
        self.simulator.hxl_sim_reset()
        self.simulator.hxl_sim_set_failures(0)
        self.simulator.hxl_sim_set_recording(0)
        self.simulator.hxl_sim_set_chip(ctypes.c_uint32(chip_id))
        self.simulator.hxl_sim_set_capture(1)
        self.library.get_gpu_pixel_alignment()
        self.simulator.hxl_sim_clear_messages()

    def answer(self, entry, arguments, canaries):
        """What one call left: outputs, the number returned, messages, the caller's tiling mode."""
        outputs = [ctypes.c_uint32(canary) for canary in canaries]
        pointers = [ctypes.byref(output) for output in outputs]
        values = [ctypes.c_uint32(arguments[name]) for name in entry.arguments]
        mode = ctypes.c_uint32(arguments.get("tiling_mode", 0))
        function = getattr(self.library, entry.name)
        returned = None
        if entry.name == IN_BYTES:
            params = InBytesParams()
            numbers = [arguments[name] for name in FULL_ARGUMENTS if name != "tiling_mode"]
            params.words = (ctypes.c_uint32 * 7)(*numbers)
            params.tiling_mode = ctypes.pointer(mode)
            result = InBytesResult()
            for number, output in enumerate(outputs):
                result.outputs[number] = ctypes.pointer(output)
            function(ctypes.byref(params), ctypes.byref(result))
        elif entry.name == COMPRESSED:
            negative = any(signed(arguments[name]) < 0 for name in ("width", "height"))
            if not negative:  # pointers are not looked at otherwise
                for number in range(3):
                    if arguments["null_pointers"] >> number & 1:
                        pointers[number] = ctypes.c_void_p(None)
            ignored = [ctypes.c_uint64(0xA5A5A5A5DEADBEEF)] * 3
            function(*values[:3], *ignored, *pointers)
        elif entry.name.startswith("get_") or entry.name == "compute_surface_padding":
            returned = function(*values)
        else:
            function(*values, *pointers[:2])
        return {
            "outputs": [output.value for output in outputs],
            "returned": returned,
            "messages": self.take_messages(),
            "tiling_mode": mode.value,
        }

    def take_messages(self):
        taken = []
        for index in range(self.simulator.hxl_sim_message_count()):
            record = MessageRecord()
            self.simulator.hxl_sim_message(ctypes.c_size_t(index), ctypes.byref(record))
            taken.append(f"{record.function.decode()}: {record.text.decode()}")
        if taken:
            self.simulator.hxl_sim_clear_messages()
        return taken

    def answers(self, chip_id, calls):
        """The answers of calls on one chip, in order; None for a call that divides by 0.

        A child answers until a division ends it; the next one goes on behind that call.
        """
        answers = []
        while len(answers) < len(calls):
            with tempfile.TemporaryFile() as stored:
                child = os.fork()
                if child == 0:
                    self.answer_in_child(stored, chip_id, calls[len(answers) :])
                status = os.waitpid(child, 0)[1]
                stored.seek(0)
                answers.extend(json.loads(line) for line in stored)
            if os.WIFSIGNALED(status) and os.WTERMSIG(status) == signal.SIGFPE:
                answers.append(None)
            elif status != 0:
                entry, arguments, _ = calls[len(answers)]
                raise SystemExit(f"a child ended with {status}: {entry.name} {arguments}")
        return answers

    def answer_in_child(self, stored, chip_id, calls):
        try:
            self.meet(chip_id)
            for entry, arguments, canaries in calls:
                answer = self.answer(entry, arguments, canaries)
                os.write(stored.fileno(), json.dumps(answer).encode() + b"\n")
            os._exit(0)
        finally:
            os._exit(1)


# ---- The rules' answers --------------------------------------------------------------------------


def ruled(entry, chip, arguments):
    """The rules' answer; arguments are ints or terms."""
    function = getattr(alignment, entry.name)
    if entry.name == "compute_aligned_width_and_height":
        return function(chip, arguments["width"], arguments["height"])
    if entry.name == "compute_surface_padding":
        return function(chip, arguments["width"])
    if entry.name == COMPRESSED:
        null_pointers = arguments["null_pointers"]
        return function(
            chip, arguments["width"], arguments["height"], arguments["format"], null_pointers != 0
        )
    names = [name for name in entry.arguments if name != "selector"]
    return function(chip, *(arguments[name] for name in names))


UNKNOWN_WORDS = {
    name: z3.BitVec(name, 32)
    for name in sorted({name for entry in ENTRIES.values() for name in entry.arguments})
}
UNKNOWN_PROPERTIES = {
    name: z3.Bool(name)
    for name in (
        "supported",
        "has_base_alignment",
        "has_linear_alignment",
        "has_pixel_alignment",
        "has_tiled_alignment",
    )
}
UNKNOWN_NUMBERS = {
    name: z3.BitVec(name, 32) for name in ("max_surface_pitch", "extra_padding_units")
}


def any_chip(family):
    """Any chip of a family; family 0 has no rules, so no chip of it is supported."""
    properties = dict(UNKNOWN_PROPERTIES)
    if family == 0:
        properties["supported"] = False
    return Chip(family=family, **properties, **UNKNOWN_NUMBERS)


def packed(answer):
    """An answer's fields behind one another in one bit vector, so that one substitution does."""
    fields = [
        z3.If(value, z3.BitVecVal(1, 1), z3.BitVecVal(0, 1)) if z3.is_bool(value) else value
        for value in vars(answer).values()
    ]
    return z3.Concat(*fields)


def unpacked(answer, pack):
    """The fields of a pack that comes to a number: name -> bool or int."""
    pack = z3.simplify(pack)
    if not z3.is_bv_value(pack):
        raise SystemExit(f"a term does not come to a number: {pack}")
    bits = pack.as_long()
    values = {}
    for name, value in reversed(vars(answer).items()):
        if z3.is_bool(value):
            values[name] = bool(bits & 1)
            bits >>= 1
        else:
            values[name] = bits & 0xFFFFFFFF
            bits >>= 32
    return values


def substituted(answer, pack, chip, arguments):
    """Of an answer in unknowns and its pack."""
    pairs = [
        (UNKNOWN_WORDS[name], z3.BitVecVal(value, 32)) for name, value in arguments.items()
    ]
    pairs += [
        (unknown, z3.BoolVal(getattr(chip, name))) for name, unknown in UNKNOWN_PROPERTIES.items()
    ]
    pairs += [
        (unknown, z3.BitVecVal(getattr(chip, name), 32))
        for name, unknown in UNKNOWN_NUMBERS.items()
    ]
    return unpacked(answer, z3.substitute(pack, *pairs))


def expected_of_library(entry, chip_id, arguments, canaries, ruling):
    """What the rules' answer means for a call: the same form as Library.answer(), None: a fault."""
    if ruling["fault"]:
        return None
    width, height = (signed(arguments.get(name, 1)) for name in ("width", "height"))
    sizes = f"W = {width}, H = {height}"
    messages = []
    reporters = {
        "compute_surface_padding": ["compute_aligned_width_and_height"],
        IN_BYTES: [
            "compute_fmt_minimal_aligned_width_and_height",
            "compute_fmt_aligned_width_and_height",
        ],
    }.get(entry.name, [entry.name])
    for reporter in reporters:
        if ruling["negative_size"]:
            what = "texel width or texel height" if entry.name == COMPRESSED else "width or height"
            messages.append(f"{reporter}: Invalid {what}: {sizes}")
        if ruling.get("unknown_chip"):
            messages.append(f"{reporter}: Unknown Chip ID {signed(chip_id)}")
        if ruling.get("not_compressed"):
            text = f"Not a compressed format 0x{arguments['format']:x}"
            messages.append(f"{reporter}: {text}")
        if ruling.get("null_pointer"):
            messages.append(f"{reporter}: Invalid input pointers")  # addresses: see comparable()
    if entry.name == IN_BYTES:
        outputs = [
            ruling[name] for name in ("aligned_row_bytes", "minimal_row_bytes", "aligned_height")
        ]
    elif "value" in ruling:
        outputs = canaries
    elif ruling["written"]:
        outputs = [ruling["width"], ruling["height"], ruling.get("bpp", canaries[2])]
    else:
        outputs = canaries
    return {
        "outputs": outputs,
        "returned": ruling.get("value"),
        "messages": messages,
        "tiling_mode": ruling.get("tiling_mode", arguments.get("tiling_mode", 0)),
    }


def comparable(answer):
    """An answer without the addresses that the message of null pointers prints."""
    if answer is None:
        return None
    pattern = r"(Invalid input pointers), aligned_width=0x[0-9a-f]+, "
    pattern += r"aligned_height=0x[0-9a-f]{8}, bpp=0x[0-9a-f]+ $"
    messages = [re.sub(pattern, r"\1", message) for message in answer["messages"]]
    return {**answer, "messages": messages}


# ---- The comparison ------------------------------------------------------------------------------


class Tally:
    """What the calls met, so that a comparison of nothing is no success."""

    def __init__(self):
        self.counts = {}
        self.formats = set()

    def note(self, entry, arguments, ruling):
        met = [(entry.name, "calls")]
        met += [(entry.name, name) for name, value in ruling.items() if value is True]
        for key in met:
            self.counts[key] = self.counts.get(key, 0) + 1
        if "format" in arguments:
            self.formats.add(arguments["format"])

    def missing(self):
        """Names of what the calls should have met and did not."""
        wanted = [(name, "calls") for name in ENTRIES]
        wanted += [(name, "fault") for name in ENTRIES if name.startswith("compute_fmt_")]
        wanted += [("get_slice_pitch_alignment", "fault")]
        wanted += [(name, "negative_size") for name in ENTRIES if name.startswith("compute_")]
        wanted += [
            (name, "unknown_chip")
            for name in ENTRIES
            if name.startswith("compute_") and name != COMPRESSED
        ]
        wanted += [(COMPRESSED, "not_compressed"), (COMPRESSED, "null_pointer")]
        wanted += [(IN_BYTES, "tiling_mode_written")]
        missing = [f"{name}: {what}" for name, what in wanted if not self.counts.get((name, what))]
        missing += [f"format {number}" for number in ALL_FORMATS if number not in self.formats]
        return missing


def rule_all(groups, asked, tally):
    """Per chip the calls with their rulings; and disagreements between terms and known numbers."""
    per_chip = {}
    disagreements = []
    seconds_of_terms = 0.0
    for entry, family, fixed, group in groups:
        unknowns = {name: UNKNOWN_WORDS[name] for name in entry.arguments}
        started = time.perf_counter()
        terms = ruled(entry, any_chip(family), {**unknowns, **fixed})
        seconds_of_terms += time.perf_counter() - started
        pack = packed(terms)
        for chip_id, arguments, canaries in group:
            chip = asked[chip_id]
            by_terms = substituted(terms, pack, chip, arguments)
            numbers = ruled(entry, chip, arguments)
            by_numbers = unpacked(numbers, packed(numbers))
            compared = ("fault",) if by_terms["fault"] else tuple(by_terms)
            if any(by_terms[name] != by_numbers[name] for name in compared):
                disagreements.append(
                    f"terms and numbers: {entry.name}, chip {chip_id:#x}, {arguments}\n"
                    f"  terms   {by_terms}\n  numbers {by_numbers}"
                )
            tally.note(entry, arguments, by_terms)
            per_chip.setdefault(chip_id, []).append((entry, arguments, canaries, by_terms))
    print(f"{len(groups)} terms built, {1e3 * seconds_of_terms / len(groups):.2f} ms each")
    return per_chip, disagreements


def rule_every_format(asked, per_chip):
    """Adds the calls for every format with their rulings, all of their arguments known."""
    calls = calls_for_every_format(asked)
    for chip_id, entry, arguments in calls:
        numbers = ruled(entry, asked[chip_id], arguments)
        ruling = unpacked(numbers, packed(numbers))
        per_chip.setdefault(chip_id, []).append((entry, arguments, [1, 2, 3], ruling))
    return len(calls)


def main():
    options = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    options.add_argument("--library", type=Path, default=ROOT / "build" / "release" / "lib")
    options.add_argument("--calls", type=int, default=20000)
    options.add_argument("--seed", type=int, default=1)
    options = options.parse_args()
    asked = chips_to_ask(chips_of_hardware_data())
    library = Library(options.library)
    groups = random_calls(random.Random(options.seed), asked, options.calls)
    tally = Tally()
    per_chip, disagreements = rule_all(groups, asked, tally)
    probed = rule_every_format(asked, per_chip)
    compared = 0
    faults = 0
    for chip_id, calls in sorted(per_chip.items()):
        answers = library.answers(chip_id, [call[:3] for call in calls])
        for (entry, arguments, canaries, ruling), answer in zip(calls, answers):
            compared += 1
            faults += answer is None
            expected = expected_of_library(entry, chip_id, arguments, canaries, ruling)
            if comparable(answer) != expected:
                disagreements.append(
                    f"library and rules: {entry.name}, chip {chip_id:#x}, {arguments}\n"
                    f"  library {answer}\n  rules   {expected}"
                )
    print(f"{compared} calls on {len(per_chip)} chips compared, {faults} of them divisions by 0")
    for disagreement in disagreements[:20]:
        print(disagreement, file=sys.stderr)
    if disagreements:
        print(f"{len(disagreements)} disagreements", file=sys.stderr)
    missing = tally.missing()
    if missing:
        print("no call met: " + "; ".join(missing), file=sys.stderr)
    short = not probed or compared < options.calls + probed
    return 1 if disagreements or missing or short else 0


if __name__ == "__main__":
    sys.exit(main())
