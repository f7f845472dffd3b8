"""GPU surface memory layouts, for scripts and notebooks: the C library by ctypes.

    import korvel_utils
    library = korvel_utils.Library()
    layout = library.lay_out(1920, 1080, format=28, ubwc=True)
    layout.allocation_bytes, layout.levels[0].planes[0].image_offset

Every number is the library's own: nothing is computed here. Units stand in the names or in the C header, whose words
the fields are. The GPU is that of the services library, libhxluser, for the life of the process; with the simulator
the environment chooses it, by HXL_SIM_CHIP.
"""

from __future__ import annotations

import ctypes
import os
from dataclasses import dataclass
from pathlib import Path
from typing import Optional, Union

MAX_LEVELS = 15
MAX_PLANES = 3
UUID_BYTES = 16
UBWC = 1 << 28
EXTRA = 1 << 56

_U32, _U64, _UUID = ctypes.c_uint32, ctypes.c_uint64, ctypes.c_uint8 * UUID_BYTES


class Refused(Exception):
    """What the library refuses, with its own message where the services hand it out: the simulator does, a driver keeps
    it in its log."""


class MetadataHeader(ctypes.Structure):
    """The first 24 bytes of a blob."""
    _fields_ = [(name, _U32) for name in ("magic", "header_version", "blob_size", "record_kind", "record_offset",
                                          "record_size")]


class PlaneLayout(ctypes.Structure):
    """One plane of one level, as it is stored."""
    _fields_ = [("image_offset", _U64), ("image_size", _U64), ("image_pitch", _U32), ("padding_20", _U32),
                ("image_slice_pitch", _U64), ("image_element_size", _U32), ("image_width", _U32),
                ("image_height", _U32), ("padding_44", _U32), ("flag_valid", _U32), ("padding_52", _U32),
                ("flag_offset", _U64), ("flag_size", _U64), ("flag_pitch", _U32), ("padding_76", _U32),
                ("flag_slice_pitch", _U64)]


class LevelLayout(ctypes.Structure):
    """One mip level, as it is stored."""
    _fields_ = [("slices", _U32), ("tiled", _U32), ("size", _U64), ("planes", _U32), ("padding_20", _U32),
                ("plane", PlaneLayout * MAX_PLANES), ("lrz_valid", _U32), ("padding_292", _U32), ("lrz_offset", _U64),
                ("lrz_size", _U64), ("lrz_pitch", _U32), ("padding_316", _U32), ("lrz_slice_pitch", _U64),
                ("lrz_width", _U32), ("lrz_height", _U32), ("lrz_fc_valid", _U32), ("padding_340", _U32),
                ("lrz_fc_offset", _U64), ("lrz_fc_size", _U64)]


class MemoryLayout(ctypes.Structure):
    """A surface's memory layout, as it is stored."""
    _fields_ = [("signature", _U32), ("size", _U32), ("device_uuid", _UUID), ("driver_uuid", _UUID),
                ("total_size", _U64), ("alignment", _U32), ("format", _U32), ("samples", _U32), ("reserved_60", _U32),
                ("linear_fallback", _U32), ("levels", _U32), ("level", LevelLayout * MAX_LEVELS), ("extra_valid", _U32),
                ("padding_5476", _U32), ("extra_offset", _U64), ("extra_size", _U64), ("extra_slice_pitch", _U64),
                ("extended", _U32), ("padding_5508", _U32)]


class LayoutMetadata(ctypes.Structure):
    """The blob that is stored with a resource."""
    _fields_ = [("header", MetadataHeader), ("layout", MemoryLayout)]


@dataclass(frozen=True)
class FlagBuffer:
    """The compression metadata of a plane."""
    offset: int
    size_bytes: int
    pitch_bytes: int
    slice_pitch_bytes: int


