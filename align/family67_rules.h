// Widths and heights on families 6 and 7. The two differ only in the pitch limit (limit_pitch).
#pragma once

#include <cstdint>

#include "align/alignment_request.h"
#include "align/linear_base_width.h"
#include "align/linear_pitch.h"
#include "align/tile_size.h"
#include "formats/format_traits.h"
#include "identify/chip_row.h"
#include "platform/rounding.h"

namespace korvel {

// Both in texels, where blocks hold several.
struct TexelTile {
  uint32_t width;
  uint32_t height;
};

// Of the format that describes the request's plane.
constexpr TexelTile plane_tile_family67(const AlignmentRequest& request) {
  const FormatTraits& plane = plane_traits(request.format, request.plane);
  const TileSize tile = tile_size(plane.bytes * request.samples, tile_variant_family67(plane));
  return {uint32_t{tile.width} * plane.block_width, uint32_t{tile.height} * plane.block_height};
}

constexpr uint32_t align_tiled_width_family67(uint32_t width, uint32_t tile_width,
                                              uint32_t block_width) {
  return round_up_to_multiple(width * block_width, tile_width) / block_width;
}

// `alignment` in rows of texels. A count that wrapped below 0 takes one alignment, as 0 does.
constexpr uint32_t align_height_family67(uint32_t rows, uint32_t alignment, uint32_t block_height) {
  const auto texel_rows = static_cast<int32_t>(rows * block_height);
  const uint32_t counted = texel_rows > 0 ? static_cast<uint32_t>(texel_rows) : 0;
  return round_up_to_multiple(counted, alignment) / block_height;
}

constexpr Extent align_tiled_family67(Extent size, const AlignmentRequest& request) {
  const FormatTraits& format = request.format;
  const TexelTile tile = plane_tile_family67(request);
  return {align_tiled_width_family67(size.width, tile.width, format.block_width),
          align_height_family67(size.height, tile.height, format.block_height)};
}

// `tiling_allowed` 1: the surface may become tiled later, so its linear width takes whole tiles.
constexpr uint32_t align_linear_width_family67(const ChipRow& chip, uint32_t width,
                                               const AlignmentRequest& request,
                                               uint32_t tiling_allowed) {
  const bool whole_tiles = tiling_allowed == KORVEL_TILING_TILED;
  const uint32_t base = linear_base_width(width, request, kLinearRulesFamily67, whole_tiles);
  return finish_linear_width(chip, request, base, element_bytes(request));
}

constexpr uint32_t align_linear_height_family67(uint32_t height, const AlignmentRequest& request) {
  if (takes_64_rows(request)) return round_up(height, 64U);
  const uint32_t block_height = request.format.block_height;
  return align_height_family67(height, block_height, block_height);
}

constexpr Extent align_family67(const ChipRow& chip, Extent size, const AlignmentRequest& request,
                                uint32_t tiling_allowed) {
  const Extent padded = {size.width + request.extra.width, size.height + request.extra.height};
  if (is_tiled(request)) return align_tiled_family67(padded, request);
  return {align_linear_width_family67(chip, padded.width, request, tiling_allowed),
          align_linear_height_family67(padded.height, request)};
}

}  // namespace korvel
