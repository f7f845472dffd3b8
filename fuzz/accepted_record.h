// What an accepted record promises its reader: counts within the format's limits, and buffers that
// lie inside the surface however exactly one calculates.
#pragma once

#include <cstdint>

#include "fuzz/broken_property.h"
#include "fuzz/exact.h"
#include "fuzz/record_kind.h"

namespace fuzz {

inline void require_inside(const StoredBuffer& buffer, uint64_t surface_bytes) {
  REQUIRE(end_of(buffer) <= surface_bytes);
}

template <typename Plane>
void require_plane_inside(const Plane& plane, uint32_t slices, uint64_t surface_bytes) {
  require_inside({plane.image_offset, plane.image_size, plane.image_slice_pitch, slices},
                 surface_bytes);
  REQUIRE(plane.flag_valid <= 1);
  if (plane.flag_valid == 0) return;
  require_inside({plane.flag_offset, plane.flag_size, plane.flag_slice_pitch, slices},
                 surface_bytes);
}

template <typename Level>
void require_level_inside(const Level& level, uint64_t surface_bytes) {
  for (uint32_t p = 0; p < level.planes; ++p) {
    require_plane_inside(level.plane[p], level.slices, surface_bytes);
  }
  if (level.lrz_valid == 0) return;
  require_inside({level.lrz_offset, level.lrz_size, level.lrz_slice_pitch, level.slices},
                 surface_bytes);
  require_inside({level.lrz_fc_offset, level.lrz_fc_size, 0, 1}, surface_bytes);
}

template <typename Kind>
void require_accepted_record(const typename Kind::Record& record) {
  REQUIRE(record.levels >= 1 && record.levels <= KORVEL_MAX_LEVELS);
  const uint64_t bound = Kind::bound(record);
  for (uint32_t l = 0; l < record.levels; ++l) {
    const typename Kind::Level& level = record.level[l];
    REQUIRE(level.slices >= 1 && level.slices <= KORVEL_MAX_SLICES);
    REQUIRE(level.planes >= 1 && level.planes <= KORVEL_MAX_PLANES);
    REQUIRE(level.tiled <= 1 && level.lrz_valid <= 1 && level.lrz_fc_valid == level.lrz_valid);
    REQUIRE(level.size >= 1 && level.size <= record.total_size);
    if (Kind::bound_is_exact(bound)) require_level_inside(level, bound);
  }
}

}  // namespace fuzz
