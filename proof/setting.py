"""Where the library's code is run: callers' memory, the services, the GPU."""

from dataclasses import dataclass

import z3

from executor import terms
from executor.machine import Machine
from executor.memory import Address, Memory, Region
from executor.state import Message

LEVELS, PLANES, SLICES = 15, 3, 2048
BLOB_BYTES, LAYOUT_BYTES, SURFACE_BYTES = 5536, 5512, 5300


# ---- the services


def log(machine, state, arguments):
    """os_alog: the report, and nothing else."""
    _, _, _, line, function, text, *rest = arguments
    state.messages.append(Message(line, machine.text_at(function), machine.text_at(text),
                                  tuple(rest)))


def _any_word(name, bits):
    return lambda machine, state, arguments: machine.fresh(name, bits)


def _fills(machine, state, address, size, name):
    """A service that fills a record: with anything."""
    for offset in range(0, size, 4):
        state.memory = state.memory.store(address.region, address.offset + offset, 4,
                                          machine.fresh(f"{name}+{offset}", 32))


def _device_info(size, name):
    def service(machine, state, arguments):
        record = arguments[1]
        machine.check_access(state, record, size, 1, True, name)
        _fills(machine, state, record, size, name)
        return machine.fresh(f"{name}'s result", 32)
    return service


def _set_memory(machine, state, arguments):
    to, value, count = arguments
    machine.check_access(state, to, count, 1, True, "os_memset")
    byte = terms.truncated(value, 8)
    for i in range(count):
        state.memory = state.memory.store(to.region, to.offset + i, 1, byte)
    return to


def _print(machine, state, arguments):
    """os_snprintf: writes up to so many bytes to a text, and returns anything."""
    text, room, *_ = arguments
    state.notes["printed"] = state.notes.get("printed", ()) + ((text, room),)
    if isinstance(text, Address) and text.region is not None and text.region.initial == "undefined":
        machine.check_access(state, text, room, 1, True, "os_snprintf")
        cells = {text.offset + i: (1, machine.fresh("character", 8)) for i in range(room)}
        state.memory = state.memory.with_cells(text.region, {
            **state.memory.cells(text.region), **cells})
    return machine.fresh("os_snprintf's result", 32)


SERVICES = {
    "os_alog": log,
    "os_snprintf": _print,
    "os_memset": _set_memory,
    "hxl_library_open": _any_word("hxl_library_open's result", 32),
    "hxl_library_close": lambda machine, state, arguments: None,
    "hxl_device_open": _any_word("hxl_device_open's result", 32),
    "hxl_device_close": lambda machine, state, arguments: None,
    "hxl_device_getinfo": _device_info(32, "hxl_device_getinfo"),
    "hxl_device_getinfo_ext": _device_info(280, "hxl_device_getinfo_ext"),
}


# ---- the GPU

CHIP_ROWS = "_ZN6korvel9kChipRowsE"
GPU_IDENTITY = "_ZN6korvel12gpu_identityE"
IDENTIFY_GPU = "_ZN6korvel12identify_gpuEv"
ROW_BYTES, ROW_NOT_IDENTIFIED, ROW_UNKNOWN_CHIP, ROW_OF_A_CHIP = 64, 0, 1, 2

# Of a chip's row: where each word stands, its bytes, and the two values of a property (on chips that
# have it, on all others).
PROPERTIES = {
    "base_alignment": (32, 2, 4096, 0),
    "linear_alignment": (34, 2, 64, 0),
    "aux_alignment": (36, 2, 512, 0),
    "small_alignment": (38, 2, 16, 0),
    "pixel_alignment": (40, 2, 64, 1),
    "tiled_alignment": (42, 2, 4096, 1),
    "min_level_extent": (44, 2, 64, 0),
    "level_offset_alignment": (46, 2, 4096, 0),
    "level_size_alignment": (48, 2, 4096, 0),
    "holds_minimum_tiling_width": (50, 1, 1, 0),
}
WORDS = {
    "uuid_0": (0, 4), "uuid_1": (4, 4), "uuid_2": (8, 4), "uuid_3": (12, 4),
    "chip_id": (16, 4), "family_id": (20, 4), "model_code": (24, 4), "rev_id": (28, 4),
    "max_surface_pitch": (52, 4), "extra_padding_units": (56, 4), "supported": (60, 1),
    "ubwc": (61, 1),
}


