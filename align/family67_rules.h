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

// Of the format that describes the request's plane; the width in texels.
constexpr TileSize family67_plane_tile(const AlignmentRequest& request) {
  const FormatTraits& plane = plane_traits(request.format, request.plane);
  TileSize tile = tile_size(plane.bytes * request.samples, plane.rules, kRuleTallTileFamily67);
  tile.width *= plane.block_width;
  tile.height *= plane.block_height;
  return tile;
}

constexpr uint32_t family67_tiled_width(uint32_t width, const AlignmentRequest& request) {
  const uint32_t block_width = request.format.block_width;
  const uint32_t tile_width = family67_plane_tile(request).width;
  return round_up_to_multiple(width * block_width, tile_width) / block_width;
}

// `tiling_allowed` 1: the surface may become tiled later, so its linear width takes whole tiles.
constexpr uint32_t base_aligned_width_family67(uint32_t width, const AlignmentRequest& request,
                                               uint32_t tiling_allowed) {
  if (is_tiled(request)) return family67_tiled_width(width, request);
  return linear_base_width(width, request, kLinearRulesFamily67,
                           tiling_allowed == KORVEL_TILING_TILED);
}

constexpr uint32_t align_width_family67(const ChipRow& chip, uint32_t width,
                                        const AlignmentRequest& request, uint32_t tiling_allowed) {
  const uint32_t padded_width = width + request.extra.width;
  const uint32_t base = base_aligned_width_family67(padded_width, request, tiling_allowed);
  if (is_tiled(request)) return base;
  return finish_linear_width(chip, request, base, element_bytes(request));
}

constexpr uint32_t align_height_family67(uint32_t height, const AlignmentRequest& request) {
  const uint32_t rows = height + request.extra.height;
  if (takes_64_rows(request)) return round_up(rows, 64U);
  const uint32_t block_height = request.format.block_height;
  const uint32_t alignment = is_tiled(request) ? family67_plane_tile(request).height : block_height;
  const uint32_t texel_rows = rows * block_height;
  // A count that wrapped below 0 takes one alignment, as 0 does.
  const uint32_t counted = static_cast<int32_t>(texel_rows) > 0 ? texel_rows : 0;
  return round_up_to_multiple(counted, alignment) / block_height;
}

}  // namespace korvel
