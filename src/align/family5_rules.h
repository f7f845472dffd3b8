// Widths and heights on family 5.
#pragma once

#include <cstdint>

#include "align/alignment_request.h"
#include "align/linear_base_width.h"
#include "align/linear_pitch.h"
#include "formats/format_traits.h"
#include "identify/chip_row.h"
#include "platform/division.h"
#include "platform/rounding.h"

namespace korvel {

inline constexpr uint32_t kFamily5PitchStep = 64;  // elements

// Every width takes at least one step.
constexpr uint32_t family5_stepped_width(uint32_t width) {
  return width == 0 ? kFamily5PitchStep : round_up(width, kFamily5PitchStep);
}

// Bytes of a row of tiles. `bytes` an element, all samples; other sizes than these are not rounded.
constexpr uint32_t tile_row_bytes(uint32_t row_bytes, uint32_t bytes, const FormatTraits& format) {
  switch (bytes) {
    case 1: return round_up(row_bytes, tile_variant_family5(format) == kTileWideByte ? 256U : 128U);
    case 2: return round_up(row_bytes, tile_variant_family5(format) == kTileTall ? 128U : 256U);
    case 4:
    case 8:
    case 16:
    case 32: return round_up(row_bytes, 256U);
    case 64: return round_up(row_bytes, 512U);
    default: return row_bytes;
  }
}

// Whole tiles. Small elements count from the stepped width; a plane without elements faults.
constexpr uint32_t family5_tiled_width(uint32_t width, uint32_t bytes, const FormatTraits& format) {
  const uint32_t elements = bytes >= 4 ? width : family5_stepped_width(width);
  return divide(tile_row_bytes(elements * bytes, bytes, format), bytes);
}

constexpr uint32_t align_width_family5(const ChipRow& chip, uint32_t width,
                                       const AlignmentRequest& request, uint32_t plane) {
  const uint32_t bytes = element_bytes(request, plane);
  if (is_tiled(request)) {
    const uint32_t tiled = family5_tiled_width(width, bytes, request.format);
    return bytes >= 4 ? family5_stepped_width(tiled) : tiled;
  }
  return finish_linear_width(chip, request, family5_stepped_width(width), bytes);
}

constexpr uint32_t align_height_family5(uint32_t height, const AlignmentRequest& request,
                                        uint32_t plane) {
  if (!is_tiled(request)) return takes_64_rows(request) ? round_up(height, 64U) : height;
  const uint32_t bytes = element_bytes(request, plane);
  const TileVariant variant = tile_variant_family5(request.format);
  if (bytes == 2 && variant == kTileTall) return round_up(height, 32U);
  if (bytes == 1 && variant == kTileWideByte) return round_up(height, 16U);
  return round_up(height, bytes > 1 ? 16U : 32U);
}

// Apart, so that the other families' tiled planes do not pay for its registers.
[[gnu::noinline]] constexpr Extent align_family5(const ChipRow& chip, uint32_t width,
                                                 uint32_t height, const AlignmentRequest& request,
                                                 uint32_t plane) {
  return {align_width_family5(chip, width, request, plane),
          align_height_family5(height, request, plane)};
}

// The linear width of the minimal alignment. `tiling_allowed` non-zero: it takes whole tiles.
constexpr uint32_t base_aligned_width_family5(uint32_t width, const AlignmentRequest& request,
                                              uint32_t tiling_allowed) {
  return linear_base_width(width, request, kLinearRulesFamily5, tiling_allowed != 0);
}

}  // namespace korvel
