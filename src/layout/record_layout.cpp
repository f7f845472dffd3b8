// Where every word of the stored records stands. Records outlive the program that wrote them, so an
// offset that moves is a mistake, and the compiler stops here. There is no code in this file.
#include <korvel_utils.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace korvel {
namespace {

#define FIELD(record, bytes_before, type, field)                                                  \
  static_assert(                                                                                  \
      offsetof(record, field) == (bytes_before) && std::is_same_v<decltype(record::field), type>, \
      #record "::" #field " has moved or changed its type")

// Integers with no byte between them that has no name.
template <typename Record>
constexpr bool takes(std::size_t bytes, std::size_t alignment) {
  return sizeof(Record) == bytes && alignof(Record) == alignment &&
         std::has_unique_object_representations_v<Record> && std::is_standard_layout_v<Record> &&
         std::is_trivially_copyable_v<Record>;
}

// clang-format off

FIELD(MetadataHeader,   0, uint32_t, magic);
FIELD(MetadataHeader,   4, uint32_t, header_version);
FIELD(MetadataHeader,   8, uint32_t, blob_size);
FIELD(MetadataHeader,  12, uint32_t, record_kind);
FIELD(MetadataHeader,  16, uint32_t, record_offset);
FIELD(MetadataHeader,  20, uint32_t, record_size);
static_assert(takes<MetadataHeader>(24, 4));

FIELD(PlaneLayout,   0, uint64_t, image_offset);
FIELD(PlaneLayout,   8, uint64_t, image_size);
FIELD(PlaneLayout,  16, uint32_t, image_pitch);
FIELD(PlaneLayout,  20, uint32_t, padding_20);
FIELD(PlaneLayout,  24, uint64_t, image_slice_pitch);
FIELD(PlaneLayout,  32, uint32_t, image_element_size);
FIELD(PlaneLayout,  36, uint32_t, image_width);
FIELD(PlaneLayout,  40, uint32_t, image_height);
FIELD(PlaneLayout,  44, uint32_t, padding_44);
FIELD(PlaneLayout,  48, uint32_t, flag_valid);
FIELD(PlaneLayout,  52, uint32_t, padding_52);
FIELD(PlaneLayout,  56, uint64_t, flag_offset);
FIELD(PlaneLayout,  64, uint64_t, flag_size);
FIELD(PlaneLayout,  72, uint32_t, flag_pitch);
FIELD(PlaneLayout,  76, uint32_t, padding_76);
FIELD(PlaneLayout,  80, uint64_t, flag_slice_pitch);
static_assert(takes<PlaneLayout>(88, 8));

FIELD(LevelLayout,   0, uint32_t, slices);
FIELD(LevelLayout,   4, uint32_t, tiled);
FIELD(LevelLayout,   8, uint64_t, size);
FIELD(LevelLayout,  16, uint32_t, planes);
FIELD(LevelLayout,  20, uint32_t, padding_20);
FIELD(LevelLayout,  24, PlaneLayout[3], plane);
FIELD(LevelLayout, 288, uint32_t, lrz_valid);
FIELD(LevelLayout, 292, uint32_t, padding_292);
FIELD(LevelLayout, 296, uint64_t, lrz_offset);
FIELD(LevelLayout, 304, uint64_t, lrz_size);
FIELD(LevelLayout, 312, uint32_t, lrz_pitch);
FIELD(LevelLayout, 316, uint32_t, padding_316);
FIELD(LevelLayout, 320, uint64_t, lrz_slice_pitch);
FIELD(LevelLayout, 328, uint32_t, lrz_width);
FIELD(LevelLayout, 332, uint32_t, lrz_height);
FIELD(LevelLayout, 336, uint32_t, lrz_fc_valid);
FIELD(LevelLayout, 340, uint32_t, padding_340);
FIELD(LevelLayout, 344, uint64_t, lrz_fc_offset);
FIELD(LevelLayout, 352, uint64_t, lrz_fc_size);
static_assert(takes<LevelLayout>(360, 8));

FIELD(MemoryLayout,    0, uint32_t, signature);
FIELD(MemoryLayout,    4, uint32_t, size);
FIELD(MemoryLayout,    8, uint8_t[16], device_uuid);
FIELD(MemoryLayout,   24, uint8_t[16], driver_uuid);
FIELD(MemoryLayout,   40, uint64_t, total_size);
FIELD(MemoryLayout,   48, uint32_t, alignment);
FIELD(MemoryLayout,   52, uint32_t, format);
FIELD(MemoryLayout,   56, uint32_t, samples);
FIELD(MemoryLayout,   60, uint32_t, reserved_60);
FIELD(MemoryLayout,   64, uint32_t, linear_fallback);
FIELD(MemoryLayout,   68, uint32_t, levels);
FIELD(MemoryLayout,   72, LevelLayout[15], level);
FIELD(MemoryLayout, 5472, uint32_t, extra_valid);
FIELD(MemoryLayout, 5476, uint32_t, padding_5476);
FIELD(MemoryLayout, 5480, uint64_t, extra_offset);
FIELD(MemoryLayout, 5488, uint64_t, extra_size);
FIELD(MemoryLayout, 5496, uint64_t, extra_slice_pitch);
FIELD(MemoryLayout, 5504, uint32_t, extended);
FIELD(MemoryLayout, 5508, uint32_t, padding_5508);
static_assert(takes<MemoryLayout>(5512, 8));

FIELD(LayoutMetadata,  0, MetadataHeader, header);
FIELD(LayoutMetadata, 24, MemoryLayout, layout);
static_assert(takes<LayoutMetadata>(5536, 8));

FIELD(SurfacePlane,   0, uint64_t, image_offset);
FIELD(SurfacePlane,   8, uint64_t, image_size);
FIELD(SurfacePlane,  16, uint32_t, image_pitch);
FIELD(SurfacePlane,  20, uint64_t, image_slice_pitch);
FIELD(SurfacePlane,  28, uint32_t, image_element_size);
FIELD(SurfacePlane,  32, uint32_t, image_width);
FIELD(SurfacePlane,  36, uint32_t, image_height);
FIELD(SurfacePlane,  40, uint32_t, actual_width);
FIELD(SurfacePlane,  44, uint32_t, actual_height);
FIELD(SurfacePlane,  48, uint32_t, flag_valid);
FIELD(SurfacePlane,  52, uint64_t, flag_offset);
FIELD(SurfacePlane,  60, uint64_t, flag_size);
FIELD(SurfacePlane,  68, uint32_t, flag_pitch);
FIELD(SurfacePlane,  72, uint64_t, flag_slice_pitch);
static_assert(takes<SurfacePlane>(80, 4));

FIELD(SurfaceLevel,   0, uint32_t, slices);
FIELD(SurfaceLevel,   4, uint32_t, tiled);
FIELD(SurfaceLevel,   8, uint64_t, size);
FIELD(SurfaceLevel,  16, uint32_t, planes);
FIELD(SurfaceLevel,  20, SurfacePlane[3], plane);
FIELD(SurfaceLevel, 260, uint32_t, lrz_valid);
FIELD(SurfaceLevel, 264, uint64_t, lrz_offset);
FIELD(SurfaceLevel, 272, uint64_t, lrz_size);
FIELD(SurfaceLevel, 280, uint32_t, lrz_pitch);
FIELD(SurfaceLevel, 284, uint64_t, lrz_slice_pitch);
FIELD(SurfaceLevel, 292, uint32_t, lrz_width);
FIELD(SurfaceLevel, 296, uint32_t, lrz_height);
FIELD(SurfaceLevel, 300, uint32_t, lrz_fc_valid);
FIELD(SurfaceLevel, 304, uint64_t, lrz_fc_offset);
FIELD(SurfaceLevel, 312, uint64_t, lrz_fc_size);
FIELD(SurfaceLevel, 320, uint8_t[28], unread_320);
static_assert(takes<SurfaceLevel>(348, 4));

FIELD(SurfaceMetadata,    0, uint64_t, guid);
FIELD(SurfaceMetadata,    8, uint64_t, total_size);
FIELD(SurfaceMetadata,   16, uint32_t, alignment);
FIELD(SurfaceMetadata,   20, uint32_t, format);
FIELD(SurfaceMetadata,   24, uint32_t, samples);
FIELD(SurfaceMetadata,   28, uint32_t, unread_28);
FIELD(SurfaceMetadata,   32, uint32_t, linear_fallback);
FIELD(SurfaceMetadata,   36, uint32_t, levels);
FIELD(SurfaceMetadata,   40, SurfaceLevel[15], level);
FIELD(SurfaceMetadata, 5260, uint8_t[16], device_uuid);
FIELD(SurfaceMetadata, 5276, uint8_t[16], driver_uuid);
FIELD(SurfaceMetadata, 5292, uint32_t, size);
FIELD(SurfaceMetadata, 5296, uint32_t, signature);
static_assert(takes<SurfaceMetadata>(5300, 4));

static_assert(KORVEL_BLOB_BYTES == sizeof(LayoutMetadata));
static_assert(KORVEL_SURFACE_BYTES == sizeof(SurfaceMetadata));
// Each layout version ends where the next one goes on.
static_assert(KORVEL_LAYOUT_BYTES_VERSION_1 == offsetof(MemoryLayout, extra_valid));
static_assert(KORVEL_LAYOUT_BYTES_VERSION_2 == offsetof(MemoryLayout, extended));
static_assert(KORVEL_LAYOUT_BYTES_VERSION_3 == sizeof(MemoryLayout));

// clang-format on

}  // namespace
}  // namespace korvel
