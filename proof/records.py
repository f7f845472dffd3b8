"""The words of stored records: where each stands, as the public header lays them out."""

from dataclasses import dataclass, field


@dataclass(frozen=True)
class Kind:
    """One of the two kinds of record."""

    name: str
    validator: str
    part_of_name: str  # in the linker's names of the checks of this kind
    bytes: int
    levels_at: int
    level_bytes: int
    planes_at: int  # in a level
    plane_bytes: int
    header: dict = field(default_factory=dict)  # name -> (offset, bytes)
    level: dict = field(default_factory=dict)
    plane: dict = field(default_factory=dict)
    has_actual_size: bool = False

    def level_at(self, level):
        return self.levels_at + level * self.level_bytes

    def plane_at(self, level, plane):
        return self.level_at(level) + self.planes_at + plane * self.plane_bytes

    def word(self, where, name):
        """(offset, bytes) of a word: `where` is (), (level,) or (level, plane)."""
        if not where:
            return self.header[name]
        table, base = ((self.level, self.level_at(*where)) if len(where) == 1 else
                       (self.plane, self.plane_at(*where)))
        offset, bytes_ = table[name]
        return base + offset, bytes_

    def name_of(self, offset):
        """The word that starts at an offset."""
        for name, (at, bytes_) in self.header.items():
            if at == offset:
                return name, bytes_
        level, rest = divmod(offset - self.levels_at, self.level_bytes)
        for name, (at, bytes_) in self.level.items():
            if at == rest:
                return f"level[{level}].{name}", bytes_
        plane, rest = divmod(rest - self.planes_at, self.plane_bytes)
        for name, (at, bytes_) in self.plane.items():
            if at == rest and 0 <= plane < 3:
                return f"level[{level}].plane[{plane}].{name}", bytes_
        return f"byte {offset}", 0


LAYOUT = Kind(
    name="MemoryLayout", validator="validate_resource_memory_layout_metadata",
    part_of_name="16MemoryLayoutKind", bytes=5512, levels_at=72, level_bytes=360, planes_at=24,
    plane_bytes=88,
    header={
        "signature": (0, 4), "size": (4, 4), "device_uuid_0_1": (8, 8), "device_uuid_2_3": (16, 8),
        "driver_uuid_0_1": (24, 8), "driver_uuid_2_3": (32, 8), "total_size": (40, 8),
        "alignment": (48, 4), "format": (52, 4), "samples": (56, 4), "linear_fallback": (64, 4),
        "levels": (68, 4),
    },
    level={
        "slices": (0, 4), "tiled": (4, 4), "size": (8, 8), "planes": (16, 4), "lrz_valid": (288, 4),
        "lrz_offset": (296, 8), "lrz_size": (304, 8), "lrz_pitch": (312, 4),
        "lrz_slice_pitch": (320, 8), "lrz_width": (328, 4), "lrz_height": (332, 4),
        "lrz_fc_valid": (336, 4), "lrz_fc_offset": (344, 8), "lrz_fc_size": (352, 8),
    },
    plane={
        "image_offset": (0, 8), "image_size": (8, 8), "image_pitch": (16, 4),
        "image_slice_pitch": (24, 8), "image_element_size": (32, 4), "image_width": (36, 4),
        "image_height": (40, 4), "flag_valid": (48, 4), "flag_offset": (56, 8), "flag_size": (64, 8),
        "flag_pitch": (72, 4), "flag_slice_pitch": (80, 8),
    })

SURFACE = Kind(
    name="SurfaceMetadata", validator="validate_surface_metadata",
    part_of_name="19SurfaceMetadataKind", bytes=5300, levels_at=40, level_bytes=348, planes_at=20,
    plane_bytes=80, has_actual_size=True,
    header={
        "guid": (0, 8), "total_size": (8, 8), "alignment": (16, 4), "format": (20, 4),
        "samples": (24, 4), "linear_fallback": (32, 4), "levels": (36, 4),
        "device_uuid_0_1": (5260, 8), "device_uuid_2_3": (5268, 8), "driver_uuid_0_1": (5276, 8),
        "driver_uuid_2_3": (5284, 8), "size": (5292, 4), "signature": (5296, 4),
    },
    level={
        "slices": (0, 4), "tiled": (4, 4), "size": (8, 8), "planes": (16, 4), "lrz_valid": (260, 4),
        "lrz_offset": (264, 8), "lrz_size": (272, 8), "lrz_pitch": (280, 4),
        "lrz_slice_pitch": (284, 8), "lrz_width": (292, 4), "lrz_height": (296, 4),
        "lrz_fc_valid": (300, 4), "lrz_fc_offset": (304, 8), "lrz_fc_size": (312, 8),
    },
    plane={
        "image_offset": (0, 8), "image_size": (8, 8), "image_pitch": (16, 4),
        "image_slice_pitch": (20, 8), "image_element_size": (28, 4), "image_width": (32, 4),
        "image_height": (36, 4), "actual_width": (40, 4), "actual_height": (44, 4),
        "flag_valid": (48, 4), "flag_offset": (52, 8), "flag_size": (60, 8), "flag_pitch": (68, 4),
        "flag_slice_pitch": (72, 8),
    })

KINDS = (LAYOUT, SURFACE)
