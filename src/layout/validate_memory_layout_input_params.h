// The input check of korvel_init_memory_layout.
#pragma once

#include <korvel_utils.h>

#include <cstdint>

#include "formats/format_traits.h"
#include "layout/record_limits.h"
#include "platform/log.h"

namespace korvel {

// 0 when a description can be laid out; 0xFFFFFFFF after the message of the first failed check.
// Sizes in texels.
inline uint32_t validate_memory_layout_input_params(int32_t width, int32_t height, int32_t depth,
                                                    uint32_t format, uint32_t samples,
                                                    uint32_t tiling_mode) {
  constexpr const char* kName = "validate_memory_layout_input_params";
  if (width <= 0 || height <= 0 || depth <= 0) {
    KORVEL_LOG(kName, "Invalid width, height, or depth: W = %d, H = %d, D = %d", width, height,
               depth);
    return KORVEL_FAILURE;
  }
  if (format == kFormatUnknown || format >= kFormatCount) {
    KORVEL_LOG(kName, "Unknown Format %u", format);
    return KORVEL_FAILURE;
  }
  if (has_rule(format_traits(format), kRuleDepthStencil) && tiling_mode != KORVEL_TILING_TILED) {
    KORVEL_LOG(kName, "Invalid configuration, cannot support linear depth/stencil");
    return KORVEL_FAILURE;
  }
  if (!is_layout_sample_count(samples)) {
    KORVEL_LOG(kName, "Invalid input sample count %u", samples);
    return KORVEL_FAILURE;
  }
  return KORVEL_SUCCESS;
}

}  // namespace korvel