@dataclass
class Chip:
    """A row that the maker may have: its words as terms, and what holds of them."""

    words: dict  # name -> value, with as many bits as it has in the row
    conditions: list

    def word(self, name):
        """As a number of 32 bits."""
        bytes_ = (PROPERTIES.get(name) or WORDS[name])[1]
        return terms.extended(self.words[name], 8 * bytes_, 32, False)


def any_chip(family, supported=None, **fixed):
    """A chip of a family of which nothing is known but what hardware_data_checks.cpp asserts of all
    rows: each property has one of its two values, and the pitch limit is 16384 or none, none but on
    family 7. `fixed` gives words that are known."""
    words, conditions = {}, []
    for name, (_, bytes_, on, off) in PROPERTIES.items():
        has = z3.Bool(f"chip has {name}")
        words[name] = terms.choose(has, on, off, 8 * bytes_)
    for name, (_, bytes_) in WORDS.items():
        words[name] = z3.BitVec(f"chip.{name}", 8 * bytes_)
    words["family_id"] = family
    words["uuid_0"], words["uuid_1"] = 0x5A52, family
    words["uuid_2"], words["uuid_3"] = words["model_code"], words["rev_id"]
    listed = z3.Bool("chip has max_surface_pitch")
    words["max_surface_pitch"] = terms.choose(listed, 16384, 0, 32) if family == 7 else 0
    is_supported = z3.Bool("chip is supported") if supported is None else supported
    words["supported"] = terms.choose(is_supported, 1, 0, 8)
    words["ubwc"] = z3.Concat(z3.BitVecVal(0, 3), z3.BitVec("chip.ubwc groups", 5))
    words.update(fixed)
    return Chip(words, conditions)


def unknown_chip():
    """The row of a chip that the library does not know."""
    words = {name: off for name, (_, _, _, off) in PROPERTIES.items()}
    words.update({name: 0 for name in WORDS})
    words["uuid_0"] = 0x5A52
    return Chip(words, [])


def place_chip(machine, chip):
    """The GPU is known, and it is this one. Returns the memory that a run starts with."""
    row = machine.variable(CHIP_ROWS)
    base = ROW_OF_A_CHIP * ROW_BYTES
    for table in (PROPERTIES, WORDS):
        for name, (offset, bytes_, *_) in table.items():
            if (base + offset) not in row.content or row.content[base + offset][0] != bytes_:
                raise SystemExit(f"a row of kChipRows has no {name} of {bytes_} bytes at {offset}: "
                                 "setting.py describes another row than chip_row.h")
            row.content[base + offset] = (bytes_, chip.words[name])
    identity = machine.variable(GPU_IDENTITY)
    identity.writable = True
    return Memory({identity: {0: (4, chip.words["chip_id"]), 4: (4, ROW_OF_A_CHIP)}})


# ---- callers' memory


def record(name, size, alignment=1, shared=True, writable=False):
    """A stored record. `shared`: others may change it between two loads."""
    return Region(name, size, alignment, writable, "shared" if shared else "any")


def output(name, size=4, alignment=4):
    return Region(name, size, alignment, True, "any")


def at(region, offset=0):
    return Address(region, offset)


def make_machine(module, prover, **arguments):
    return Machine(module, prover, services=dict(SERVICES), **arguments)


def function_named(module, part, *more):
    """The one function of the library whose linker name has these parts."""
    names = [n for n in module.functions if part in n and all(m in n for m in more)]
    if len(names) != 1:
        raise SystemExit(f"{len(names)} functions of the library are called {part} {more}: the "
                         "theorem was written for another library")
    return names[0]
