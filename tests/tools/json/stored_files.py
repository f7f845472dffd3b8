"""Stored files of every kind for the commands that read them, and records that are wrong in one word."""
import base64
import pathlib
import struct
import subprocess

HEADER_BYTES = 24
LAYOUT_BYTES = {1: 5472, 2: 5504, 3: 5512}
SURFACE_BYTES = 5300
LEVELS = 15
CHIP = "0x43010000"

# Offsets in bytes from the start of a MemoryLayout.
SIZE, TOTAL_SIZE, LEVEL_0 = 4, 40, 72
LEVEL_SIZE, PLANE_0 = 8, 24  # in a level
IMAGE_SIZE = 8  # in a plane


def change(content, at, word_format, value):
    """The bytes with one word replaced."""
    changed = bytearray(content)
    struct.pack_into("<" + word_format, changed, at, value)
    return bytes(changed)


def blob_of(tool, folder, request):
    path = folder / "made.blob"
    done = subprocess.run([tool, "show", "--chip", CHIP, *request.split(), "--blob", str(path), "--force"],
                          capture_output=True, check=False)
    if done.returncode != 0:
        raise SystemExit(f"stored_files: no blob of {request}: {done.stderr.decode()}")
    return path.read_bytes()


def surface_record(device_uuid, driver_uuid):
    """A surface record of one level and one plane: 64 x 64 elements of 4 bytes, linear, with no buffers beside it."""
    image_bytes = 64 * 256
    plane = struct.pack("<QQIQIIIIIIQQIQ", 0, image_bytes, 256, image_bytes, 4, 64, 64, 64, 64, 0, 0, 0, 0, 0)
    level_words = struct.pack("<IIQI", 1, 0, image_bytes, 1)
    level = (level_words + plane).ljust((SURFACE_BYTES - 40 - 40) // LEVELS, b"\0")
    head = struct.pack("<QQIIIIII", 0x1122334455667788, SURFACE_BYTES + image_bytes, 4096, 28, 1, 0, 0, 1)
    tail = device_uuid + driver_uuid + struct.pack("<II", SURFACE_BYTES, 0xDE5CDA7A)
    record = head + level.ljust(LEVELS * len(level), b"\0") + tail
    assert len(record) == SURFACE_BYTES
    return record


def write_files(tool, folder):
    """Writes the files. Returns their paths by name."""
    folder = pathlib.Path(folder)
    blob = blob_of(tool, folder, "--format 28 --size 200x120 --ubwc")
    chain = blob_of(tool, folder, "--format nv12 --size 256x256x3 --levels 4 --ubwc --extra --extended")
    record = blob[HEADER_BYTES:]
    surface = surface_record(record[8:24], record[24:40])
    level_0 = HEADER_BYTES + LEVEL_0
    contents = {
        "blob": blob,
        "chain": chain,
        "bare": record,
        "surface": surface,
        "other_surface": change(surface, 0, "Q", 1),
        "without_guid": change(surface, 0, "Q", 0),
        "hex": blob.hex(" ").encode(),
        "base64": base64.encodebytes(blob),
        "other_header": change(blob, 12, "I", 7),
        "other_device": change(blob, HEADER_BYTES + 12, "I", 9),
        "signature": change(blob, HEADER_BYTES, "I", 1),
        "magic": change(blob, 0, "I", 1),
        "no_room": change(blob, 16, "I", 0xFFFFFFFF),
        "cut": change(blob, 16, "I", HEADER_BYTES + 2),
        "yes_no_of_2": change(blob, HEADER_BYTES + 64, "I", 2),
        # The level has fewer bytes than its image: the fixed rules do not look.
        "small_level": change(blob, level_0 + LEVEL_SIZE, "Q", 1),
        # 2^32 bytes of surface more: buffers are held against the low 32 bits.
        "low_bits": change(blob, HEADER_BYTES + TOTAL_SIZE, "Q",
                           struct.unpack_from("<Q", blob, HEADER_BYTES + TOTAL_SIZE)[0] + 2**32),
    }
    for version in (1, 2):
        size = LAYOUT_BYTES[version]
        contents[f"version_{version}"] = change(change(record, SIZE, "I", size), 32, "I", version)[:size]
    paths = {}
    for name, content in contents.items():
        paths[name] = str(folder / name)
        pathlib.Path(paths[name]).write_bytes(content)
    (folder / "made.blob").unlink()
    return paths