@dataclass(frozen=True)
class Plane:
    """One plane of one level. Width is elements, height is rows of elements."""
    image_offset: int
    image_size_bytes: int
    image_pitch_bytes: int
    image_slice_pitch_bytes: int
    element_size_bytes: int
    width_el: int
    height_rows: int
    flags: Optional[FlagBuffer]


@dataclass(frozen=True)
class Level:
    """One mip level."""
    slices: int
    tiled: bool
    size_bytes: int
    planes: tuple[Plane, ...]


@dataclass(frozen=True)
class Layout:
    """A surface as it lies in memory. `blob` has the bytes to store."""
    format: int
    samples: int
    alignment_bytes: int
    allocation_bytes: int
    device_uuid: bytes
    driver_uuid: bytes
    levels: tuple[Level, ...]
    blob: bytes


def _plane(stored: PlaneLayout) -> Plane:
    flags = None
    if stored.flag_valid:
        flags = FlagBuffer(stored.flag_offset, stored.flag_size, stored.flag_pitch, stored.flag_slice_pitch)
    return Plane(stored.image_offset, stored.image_size, stored.image_pitch, stored.image_slice_pitch,
                 stored.image_element_size, stored.image_width, stored.image_height, flags)


def _level(stored: LevelLayout) -> Level:
    planes = tuple(_plane(stored.plane[p]) for p in range(min(stored.planes, MAX_PLANES)))
    return Level(stored.slices, bool(stored.tiled), stored.size, planes)


class _Message(ctypes.Structure):
    """hxl_sim_message_record."""
    _fields_ = [("level", _U32), ("zero", _U32), ("line", _U32), ("reserved", _U32), ("text_length", _U64),
                ("tag", ctypes.c_char * 64), ("function", ctypes.c_char * 128), ("format", ctypes.c_char * 512),
                ("text", ctypes.c_char * 1024)]


