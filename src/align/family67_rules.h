// Widths and heights on families 6 and 7. The two differ only in the pitch limit
// (limited_pitch_el).
#pragma once

#include <algorithm>
#include <cstdint>

#include "align/alignment_request.h"
#include "align/linear_width.h"
#include "align/tile_size.h"
#include "formats/extent.h"
#include "formats/format_traits.h"
#include "identify/chip_row.h"
#include "platform/rounding.h"

namespace korvel {

// The tile of the format that describes the plane.
constexpr Extent<Elements> plane_tile_family67(const AlignmentRequest& request, uint32_t plane) {
  const FormatTraits& format = plane_traits(request.format, plane);
  return tile_size(format.bytes * request.samples, tile_variant_family67(format));
}

// In whole tiles, which are powers of two; neither side is 0.
constexpr Extent<Elements> whole_tiles(Extent<Elements> size, Extent<Elements> tile) {
  return {round_up_pot(size.width, tile.width), round_up_pot(size.height, tile.height)};
}

// At least one row: a count that wrapped below 0 is as good as none.
constexpr uint32_t at_least_one_row(uint32_t rows) {
  return static_cast<uint32_t>(std::max(static_cast<int32_t>(rows), 1));
}

// The width of whole tiles of blocks: counted in texels, and back in blocks. Whole tiles of elements,
// but for products that wrap.
constexpr uint32_t whole_tile_width_el(uint32_t width_el, uint32_t tile_el, uint32_t block_texels) {
  const uint32_t texels = std::max(width_el * block_texels, 1U);
  return round_up_to_multiple(texels, tile_el * block_texels) / block_texels;
}

// The same for rows, in signed numbers: texel rows that wrap below 0 take one tile, and a sum that
// wraps below 0 stays negative when it is turned back into rows of blocks.
constexpr uint32_t whole_tile_rows(uint32_t rows, uint32_t tile_rows, uint32_t block_texels) {
  const uint32_t texel_rows = at_least_one_row(rows * block_texels);
  const auto whole =
      static_cast<int32_t>(round_up_to_multiple(texel_rows, tile_rows * block_texels));
  return static_cast<uint32_t>(whole / static_cast<int32_t>(block_texels));
}

// The blocks of a plane are those of its format.
constexpr Extent<Elements> align_tiled_family67(Extent<Elements> size,
                                                const AlignmentRequest& request, uint32_t plane) {
  const Extent<Elements> tile = plane_tile_family67(request, plane);
  if (!has_rule(request.format, kRuleBlockFamily67)) {
    return whole_tiles({std::max(size.width, 1U), at_least_one_row(size.height)}, tile);
  }
  const SmallExtent<Texels> block = request.format.block;
  return {whole_tile_width_el(size.width, tile.width, block.width),
          whole_tile_rows(size.height, tile.height, block.height)};
}

constexpr uint32_t linear_rows_family67(uint32_t rows, const AlignmentRequest& request) {
  if (has_rule(request.format, kRuleWhole64Rows)) return round_up_pot(rows, 64U);
  return whole_tile_rows(rows, 1, request.format.block.height);
}

constexpr Extent<Elements> align_linear_family67(const ChipRow& chip, Extent<Elements> size,
                                                 const AlignmentRequest& request, uint32_t plane) {
  const bool may_become_tiled = request.tiling_allowed == 1;  // family 5 takes any value but 0
  const uint32_t base_el =
      linear_base_width_el(size.width, request, kLinearRulesFamily67, may_become_tiled);
  return {finished_linear_width_el(chip, request, base_el, element_bytes(request, plane)),
          linear_rows_family67(size.height, request)};
}

constexpr Extent<Elements> padded_extent(Extent<Elements> size, const AlignmentRequest& request) {
  return {size.width + request.padding.width, size.height + request.padding.height};
}

constexpr Extent<Elements> align_family67(const ChipRow& chip, Extent<Elements> size,
                                          const AlignmentRequest& request, uint32_t plane) {
  const Extent<Elements> padded = padded_extent(size, request);
  return is_tiled(request) ? align_tiled_family67(padded, request, plane)
                           : align_linear_family67(chip, padded, request, plane);
}

}  // namespace korvel
