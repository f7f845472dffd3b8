// Widths and heights on families 6 and 7. The two differ only in the pitch limit (limit_pitch).
#pragma once

#include <algorithm>
#include <cstdint>

#include "align/alignment_request.h"
#include "align/linear_base_width.h"
#include "align/linear_pitch.h"
#include "align/tile_size.h"
#include "formats/format_traits.h"
#include "identify/chip_row.h"
#include "platform/rounding.h"

namespace korvel {

// The tile of the format that describes the plane.
constexpr TileSize plane_tile_family67(const AlignmentRequest& request, uint32_t plane) {
  const FormatTraits& format = plane_traits(request.format, plane);
  return tile_size(format.bytes * request.samples, tile_variant_family67(format));
}

// `tile` in blocks. Blocks are counted in texels, in whole tiles of blocks, and back in blocks.
constexpr uint32_t whole_tile_width(uint32_t width, uint32_t tile, uint32_t block) {
  return round_up_to_multiple(width * block, tile * block) / block;
}

// The same for rows, in signed numbers: a product that wraps below 0 takes one tile, as 0 does, and
// a sum that wraps below 0 stays negative when it is turned back into rows of blocks.
constexpr uint32_t whole_tile_rows(uint32_t rows, uint32_t tile, uint32_t block) {
  const auto texel_rows = static_cast<int32_t>(rows * block);
  const uint32_t whole =
      round_up_to_multiple(static_cast<uint32_t>(std::max(texel_rows, 0)), tile * block);
  return static_cast<uint32_t>(static_cast<int32_t>(whole) / static_cast<int32_t>(block));
}

constexpr Extent whole_tiles_of_blocks(Extent size, TileSize tile, const FormatTraits& format) {
  return {whole_tile_width(size.width, tile.width, format.block_width),
          whole_tile_rows(size.height, tile.height, format.block_height)};
}

constexpr Extent whole_tiles(Extent size, TileSize tile) {
  return {round_up_to_power_of_two(size.width, tile.width),
          whole_tile_rows(size.height, tile.height, 1)};
}

// The blocks of a plane are those of its format.
constexpr Extent align_tiled_family67(Extent size, const AlignmentRequest& request,
                                      uint32_t plane) {
  const TileSize tile = plane_tile_family67(request, plane);
  return has_blocks(request.format) ? whole_tiles_of_blocks(size, tile, request.format)
                                    : whole_tiles(size, tile);
}

// `tiling_allowed` 1: the surface may become tiled later, so its linear width takes whole tiles.
constexpr uint32_t align_linear_width_family67(const ChipRow& chip, uint32_t width,
                                               const AlignmentRequest& request, uint32_t plane,
                                               uint32_t tiling_allowed) {
  const bool whole_tiles = tiling_allowed == KORVEL_TILING_TILED;
  const uint32_t base = linear_base_width(width, request, kLinearRulesFamily67, whole_tiles);
  return finish_linear_width(chip, request, base, element_bytes(request, plane));
}

constexpr uint32_t align_linear_height_family67(uint32_t height, const AlignmentRequest& request) {
  if (takes_64_rows(request)) return round_up(height, 64U);
  return whole_tile_rows(height, 1, request.format.block_height);
}

// Apart, so that tiled planes, which need little, do not pay for its registers.
[[gnu::noinline]] constexpr Extent align_linear_family67(const ChipRow& chip, uint32_t width,
                                                         uint32_t height,
                                                         const AlignmentRequest& request,
                                                         uint32_t plane, uint32_t tiling_allowed) {
  return {align_linear_width_family67(chip, width, request, plane, tiling_allowed),
          align_linear_height_family67(height, request)};
}

constexpr Extent align_family67(const ChipRow& chip, Extent size, const AlignmentRequest& request,
                                uint32_t plane, uint32_t tiling_allowed) {
  const Extent padded = with_extra(size, request);
  if (is_tiled(request)) return align_tiled_family67(padded, request, plane);
  return align_linear_family67(chip, padded.width, padded.height, stored_copy(request), plane,
                               tiling_allowed);
}

}  // namespace korvel
