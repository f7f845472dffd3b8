// What every alignment entry checks before its rules run.
#pragma once

#include <cstdint>

#include "align/alignment_request.h"
#include "identify/gpu_identity.h"
#include "platform/log.h"

namespace korvel {

inline constexpr Extent kExtentOfNegativeSize = {1, 1};

inline bool is_negative(int32_t width, int32_t height) {
  return (width | height) < 0;
}

[[gnu::cold]] inline void log_negative_size(const char* function, int32_t width, int32_t height) {
  KORVEL_LOG(function, "Invalid width or height: W = %d, H = %d", width, height);
}

[[gnu::cold]] inline void log_unknown_chip(const char* function) {
  KORVEL_LOG(function, "Unknown Chip ID %d", static_cast<int32_t>(reported_chip_id()));
}

// Sizes that pass go to the rules, as rules(size); `function` is the name the messages carry.
template <typename Rules>
[[gnu::always_inline]] inline Extent checked_extent(const char* function, const ChipRow& chip,
                                                    int32_t width, int32_t height, Rules rules) {
  if (is_negative(width, height)) [[unlikely]] {
    log_negative_size(function, width, height);
    return kExtentOfNegativeSize;
  }
  const Extent size = {static_cast<uint32_t>(width), static_cast<uint32_t>(height)};
  if (!chip.supported) [[unlikely]] {
    log_unknown_chip(function);
    return size;
  }
  return rules(size);
}

inline void store_extent(Extent extent, uint32_t* out_width, uint32_t* out_height) {
  *out_width = extent.width;
  *out_height = extent.height;
}

}  // namespace korvel
