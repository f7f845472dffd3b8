// Stored records of both kinds that pass every check of their validator.
#pragma once

#include <cstdint>
#include <cstring>

#include <korvel_utils.h>
#include "tests/records/buffers.h"
#include "tests/records/record_kinds.h"
#include "tests/records/uuids.h"

namespace records {

// The buffers of the usual record. The validators look at each buffer alone, so that all planes of
// all levels share these bytes, which end inside the surface for up to four slices.

inline constexpr Image kUsualImage = {
    .offset_bytes = 0x2000,       // four slices end at 0x2000 + 3 x 0x2000 + 0x1000 = 0x9000
    .size_bytes = 0x1000,         // 16 rows x 256 bytes
    .pitch_bytes = 256,           // 64 elements x 4 bytes
    .slice_pitch_bytes = 0x2000,  // more than the 0x1000 bytes of a slice
    .element_bytes = 4,
    .width_el = 64,
    .height_rows = 16,
    .actual_width_el = 60,  // within the 64 x 16 that are allocated
    .actual_height_rows = 15};

inline constexpr FlagBuffer kUsualFlags = {
    .offset_bytes = 0x8000,  // four slices end at 0x8000 + 3 x 0x1000 + 0x1000 = 0xC000
    .size_bytes = 0x1000,
    .pitch_bytes = 64,
    .slice_pitch_bytes = 0x1000};

inline constexpr DepthBuffers kUsualDepth = {
    .offset_bytes = 0x1000,  // four slices end at 0x1000 + 3 x 0x1000 + 0x800 = 0x4800
    .size_bytes = 0x800,     // 32 rows x 64 bytes
    .pitch_bytes = 64,
    .slice_pitch_bytes = 0x1000,  // more than the 0x800 bytes of a slice
    .width_el = 60,               // of the 64 that the pitch holds
    .height_rows = 32,
    .fast_clear_offset_bytes = 0,
    .fast_clear_size_bytes = 512};

struct Shape {
  uint32_t levels = 1;
  uint32_t first_linear_level = KORVEL_MAX_LEVELS;  // tiled up to here, linear from here on
  uint32_t slices = 1;
  uint32_t planes = KORVEL_MAX_PLANES;
  bool spare_planes = true;  // fill those beyond `planes` too: a changed count finds valid ones
  bool flags = true;         // in the tiled levels
  bool lrz = true;           // depth buffers, and fast-clear buffers beside them
  uint64_t surface_bytes = 0x100000;
  uint64_t level_bytes = 0x4000;
  uint32_t format = 28;
  uint32_t samples = 4;
  uint64_t guid = 0x100000000;  // its lower half is 0: all 64 bits count
  Uuids uuids = make_uuids({.family_id = 6, .model_code = 7, .rev_id = 8});
  Image image = kUsualImage;
  FlagBuffer flag_buffer = kUsualFlags;
  DepthBuffers depth = kUsualDepth;
};

inline void put_guid(MemoryLayout&, uint64_t) {}  // it has none
inline void put_guid(SurfaceMetadata& record, uint64_t guid) {
  record.guid = guid;
}

// The words by which a record is taken for one at all, and for one of this machine.
template <typename Kind>
void put_identity(typename Kind::Record& record, const Uuids& uuids) {
  record.signature = Kind::kSignature;
  record.size = Kind::kBytes;
  std::memcpy(record.device_uuid, uuids.device, sizeof record.device_uuid);
  std::memcpy(record.driver_uuid, uuids.driver, sizeof record.driver_uuid);
}

// The words of absent flag buffers and depth buffers are stored as well: a changed valid bit finds
// valid ones.
template <typename Level>
void put_valid_level(Level& level, const Shape& shape, bool tiled) {
  level.slices = shape.slices;
  level.tiled = tiled ? KORVEL_TILING_TILED : KORVEL_TILING_LINEAR;
  level.size = shape.level_bytes;
  level.planes = shape.planes;
  const uint32_t filled_planes = shape.spare_planes ? KORVEL_MAX_PLANES : shape.planes;
  for (uint32_t p = 0; p < filled_planes; ++p) {
    put_image(level.plane[p], shape.image);
    level.plane[p].flag_valid = tiled && shape.flags ? 1 : 0;
    put_flag_words(level.plane[p], shape.flag_buffer);
  }
  level.lrz_valid = level.lrz_fc_valid = shape.lrz ? 1 : 0;
  put_depth_words(level, shape.depth);
}

// Into a record whose other words, which no check reads, stay as they are.
template <typename Kind>
void put_valid_record(typename Kind::Record& record, const Shape& shape) {
  put_identity<Kind>(record, shape.uuids);
  put_guid(record, shape.guid);
  record.total_size = Kind::kBytes + shape.surface_bytes;
  record.alignment = 4096;
  record.format = shape.format;
  record.samples = shape.samples;
  record.linear_fallback = shape.first_linear_level < shape.levels ? 1 : 0;
  record.levels = shape.levels;
  for (uint32_t l = 0; l < shape.levels; ++l) {
    put_valid_level(record.level[l], shape, l < shape.first_linear_level);
  }
}

template <typename Kind>
typename Kind::Record valid_record(const Shape& shape) {
  typename Kind::Record record = {};
  put_valid_record<Kind>(record, shape);
  return record;
}

}  // namespace records
