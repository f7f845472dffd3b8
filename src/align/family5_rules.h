// Widths and heights on family 5.
#pragma once

#include <cstdint>

#include "align/alignment_request.h"
#include "align/linear_width.h"
#include "formats/extent.h"
#include "formats/format_traits.h"
#include "identify/chip_row.h"
#include "platform/division.h"
#include "platform/rounding.h"

namespace korvel {

inline constexpr uint32_t kFamily5WidthStep_el = 64;

// Every width takes at least one step.
constexpr uint32_t family5_stepped_width_el(uint32_t width_el) {
  return width_el == 0 ? kFamily5WidthStep_el : round_up_pot(width_el, kFamily5WidthStep_el);
}

// A row of whole tiles. Elements of other sizes than these are not rounded.
constexpr uint32_t tile_row_bytes(uint32_t row_bytes, uint32_t element_bytes, TileVariant variant) {
  switch (element_bytes) {
    case 1: return round_up_pot(row_bytes, variant == kTileWideByte ? 256U : 128U);
    case 2: return round_up_pot(row_bytes, variant == kTileTall ? 128U : 256U);
    case 4:
    case 8:
    case 16:
    case 32: return round_up_pot(row_bytes, 256U);
    case 64: return round_up_pot(row_bytes, 512U);
    default: return row_bytes;
  }
}

// Small elements count from the stepped width; a plane without elements faults.
constexpr uint32_t family5_tiled_width_el(uint32_t width_el, uint32_t element_bytes,
                                          TileVariant variant) {
  const uint32_t from_el = element_bytes >= 4 ? width_el : family5_stepped_width_el(width_el);
  return divide(tile_row_bytes(from_el * element_bytes, element_bytes, variant), element_bytes);
}

constexpr uint32_t family5_tile_rows(uint32_t element_bytes, TileVariant variant) {
  if (element_bytes == 2 && variant == kTileTall) return 32;
  if (element_bytes == 1 && variant == kTileWideByte) return 16;
  return element_bytes > 1 ? 16 : 32;
}

constexpr uint32_t align_height_family5(uint32_t rows, const AlignmentRequest& request,
                                        uint32_t plane) {
  if (!is_tiled(request)) {
    return has_rule(request.format, kRuleWhole64Rows) ? round_up_pot(rows, 64U) : rows;
  }
  const TileVariant variant = tile_variant_family5(request.format);
  return round_up_pot(rows, family5_tile_rows(element_bytes(request, plane), variant));
}

constexpr Extent<Elements> align_family5(const ChipRow& chip, Extent<Elements> size,
                                         const AlignmentRequest& request, uint32_t plane) {
  const uint32_t bytes = element_bytes(request, plane);
  const uint32_t height = align_height_family5(size.height, request, plane);
  if (is_tiled(request)) {
    const TileVariant variant = tile_variant_family5(request.format);
    const uint32_t tiled_el = family5_tiled_width_el(size.width, bytes, variant);
    return {bytes >= 4 ? family5_stepped_width_el(tiled_el) : tiled_el, height};
  }
  const uint32_t base_el = family5_stepped_width_el(size.width);
  return {finished_linear_width_el(chip, request, base_el, bytes), height};
}

// Tiled widths are not rounded to steps once more; linear ones start from a base of their own.
constexpr Extent<Elements> align_minimally_family5(const ChipRow& chip, Extent<Elements> size,
                                                   const AlignmentRequest& request,
                                                   uint32_t plane) {
  const uint32_t bytes = element_bytes(request, plane);
  const uint32_t height = align_height_family5(size.height, request, plane);
  if (is_tiled(request)) {
    const TileVariant variant = tile_variant_family5(request.format);
    return {family5_tiled_width_el(size.width, bytes, variant), height};
  }
  const bool may_become_tiled = request.tiling_allowed != 0;
  const uint32_t base_el =
      linear_base_width_el(size.width, request, kLinearRulesFamily5, may_become_tiled);
  return {finished_linear_width_el(chip, request, base_el, bytes), height};
}

}  // namespace korvel
