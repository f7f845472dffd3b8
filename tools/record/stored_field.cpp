#include "tools/record/stored_field.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace tool {
namespace {

using enum Meaning;

#define FIELD(record, field, ...) \
  { offsetof(record, field), sizeof(record::field), #field, __VA_ARGS__ }

// clang-format off
constexpr StoredField kHeader[] = {
    FIELD(MetadataHeader, magic,          signature, KORVEL_HEADER_MAGIC),
    FIELD(MetadataHeader, header_version, fixed,     KORVEL_HEADER_VERSION),
    FIELD(MetadataHeader, blob_size,      fixed_size,   KORVEL_BLOB_BYTES),
    FIELD(MetadataHeader, record_kind,    fixed,     KORVEL_HEADER_RECORD_KIND),
    FIELD(MetadataHeader, record_offset,  place,     offsetof(LayoutMetadata, layout)),
    FIELD(MetadataHeader, record_size,    fixed_size,   KORVEL_LAYOUT_BYTES_VERSION_3),
};

// ---- MemoryLayout ----

constexpr StoredField kLayoutHead[] = {
    FIELD(MemoryLayout, signature,       signature, KORVEL_LAYOUT_SIGNATURE),
    FIELD(MemoryLayout, size,            layout_size),
    FIELD(MemoryLayout, device_uuid,     device_uuid),
    FIELD(MemoryLayout, driver_uuid,     driver_uuid),
    FIELD(MemoryLayout, total_size,      total_size),
    FIELD(MemoryLayout, alignment,       alignment),
    FIELD(MemoryLayout, format,          format),
    FIELD(MemoryLayout, samples,         samples),
    FIELD(MemoryLayout, reserved_60,     unused),
    FIELD(MemoryLayout, linear_fallback, yes_no),
    FIELD(MemoryLayout, levels,          levels),
};
constexpr StoredField kLayoutTail[] = {
    FIELD(MemoryLayout, extra_valid,       yes_no),
    FIELD(MemoryLayout, padding_5476,      unused),
    FIELD(MemoryLayout, extra_offset,      offset),
    FIELD(MemoryLayout, extra_size,        bytes),
    FIELD(MemoryLayout, extra_slice_pitch, bytes),
    FIELD(MemoryLayout, extended,          yes_no),
    FIELD(MemoryLayout, padding_5508,      unused),
};
constexpr StoredField kLevelHead[] = {
    FIELD(LevelLayout, slices,     slices),
    FIELD(LevelLayout, tiled,      tiling),
    FIELD(LevelLayout, size,       bytes),
    FIELD(LevelLayout, planes,     planes),
    FIELD(LevelLayout, padding_20, unused),
};
constexpr StoredField kLevelLrzValid[] = {
    FIELD(LevelLayout, lrz_valid, yes_no),
};
constexpr StoredField kLevelLrz[] = {
    FIELD(LevelLayout, padding_292,     unused),
    FIELD(LevelLayout, lrz_offset,      offset),
    FIELD(LevelLayout, lrz_size,        bytes),
    FIELD(LevelLayout, lrz_pitch,       bytes),
    FIELD(LevelLayout, padding_316,     unused),
    FIELD(LevelLayout, lrz_slice_pitch, bytes),
    FIELD(LevelLayout, lrz_width,       elements),
    FIELD(LevelLayout, lrz_height,      rows),
};
constexpr StoredField kLevelLrzFcValid[] = {
    FIELD(LevelLayout, lrz_fc_valid, yes_no),
};
constexpr StoredField kLevelLrzFc[] = {
    FIELD(LevelLayout, padding_340,   unused),
    FIELD(LevelLayout, lrz_fc_offset, offset),
    FIELD(LevelLayout, lrz_fc_size,   bytes),
};
constexpr StoredField kPlaneImage[] = {
    FIELD(PlaneLayout, image_offset,       offset),
    FIELD(PlaneLayout, image_size,         bytes),
    FIELD(PlaneLayout, image_pitch,        bytes),
    FIELD(PlaneLayout, padding_20,         unused),
    FIELD(PlaneLayout, image_slice_pitch,  bytes),
    FIELD(PlaneLayout, image_element_size, bytes),
    FIELD(PlaneLayout, image_width,        elements),
    FIELD(PlaneLayout, image_height,       rows),
    FIELD(PlaneLayout, padding_44,         unused),
};
constexpr StoredField kPlaneFlagValid[] = {
    FIELD(PlaneLayout, flag_valid, yes_no),
};
constexpr StoredField kPlaneFlag[] = {
    FIELD(PlaneLayout, padding_52,       unused),
    FIELD(PlaneLayout, flag_offset,      offset),
    FIELD(PlaneLayout, flag_size,        bytes),
    FIELD(PlaneLayout, flag_pitch,       bytes),
    FIELD(PlaneLayout, padding_76,       unused),
    FIELD(PlaneLayout, flag_slice_pitch, bytes),
};

// ---- SurfaceMetadata ----

constexpr StoredField kSurfaceHead[] = {
    FIELD(SurfaceMetadata, guid,            identifier),
    FIELD(SurfaceMetadata, total_size,      total_size),
    FIELD(SurfaceMetadata, alignment,       alignment),
    FIELD(SurfaceMetadata, format,          format),
    FIELD(SurfaceMetadata, samples,         samples),
    FIELD(SurfaceMetadata, unread_28,       unused),
    FIELD(SurfaceMetadata, linear_fallback, yes_no),
    FIELD(SurfaceMetadata, levels,          levels),
};
constexpr StoredField kSurfaceTail[] = {
    FIELD(SurfaceMetadata, device_uuid, device_uuid),
    FIELD(SurfaceMetadata, driver_uuid, driver_uuid),
    FIELD(SurfaceMetadata, size,        fixed_size,   KORVEL_SURFACE_BYTES),
    FIELD(SurfaceMetadata, signature,   signature, KORVEL_SURFACE_SIGNATURE),
};
constexpr StoredField kSurfaceLevelHead[] = {
    FIELD(SurfaceLevel, slices, slices),
    FIELD(SurfaceLevel, tiled,  tiling),
    FIELD(SurfaceLevel, size,   bytes),
    FIELD(SurfaceLevel, planes, planes),
};
constexpr StoredField kSurfaceLrzValid[] = {
    FIELD(SurfaceLevel, lrz_valid, yes_no),
};
constexpr StoredField kSurfaceLrz[] = {
    FIELD(SurfaceLevel, lrz_offset,      offset),
    FIELD(SurfaceLevel, lrz_size,        bytes),
    FIELD(SurfaceLevel, lrz_pitch,       bytes),
    FIELD(SurfaceLevel, lrz_slice_pitch, bytes),
    FIELD(SurfaceLevel, lrz_width,       elements),
    FIELD(SurfaceLevel, lrz_height,      rows),
};
constexpr StoredField kSurfaceLrzFcValid[] = {
    FIELD(SurfaceLevel, lrz_fc_valid, yes_no),
};
constexpr StoredField kSurfaceLrzFc[] = {
    FIELD(SurfaceLevel, lrz_fc_offset, offset),
    FIELD(SurfaceLevel, lrz_fc_size,   bytes),
};
constexpr StoredField kSurfaceLevelTail[] = {
    FIELD(SurfaceLevel, unread_320, unused),
};
constexpr StoredField kSurfaceImage[] = {
    FIELD(SurfacePlane, image_offset,       offset),
    FIELD(SurfacePlane, image_size,         bytes),
    FIELD(SurfacePlane, image_pitch,        bytes),
    FIELD(SurfacePlane, image_slice_pitch,  bytes),
    FIELD(SurfacePlane, image_element_size, bytes),
    FIELD(SurfacePlane, image_width,        elements),
    FIELD(SurfacePlane, image_height,       rows),
    FIELD(SurfacePlane, actual_width,       elements),
    FIELD(SurfacePlane, actual_height,      rows),
};
constexpr StoredField kSurfaceFlagValid[] = {
    FIELD(SurfacePlane, flag_valid, yes_no),
};
constexpr StoredField kSurfaceFlag[] = {
    FIELD(SurfacePlane, flag_offset,      offset),
    FIELD(SurfacePlane, flag_size,        bytes),
    FIELD(SurfacePlane, flag_pitch,       bytes),
    FIELD(SurfacePlane, flag_slice_pitch, bytes),
};
// clang-format on

#undef FIELD

constexpr bool is_gapless(uint32_t& end, FieldList fields) {
  for (const StoredField& field : fields) {
    if (field.offset != end) return false;
    end += field.size;
  }
  return true;
}

// Every byte of a structure stands in exactly one field, in order.
constexpr bool is_complete(const RecordFields& record, uint32_t record_bytes) {
  uint32_t end = 0;
  if (!is_gapless(end, record.head) || end != record.levels_offset) return false;
  end += KORVEL_MAX_LEVELS * record.level_bytes;
  if (!is_gapless(end, record.tail) || end != record_bytes) return false;

  end = 0;
  if (!is_gapless(end, record.level_head) || end != record.planes_offset) return false;
  end += KORVEL_MAX_PLANES * record.plane_bytes;
  for (const FieldList& part : {record.lrz_valid, record.lrz_buffer, record.lrz_fc_valid,
                                record.lrz_fc_buffer, record.level_tail}) {
    if (!is_gapless(end, part)) return false;
  }
  if (end != record.level_bytes) return false;

  end = 0;
  return is_gapless(end, record.image) && is_gapless(end, record.flag_valid) &&
         is_gapless(end, record.flag_buffer) && end == record.plane_bytes;
}

constexpr RecordFields kLayout = {
    .head = kLayoutHead,
    .level_head = kLevelHead,
    .image = kPlaneImage,
    .flag_valid = kPlaneFlagValid,
    .flag_buffer = kPlaneFlag,
    .lrz_valid = kLevelLrzValid,
    .lrz_buffer = kLevelLrz,
    .lrz_fc_valid = kLevelLrzFcValid,
    .lrz_fc_buffer = kLevelLrzFc,
    .level_tail = {},
    .tail = kLayoutTail,
    .levels_word = offsetof(MemoryLayout, levels),
    .planes_word = offsetof(LevelLayout, planes),
    .flag_valid_word = offsetof(PlaneLayout, flag_valid),
    .lrz_valid_word = offsetof(LevelLayout, lrz_valid),
    .lrz_fc_valid_word = offsetof(LevelLayout, lrz_fc_valid),
    .size_word = offsetof(MemoryLayout, size),
    .only_size = 0,
    .levels_offset = offsetof(MemoryLayout, level),
    .level_bytes = sizeof(LevelLayout),
    .planes_offset = offsetof(LevelLayout, plane),
    .plane_bytes = sizeof(PlaneLayout),
};
static_assert(is_complete(kLayout, sizeof(MemoryLayout)));

constexpr RecordFields kSurface = {
    .head = kSurfaceHead,
    .level_head = kSurfaceLevelHead,
    .image = kSurfaceImage,
    .flag_valid = kSurfaceFlagValid,
    .flag_buffer = kSurfaceFlag,
    .lrz_valid = kSurfaceLrzValid,
    .lrz_buffer = kSurfaceLrz,
    .lrz_fc_valid = kSurfaceLrzFcValid,
    .lrz_fc_buffer = kSurfaceLrzFc,
    .level_tail = kSurfaceLevelTail,
    .tail = kSurfaceTail,
    .levels_word = offsetof(SurfaceMetadata, levels),
    .planes_word = offsetof(SurfaceLevel, planes),
    .flag_valid_word = offsetof(SurfacePlane, flag_valid),
    .lrz_valid_word = offsetof(SurfaceLevel, lrz_valid),
    .lrz_fc_valid_word = offsetof(SurfaceLevel, lrz_fc_valid),
    .size_word = offsetof(SurfaceMetadata, size),
    .only_size = KORVEL_SURFACE_BYTES,
    .levels_offset = offsetof(SurfaceMetadata, level),
    .level_bytes = sizeof(SurfaceLevel),
    .planes_offset = offsetof(SurfaceLevel, plane),
    .plane_bytes = sizeof(SurfacePlane),
};
static_assert(is_complete(kSurface, sizeof(SurfaceMetadata)));

}  // namespace

uint64_t field_number(const StoredField& field, const unsigned char* bytes) {
  uint64_t number = 0;
  std::memcpy(&number, bytes, std::min<std::size_t>(field.size, sizeof number));
  return number;
}

constinit const FieldList kBlobHeaderFields = kHeader;
constinit const RecordFields kLayoutFields = kLayout;
constinit const RecordFields kSurfaceFields = kSurface;

}  // namespace tool
