// What an accepted record promises its reader, calculated in 128 bits: counts within the format's
// limits; buffers that lie inside the surface, except where its size is not what the rules see; and
// rows that fit their buffers, except where their product wraps.
#pragma once

#include <cstdint>

#include "fuzz/broken_property.h"
#include "fuzz/exact.h"
#include "fuzz/met_cases.h"
#include "fuzz/record_kind.h"
#include "fuzz/surface_bound.h"

namespace fuzz {

struct Bounds {
  Exact surface_bytes;
  Exact bound_bytes;  // what the rules hold buffers against
};

inline void require_inside(const StoredBuffer& buffer, const Bounds& bounds) {
  REQUIRE(end_of(buffer) <= bounds.bound_bytes);
  if (end_of(buffer) <= bounds.surface_bytes) return;
  REQUIRE(bounds.bound_bytes > bounds.surface_bytes);
  meet(Case::buffer_outside);
}

// `bytes` hold `count` things of `bytes_of_one` each, or the low half of the product.
inline void require_room(uint64_t bytes, uint32_t count, uint32_t bytes_of_one, Case wraps) {
  const Exact needed = Exact{count} * bytes_of_one;
  REQUIRE(needed % kTwoTo32 <= bytes);
  if (needed <= bytes) return;
  REQUIRE(needed >= kTwoTo32);
  meet(wraps);
}

// What the rules hold against an image's bytes.
inline uint32_t covered_width_el(const PlaneLayout& plane) {
  return plane.image_width;
}
inline uint32_t covered_width_el(const SurfacePlane& plane) {
  return plane.actual_width;
}
inline uint32_t covered_rows(const PlaneLayout& plane) {
  return plane.image_height;
}
inline uint32_t covered_rows(const SurfacePlane& plane) {
  return plane.actual_height;
}

template <typename Plane>
void require_accepted_plane(const Plane& plane, uint32_t slices, const Bounds& bounds) {
  require_inside({plane.image_offset, plane.image_size, plane.image_slice_pitch, slices}, bounds);
  REQUIRE(plane.image_size <= plane.image_slice_pitch);
  REQUIRE(covered_rows(plane) != 0 && covered_width_el(plane) != 0);
  REQUIRE(plane.image_width != 0 && plane.image_height != 0 && plane.image_element_size != 0);
  require_room(plane.image_size, covered_rows(plane), plane.image_pitch, Case::image_rows_wrap);
  require_room(plane.image_pitch, covered_width_el(plane), plane.image_element_size,
               Case::image_elements_wrap);
  REQUIRE(plane.flag_valid <= 1);
  if (plane.flag_valid == 0) return;
  require_inside({plane.flag_offset, plane.flag_size, plane.flag_slice_pitch, slices}, bounds);
  REQUIRE(plane.flag_size <= plane.flag_slice_pitch);
  REQUIRE(plane.flag_pitch >= 1 && plane.flag_pitch <= plane.flag_slice_pitch);
  if (bounds.bound_bytes <= bounds.surface_bytes) meet(Case::flag_buffer_inside);
}

template <typename Level>
void require_accepted_lrz(const Level& level, const Bounds& bounds) {
  require_inside({level.lrz_offset, level.lrz_size, level.lrz_slice_pitch, level.slices}, bounds);
  require_inside({level.lrz_fc_offset, level.lrz_fc_size, 0, 1}, bounds);
  REQUIRE(level.lrz_size <= level.lrz_slice_pitch);
  REQUIRE(level.lrz_width >= 1 && level.lrz_width <= level.lrz_pitch && level.lrz_height >= 1);
  require_room(level.lrz_size, level.lrz_height, level.lrz_pitch, Case::lrz_rows_wrap);
  if (bounds.bound_bytes <= bounds.surface_bytes) meet(Case::lrz_buffer_inside);
}

template <typename Kind>
void require_accepted_record(const typename Kind::Record& record) {
  REQUIRE(record.levels >= 1 && record.levels <= KORVEL_MAX_LEVELS);
  require_known_bound(record);
  const Bounds bounds = {surface_bytes_of(record), bound_of(record)};
  for (uint32_t l = 0; l < record.levels; ++l) {
    const typename Kind::Level& level = record.level[l];
    REQUIRE(level.slices >= 1 && level.slices <= KORVEL_MAX_SLICES);
    REQUIRE(level.planes >= 1 && level.planes <= KORVEL_MAX_PLANES);
    REQUIRE(level.tiled <= 1 && level.lrz_valid <= 1 && level.lrz_fc_valid == level.lrz_valid);
    REQUIRE(level.size >= 1 && level.size <= record.total_size);
    for (uint32_t p = 0; p < level.planes; ++p) {
      require_accepted_plane(level.plane[p], level.slices, bounds);
    }
    if (level.lrz_valid == 1) require_accepted_lrz(level, bounds);
  }
}

}  // namespace fuzz
