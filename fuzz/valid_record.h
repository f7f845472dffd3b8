// A stored record that passes every check, in the shape that the input draws.
#pragma once

#include <cstdint>
#include <cstring>

#include "fuzz/input_bytes.h"
#include "fuzz/record_kind.h"

namespace fuzz {

struct RecordShape {
  uint32_t levels;  // 1 to 15
  uint32_t slices;
  uint32_t planes;
  uint32_t first_linear_level;  // linear from here on
  bool lrz;
  uint64_t surface_bytes;
};

inline RecordShape draw_shape(InputBytes& input) {
  constexpr uint64_t kSurfaceBytes[] = {0x100000, 0x7FFFF000, uint64_t{1} << 32, uint64_t{1} << 40};
  const uint32_t size = input.u8();
  const uint32_t counts = input.u8();
  return {.levels = 1 + size % KORVEL_MAX_LEVELS,
          .slices = 1 + counts % 4,
          .planes = 1 + (counts >> 2) % KORVEL_MAX_PLANES,
          .first_linear_level = counts >> 4,
          .lrz = (size & 0x10) != 0,
          .surface_bytes = kSurfaceBytes[size >= 0xC0 ? size % 4 : 0]};
}

inline void set_actual_size(PlaneLayout&) {}
inline void set_actual_size(SurfacePlane& plane) {
  plane.actual_width = 60;
  plane.actual_height = 15;
}

template <typename Plane>
void fill_plane(Plane& plane, uint32_t tiled) {
  plane.image_offset = 0x2000;
  plane.image_size = 0x1000;
  plane.image_pitch = 256;
  plane.image_slice_pitch = 0x2000;
  plane.image_element_size = 4;
  plane.image_width = 64;
  plane.image_height = 16;
  set_actual_size(plane);
  plane.flag_valid = tiled;
  plane.flag_offset = 0x8000;
  plane.flag_size = 0x1000;
  plane.flag_pitch = 64;
  plane.flag_slice_pitch = 0x1000;
}

template <typename Level>
void fill_level(Level& level, const RecordShape& shape, uint32_t tiled) {
  level.slices = shape.slices;
  level.tiled = tiled;
  level.size = 0x4000;
  level.planes = shape.planes;
  level.lrz_valid = level.lrz_fc_valid = shape.lrz ? 1 : 0;
  level.lrz_offset = 0x1000;
  level.lrz_size = 0x800;
  level.lrz_pitch = 64;
  level.lrz_slice_pitch = 0x1000;
  level.lrz_width = 60;
  level.lrz_height = 32;
  level.lrz_fc_size = 512;
  for (auto& plane : level.plane) fill_plane(plane, tiled);
}

inline void set_guid(MemoryLayout&) {}
inline void set_guid(SurfaceMetadata& record) {
  record.guid = 0x100000000;
}

// The words by which a record is taken for one at all.
template <typename Kind>
void fill_identity(typename Kind::Record& record) {
  record.signature = Kind::kSignature;
  record.size = Kind::kBytes;
  std::memcpy(record.device_uuid, usual_uuids().device, sizeof record.device_uuid);
  std::memcpy(record.driver_uuid, usual_uuids().driver, sizeof record.driver_uuid);
}

template <typename Kind>
typename Kind::Record valid_record(const RecordShape& shape) {
  typename Kind::Record record = {};
  fill_identity<Kind>(record);
  set_guid(record);
  record.total_size = Kind::kBytes + shape.surface_bytes;
  record.alignment = 4096;
  record.format = 28;
  record.samples = 4;
  record.levels = shape.levels;
  record.linear_fallback = shape.first_linear_level < shape.levels ? 1 : 0;
  for (uint32_t l = 0; l < shape.levels; ++l) {
    fill_level(record.level[l], shape, l < shape.first_linear_level ? 1 : 0);
  }
  return record;
}

}  // namespace fuzz
