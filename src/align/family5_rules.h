// Widths and heights on family 5.
#pragma once

#include <cstdint>

#include "align/alignment_request.h"
#include "align/linear_width.h"
#include "align/tile_size.h"
#include "formats/extent.h"
#include "formats/format_traits.h"
#include "identify/chip_row.h"
#include "platform/division.h"
#include "platform/rounding.h"

namespace korvel {

inline constexpr uint32_t kWidthStepFamily5_el = 64;

// Every width takes at least one step.
constexpr uint32_t stepped_width_el_family5(uint32_t width_el) {
  return width_el == 0 ? kWidthStepFamily5_el : round_up_pot(width_el, kWidthStepFamily5_el);
}

// Elements of 4 bytes and more take whole steps behind whole tiles, smaller ones in front of them.
constexpr bool steps_behind_tiles_family5(uint32_t element_bytes) {
  return element_bytes >= 4;
}

constexpr uint32_t width_before_tiles_el_family5(uint32_t width_el, uint32_t element_bytes) {
  return steps_behind_tiles_family5(element_bytes) ? width_el : stepped_width_el_family5(width_el);
}

// Elements of other sizes are not rounded to tiles.
constexpr bool has_tile_family5(uint32_t element_bytes) {
  return is_power_of_two_or_zero(element_bytes) && element_bytes <= kLargestTileElement_bytes;
}

// Whole tiles, rounded up in bytes; a plane without elements faults.
constexpr uint32_t tiled_width_el_family5(uint32_t width_el, uint32_t element_bytes,
                                          TileVariant variant) {
  const uint32_t row_bytes = width_before_tiles_el_family5(width_el, element_bytes) * element_bytes;
  const bool has_tile = has_tile_family5(element_bytes);
  const uint32_t tile_row_bytes = tile_size(element_bytes, variant).width * element_bytes;
  return divide(has_tile ? round_up_pot(row_bytes, tile_row_bytes) : row_bytes, element_bytes);
}

constexpr uint32_t width_behind_tiles_el_family5(uint32_t tiled_el, uint32_t element_bytes) {
  return steps_behind_tiles_family5(element_bytes) ? stepped_width_el_family5(tiled_el) : tiled_el;
}

constexpr uint32_t align_height_family5(uint32_t rows, const AlignmentRequest& request,
                                        uint32_t plane) {
  if (!is_tiled(request)) {
    return has_rule(request.format, kRuleWhole64Rows) ? round_up_pot(rows, 64U) : rows;
  }
  const TileVariant variant = tile_variant_family5(request.format);
  return round_up_pot(rows, tile_size(element_bytes(request, plane), variant).height);
}

constexpr Extent<Elements> align_family5(const ChipRow& chip, Extent<Elements> size,
                                         const AlignmentRequest& request, uint32_t plane) {
  const uint32_t bytes = element_bytes(request, plane);
  const uint32_t height = align_height_family5(size.height, request, plane);
  if (is_tiled(request)) {
    const TileVariant variant = tile_variant_family5(request.format);
    const uint32_t tiled_el = tiled_width_el_family5(size.width, bytes, variant);
    return {width_behind_tiles_el_family5(tiled_el, bytes), height};
  }
  const uint32_t base_el = stepped_width_el_family5(size.width);
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
    return {tiled_width_el_family5(size.width, bytes, variant), height};
  }
  const bool may_become_tiled = request.tiling_allowed != 0;
  const uint32_t base_el =
      linear_base_width_el(size.width, request, kLinearRulesFamily5, may_become_tiled);
  return {finished_linear_width_el(chip, request, base_el, bytes), height};
}

}  // namespace korvel
