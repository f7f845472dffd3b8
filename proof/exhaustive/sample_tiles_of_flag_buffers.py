"""Theorem: a flag buffer has one byte for each sample tile, and a tile that is not known faults.

For every format that some chip of the data keeps in bandwidth compression, every family, the sample
counts 0 to 9, a negative one, and all three planes: korvel_init_single_level_surface lays a flag
buffer out by the tile of requirements/sample_tiles.py, or, where that knows none, ends in a
division by 0. Sizes are such that every width and height of a tile comes to another buffer.

Left out are the planes, or numbers of samples, with which the call ends in a division by 0 without
flag buffers too: the image's own alignment does that.
"""

import argparse
import ctypes
import os
import signal
import struct
import sys
from pathlib import Path

PROOF = Path(__file__).resolve().parents[1]
sys.path.insert(0, str(PROOF / "requirements"))

# pylint: disable=wrong-import-position
from capabilities import FIRST_UNNAMED_ID, ubwc_supported
from hardware_rows import read_chips, read_hardware_data
from sample_tiles import sample_tile

# Elements; much longer than any rounding of a buffer's rows.
WIDTH_EL = 3 * 2**14
HEIGHT_EL = 3 * 2**10
PLANES = 3
SAMPLES = (*range(10), -1)

TILED = 1
UBWC = 1 << 28
# The record: where its fields lie, in bytes.
RECORD_BYTES = 5512
LEVELS_AT = 68
PLANES_AT = 72 + 24
PLANE_BYTES = 88
IMAGE_WIDTH_AT, IMAGE_HEIGHT_AT = 36, 40
FLAG_VALID_AT, FLAG_SIZE_AT, FLAG_PITCH_AT = 48, 64, 72


def in_every_column(row):
    """Whether the chip has the supported value of every property, so that no alignment is 0."""
    return row["supported"] and all(row["columns"].values())


def compressing_chips():
    """For every family and format, a chip that compresses the format, if there is one."""
    rows = read_hardware_data().chips
    chips = [chip for chip in read_chips().values() if in_every_column(rows[chip.chip_id])]
    found = {}
    for chip in chips:
        for format_id in range(FIRST_UNNAMED_ID):
            if ubwc_supported(chip, format_id).supported:
                found.setdefault((chip.family_id, format_id), chip)
    return found


def laid_out(libraries, chip_id, format_id, samples, planes, flags=UBWC):
    """The record of a surface, or None after a division by 0.

    A process of its own makes it: it may fault, and the library meets one chip in its life.
    """
    reader, writer = os.pipe()
    child = os.fork()
    if child == 0:
        services = ctypes.CDLL(str(libraries / "libhxluser.so"), ctypes.RTLD_GLOBAL)
        services.hxl_sim_set_chip(ctypes.c_uint32(chip_id))
        library = ctypes.CDLL(str(libraries / "libkorvel_utils.so"))
        record = ctypes.create_string_buffer(RECORD_BYTES + 8)
        struct.pack_into("<I", record, 4, RECORD_BYTES)
        struct.pack_into("<I", record, 48, 4096)
        struct.pack_into("<I", record, LEVELS_AT, 1)
        library.korvel_init_single_level_surface(
            record, ctypes.c_int32(WIDTH_EL), ctypes.c_int32(HEIGHT_EL), ctypes.c_int32(1),
            ctypes.c_uint32(format_id), ctypes.c_uint32(samples & 0xFFFFFFFF),
            ctypes.c_uint32(TILED), ctypes.c_uint64(flags), ctypes.c_uint32(planes),
        )
        os.write(writer, record.raw[:PLANES_AT + PLANES * PLANE_BYTES])
        os._exit(0)
    os.close(writer)
    with os.fdopen(reader, "rb") as pipe:
        record = pipe.read()
    status = os.waitpid(child, 0)[1]
    if os.WIFSIGNALED(status) and os.WTERMSIG(status) == signal.SIGFPE:
        return None
    if status != 0 or not record:
        raise RuntimeError(f"chip {chip_id:#x}, format {format_id}: the call ended with {status}")
    return record


def rounded_up(number, multiple):
    return -(-number // multiple) * multiple


def wrong_buffer(record, plane, tile):
    """What is wrong with a plane's flag buffer; None when nothing is."""

    def word(place):
        return struct.unpack_from("<I", record, PLANES_AT + plane * PLANE_BYTES + place)[0]

    width_px, height_px = tile
    pitch_bytes = rounded_up(-(-word(IMAGE_WIDTH_AT) // width_px), 64)
    rows = rounded_up(-(-word(IMAGE_HEIGHT_AT) // height_px), 16)
    expected = (1, pitch_bytes, rounded_up(pitch_bytes * rows, 4096) & 0xFFFFFFFF)
    found = (word(FLAG_VALID_AT), word(FLAG_PITCH_AT), word(FLAG_SIZE_AT))
    if found == expected:
        return None
    return f"valid, pitch, size are {found}, by a tile of {tile} {expected}"


def planes_without_fault(libraries, chip_id, format_id, samples):
    """How many planes the surface can have, as far as its images are concerned."""
    for planes in range(PLANES, 0, -1):
        if laid_out(libraries, chip_id, format_id, samples, planes, flags=0) is not None:
            return planes
    return 0


def wrong_surface(libraries, chip, format_id, samples, planes):
    """What is wrong with a surface that has flag buffers; None when nothing is."""
    tiles = [sample_tile(chip.family_id, format_id, samples, p) for p in range(planes)]
    record = laid_out(libraries, chip.chip_id, format_id, samples, planes)
    if record is None:
        return None if None in tiles else f"a division by 0 with the tiles {tiles}"
    if None in tiles:
        return f"laid out with the tiles {tiles}"
    wrongs = (wrong_buffer(record, p, tile) for p, tile in enumerate(tiles))
    return next((wrong for wrong in wrongs if wrong is not None), None)


def main():
    parser = argparse.ArgumentParser(description="Show that flag buffers go by sample tiles.")
    parser.add_argument(
        "--libraries",
        type=Path,
        default=PROOF.parent / "build/release/lib",
        help="the folder of the built libraries; default: %(default)s",
    )
    libraries = parser.parse_args().libraries.resolve()
    disagreements = 0
    counted = {5: set(), 6: set(), 7: set()}
    for (family_id, format_id), chip in sorted(compressing_chips().items()):
        for samples in SAMPLES:
            planes = planes_without_fault(libraries, chip.chip_id, format_id, samples)
            if planes == 0:
                continue
            counted[family_id].add((format_id, samples))
            wrong = wrong_surface(libraries, chip, format_id, samples, planes)
            if wrong is not None:
                disagreements += 1
                print(f"HXL_SIM_CHIP={chip.chip_id:#x}: format {format_id}, {samples} samples, "
                      f"{planes} planes: {wrong}", file=sys.stderr)
    surfaces = ", ".join(f"{len(cases)} of family {f}" for f, cases in counted.items())
    print(f"surfaces with flag buffers: {surfaces}; {disagreements} disagreements")
    if not all(counted.values()):
        sys.exit("a family has no chip to show it on")
    sys.exit(1 if disagreements else 0)


if __name__ == "__main__":
    main()
