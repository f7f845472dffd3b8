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

// A count that wrapped below 0 takes one step, as 0 does.
constexpr uint32_t counted_rows(uint32_t rows) {
  return static_cast<uint32_t>(std::max(static_cast<int32_t>(rows), 0));
}

// `tile` in blocks. Blocks are counted in texels, in whole tiles of blocks, and back in blocks.
constexpr uint32_t whole_block_tiles(uint32_t texels, uint32_t tile, uint32_t block) {
  return round_up_to_multiple(texels, tile * block) / block;
}

constexpr Extent whole_tiles_of_blocks(Extent size, TileSize tile, const FormatTraits& format) {
  const uint32_t texel_width = size.width * format.block_width;
  const uint32_t texel_height = counted_rows(size.height * format.block_height);
  return {whole_block_tiles(texel_width, tile.width, format.block_width),
          whole_block_tiles(texel_height, tile.height, format.block_height)};
}

constexpr Extent whole_tiles(Extent size, TileSize tile) {
  return {round_up_to_power_of_two(size.width, tile.width),
          round_up_to_power_of_two(counted_rows(size.height), tile.height)};
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
  const uint32_t block_height = request.format.block_height;
  return whole_block_tiles(counted_rows(height * block_height), 1, block_height);
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
