// The sample counts that a layout can have.
#pragma once

#include <cstdint>

namespace korvel {

inline constexpr uint32_t kMostSamples = 8;

// 1, 2, 4 or 8.
constexpr bool is_layout_sample_count(uint32_t samples) {
  constexpr uint32_t kCounts = 1U << 1 | 1U << 2 | 1U << 4 | 1U << 8;
  return samples <= kMostSamples && (kCounts >> samples & 1) != 0;
}

}  // namespace korvel
