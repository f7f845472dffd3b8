// The record's own limits: what its words can hold, and how many entries.
#pragma once

#include <korvel_utils.h>

#include <cstdint>

#include "platform/log.h"

namespace korvel {

inline constexpr uint32_t kMostSamples = 8;

// The sample counts that a layout can have: 1, 2, 4 or 8.
constexpr bool is_layout_sample_count(uint32_t samples) {
  constexpr uint32_t kCounts = 1U << 1 | 1U << 2 | 1U << 4 | 1U << 8;
  return samples <= kMostSamples && (kCounts >> samples & 1) != 0;
}

inline bool planes_fit(const char* function, uint32_t planes) {
  if (planes <= KORVEL_MAX_PLANES) {
    return true;
  }
  KORVEL_LOG(function, "Invalid plane count %u", planes);
  return false;
}

inline bool levels_fit(const char* function, uint32_t levels) {
  if (levels <= KORVEL_MAX_LEVELS) {
    return true;
  }
  KORVEL_LOG(function, "Invalid level count %u", levels);
  return false;
}

}  // namespace korvel
