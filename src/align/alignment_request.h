// What the alignment rules are asked about the planes of a surface.
#pragma once

#include <korvel_utils.h>

#include <cstdint>

#include "formats/extent.h"
#include "formats/format_traits.h"

namespace korvel {

struct AlignmentRequest {
  const FormatTraits& format;
  uint32_t samples;
  uint32_t tiling_mode;          // 1 tiled, any other value linear
  int32_t min_padded_row_bytes;  // linear rows of at most this many bytes are not padded
  uint32_t tiling_allowed = 0;   // the linear surface may become tiled later
  // A linear width goes up in steps of linear_step_bytes() / step_divisor elements. The divisor is the
  // bytes of an element; with 1, a step of 64 bytes counts as 64 elements.
  uint32_t step_divisor = 1;
  Extent<Elements> padding = {0, 0};  // added before the alignment, families 6 and 7
};

// The request of the full alignment.
constexpr AlignmentRequest alignment_request(FormatId format, uint32_t samples,
                                             uint32_t tiling_mode, int32_t min_padded_row_bytes) {
  return {
      .format = format_traits(format),
      .samples = samples,
      .tiling_mode = tiling_mode,
      .min_padded_row_bytes = min_padded_row_bytes,
  };
}

constexpr bool is_tiled(const AlignmentRequest& request) {
  return request.tiling_mode == KORVEL_TILING_TILED;
}

// Bytes of an element, with all its samples when tiled.
constexpr uint32_t element_bytes(const AlignmentRequest& request, uint32_t plane) {
  const uint32_t bytes = plane_bytes(request.format, plane);
  return is_tiled(request) ? bytes * request.samples : bytes;
}

}  // namespace korvel
