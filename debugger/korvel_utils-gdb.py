"""How GDB shows the records of korvel_utils: levels and planes in use only, offsets in hexadecimal, units with every
number. GDB loads this by itself where it stands beside the library or in GDB's own folder of such files.

  (gdb) print blob               the layout, level by level
  (gdb) print /r blob            all words, as they are
"""

import gdb
import gdb.printing

MAX_LEVELS = 15
MAX_PLANES = 3


def counted(number, thing):
    """The number with its noun: "1 level", "2 levels"."""
    return f"{number} {thing}" if number == 1 else f"{number} {thing}s"


def number(record, field):
    """A word of a record."""
    return int(record[field])


def uuid_text(array):
    """16 bytes as the library prints them."""
    digits = "".join(f"{int(array[i]):02x}" for i in range(16))
    return "-".join((digits[:8], digits[8:12], digits[12:16], digits[16:20], digits[20:]))


def used(count, most):
    """How many entries of an array are shown, and what is said of a count that the array has no room for."""
    return min(count, most), "" if count <= most else f" (there is room for {most})"


class Plane:
    """A PlaneLayout or a SurfacePlane, in one line."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        """GDB's name for what stands in the place of the value."""
        of = lambda field: number(self.value, field)
        text = (f"image at {of('image_offset'):#x}, {of('image_size')} bytes, "
                f"{of('image_width')} x {of('image_height')} elements of {of('image_element_size')} bytes, "
                f"pitch {of('image_pitch')} bytes, slice pitch {of('image_slice_pitch')} bytes")
        if of("flag_valid") == 0:
            return text + "; no flag buffer"
        return text + (f"; flags at {of('flag_offset'):#x}, {of('flag_size')} bytes, "
                       f"pitch {of('flag_pitch')} bytes, slice pitch {of('flag_slice_pitch')} bytes")


class Level:
    """A LevelLayout or a SurfaceLevel: its planes in use."""

    def __init__(self, value):
        self.value = value
        self.planes, self.beyond = used(number(value, "planes"), MAX_PLANES)

    def to_string(self):
        """GDB's name for what stands in front of the children."""
        of = lambda field: number(self.value, field)
        mode = {0: "linear", 1: "tiled"}.get(of("tiled"), f"tiling mode {of('tiled')}")
        text = f"{of('size')} bytes, {counted(of('slices'), 'slice')}, {mode}, " \
               f"{counted(of('planes'), 'plane')}{self.beyond}"
        if of("lrz_valid"):
            text += f", LRZ at {of('lrz_offset'):#x}, {of('lrz_size')} bytes, pitch {of('lrz_pitch')} bytes"
        if of("lrz_fc_valid"):
            text += f", fast clear at {of('lrz_fc_offset'):#x}, {of('lrz_fc_size')} bytes"
        return text

    def children(self):
        """The planes in use."""
        for index in range(self.planes):
            yield f"plane[{index}]", self.value["plane"][index]


class Record:
    """A MemoryLayout or a SurfaceMetadata: its levels in use."""

    def __init__(self, value):
        self.value = value
        self.levels, self.beyond = used(number(value, "levels"), MAX_LEVELS)

    def to_string(self):
        """GDB's name for what stands in front of the children."""
        of = lambda field: number(self.value, field)
        surface_bytes = (of("total_size") - of("size")) % 2 ** 64
        return (f"format {of('format')}, {counted(of('samples'), 'sample')}, "
                f"{counted(of('levels'), 'level')}{self.beyond}, surface of {surface_bytes} bytes "
                f"({surface_bytes:#x}) at multiples of {of('alignment')} bytes")

    def children(self):
        """The UUIDs and the levels in use."""
        yield "device_uuid", uuid_text(self.value["device_uuid"])
        yield "driver_uuid", uuid_text(self.value["driver_uuid"])
        for index in range(self.levels):
            yield f"level[{index}]", self.value["level"][index]
        names = {field.name for field in self.value.type.fields()}
        if "extra_valid" in names and number(self.value, "extra_valid"):
            yield "extra", (f"at {number(self.value, 'extra_offset'):#x}, {number(self.value, 'extra_size')} bytes, "
                            f"slice pitch {number(self.value, 'extra_slice_pitch')} bytes")


class Blob:
    """A LayoutMetadata: its layout, and the header where it is not the usual one."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        """GDB's name for what stands in front of the children."""
        header = self.value["header"]
        usual = {"magic": 0x00FACADE, "header_version": 1, "blob_size": 5536, "record_kind": 3, "record_offset": 24,
                 "record_size": 5512}
        others = [f"{field} {number(header, field):#x}" for field, word in usual.items()
                  if number(header, field) != word]
        return "blob" if not others else "blob with " + ", ".join(others)

    def children(self):
        """The layout."""
        yield "layout", self.value["layout"]


def printers():
    """Of every record that the header has and that is more than a few words."""
    collection = gdb.printing.RegexpCollectionPrettyPrinter("korvel_utils")
    for pattern, printer in (("^(PlaneLayout|SurfacePlane)$", Plane), ("^(LevelLayout|SurfaceLevel)$", Level),
                             ("^(MemoryLayout|SurfaceMetadata)$", Record), ("^LayoutMetadata$", Blob)):
        collection.add_printer(printer.__name__, pattern, printer)
    return collection


gdb.printing.register_pretty_printer(gdb.current_objfile(), printers(), replace=True)