class Library:
    """The loaded library.

    folder  where libkorvel_utils.so.1 and, unless the system has the driver's, libhxluser.so are: by default the folder
            `lib` beside this module where there is one, else wherever the system looks.
    """

    def __init__(self, folder: Union[str, os.PathLike, None] = None) -> None:
        beside = Path(__file__).resolve().parent / "lib"
        if folder is None and beside.is_dir():
            folder = beside

        def load(name: str) -> ctypes.CDLL:
            path = Path(folder) / name if folder is not None else None
            return ctypes.CDLL(str(path) if path is not None and path.exists() else name)

        self._services = load("libhxluser.so")
        self._library = load("libkorvel_utils.so.1")
        self._library.korvel_get_aligned_gpu_buffer_size.restype = _U64
        for name in ("korvel_init_memory_layout", "validate_resource_memory_layout_metadata"):
            getattr(self._library, name).restype = _U32
        self._has_messages = hasattr(self._services, "hxl_sim_set_capture")
        if self._has_messages:
            self._services.hxl_sim_set_capture(1)
            self._services.hxl_sim_message_count.restype = ctypes.c_size_t
            self._services.hxl_sim_message.argtypes = [ctypes.c_size_t, ctypes.POINTER(_Message)]

    def _take_messages(self) -> list[str]:
        """What the library has said since the last call."""
        if not self._has_messages:
            return []
        message, texts = _Message(), []
        for index in range(self._services.hxl_sim_message_count()):
            self._services.hxl_sim_message(index, ctypes.byref(message))
            texts.append(message.text.decode(errors="replace"))
        self._services.hxl_sim_clear_messages()
        return texts

    def _refused(self) -> Refused:
        said = self._take_messages()
        return Refused(said[0] if said else "refused; the message is in the log of the services")

    def lay_out(self, width: int, height: int, depth: int = 1, *, format: int, samples: int = 1, tiled: bool = True,
                planes: int = 1, levels: int = 1, ubwc: bool = False, extra: bool = False) -> Layout:
        """Lays out a surface, a mip chain where `levels` is more than 1. Sizes are texels, depth is slices or depth.

        Raises Refused with the library's message, and ValueError for a number of levels that it does not check and for
        numbers that do not fit 32 bits.
        """
        if not 1 <= levels <= MAX_LEVELS:
            raise ValueError(f"levels is {levels}; 1 to {MAX_LEVELS} are allowed, such as 9 for 256 x 256 texels")
        for name, value, lowest, highest in (
                ("width", width, -2 ** 31, 2 ** 31 - 1), ("height", height, -2 ** 31, 2 ** 31 - 1),
                ("depth", depth, -2 ** 31, 2 ** 31 - 1), ("format", format, 0, 2 ** 32 - 1),
                ("samples", samples, 0, 2 ** 32 - 1), ("planes", planes, 0, 2 ** 32 - 1)):
            if not lowest <= value <= highest:
                raise ValueError(f"{name} is {value}; {lowest} to {highest} fit the library's number, such as 1")
        flags = _U64((UBWC if ubwc else 0) | (EXTRA if extra else 0))
        numbers = (ctypes.c_int32(width), ctypes.c_int32(height), ctypes.c_int32(depth), _U32(format), _U32(samples),
                   _U32(1 if tiled else 0), flags, _U32(planes))
        blob = LayoutMetadata()
        self._take_messages()
        if self._library.korvel_init_memory_layout(ctypes.byref(blob), *numbers) != 0:
            raise self._refused()
        if levels > 1:
            blob.layout.levels = levels
            self._library.korvel_init_multi_level_surface(ctypes.byref(blob.layout), *numbers)
        return self.read(bytes(blob))

    def read(self, blob: bytes) -> Layout:
        """The layout in a blob of this module's lay_out(); for one from elsewhere, validate() it first."""
        if len(blob) != ctypes.sizeof(LayoutMetadata):
            raise ValueError(f"the blob has {len(blob)} bytes; it must have {ctypes.sizeof(LayoutMetadata)}, as "
                             "Layout.blob has")
        stored = LayoutMetadata.from_buffer_copy(blob)
        layout = stored.layout
        if stored.header.record_offset != LayoutMetadata.layout.offset:
            raise ValueError(f"the blob's record_offset is {stored.header.record_offset}; it must be "
                             f"{LayoutMetadata.layout.offset}, as in Layout.blob")
        return Layout(layout.format, layout.samples, layout.alignment,
                      self._library.korvel_get_aligned_gpu_buffer_size(ctypes.byref(stored)),
                      bytes(layout.device_uuid), bytes(layout.driver_uuid),
                      tuple(_level(layout.level[l]) for l in range(min(layout.levels, MAX_LEVELS))), bytes(blob))

    def validate(self, record: bytes, device_uuid: bytes, driver_uuid: bytes) -> None:
        """Raises Refused with the library's message unless a stored MemoryLayout, in a blob the bytes from 24 on, keeps
        all rules. What a verdict leaves to its reader is in docs/stored-records.md."""
        for name, uuid in (("device_uuid", device_uuid), ("driver_uuid", driver_uuid)):
            if len(uuid) != UUID_BYTES:
                raise ValueError(f"{name} has {len(uuid)} bytes; it must have 16, as Layout.{name} has")
        if len(record) > ctypes.sizeof(MemoryLayout):
            raise ValueError(f"the record has {len(record)} bytes; {ctypes.sizeof(MemoryLayout)} are the most, as in "
                             "Layout.blob[24:]")
        # What is missing of an older version's record is not read; zeros stand there.
        copy = MemoryLayout.from_buffer_copy(record.ljust(ctypes.sizeof(MemoryLayout), b"\0"))
        self._take_messages()
        if self._library.validate_resource_memory_layout_metadata(ctypes.byref(copy), device_uuid, driver_uuid) != 0:
            raise self._refused()
        if copy.size > len(record):
            raise Refused(f"the record says that it has {copy.size} bytes, and {len(record)} are there")
