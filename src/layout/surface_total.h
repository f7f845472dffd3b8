// The last words of a laid-out record: the extra buffer and the total.
#pragma once

#include <cstdint>

#include <korvel_utils.h>
#include "layout/surface.h"
#include "platform/rounding.h"

namespace korvel {

// `surface_bytes`: where the planes end. The record's alignment and size are set.
inline void finish_surface(const Surface& surface, uint64_t surface_bytes, MemoryLayout& record) {
  record.extra_valid = surface.extra ? 1 : 0;
  if (surface.extra) [[unlikely]] {
    record.extra_slice_pitch = KORVEL_EXTRA_SLICE_BYTES;
    record.extra_offset = surface_bytes;
    record.extra_size = times_depth(surface, KORVEL_EXTRA_SLICE_BYTES);
    surface_bytes += record.extra_size;
  }
  record.extended = surface.extended ? 1 : 0;
  record.total_size = round_up<uint64_t>(surface_bytes, record.alignment) + record.size;
}

}  // namespace korvel
