// One plane's alignment, prepared for many sizes: the levels of a mip chain.
#pragma once

#include <cstdint>

#include "align/family67_rules.h"

namespace korvel {

struct PlaneAlignment {
  bool whole_tiles;  // sizes take whole tiles, and that is all
  TileSize tile;     // of that case
};

// Most planes of chains: tiles of elements without blocks, not padded, on a chip of families 6
// and 7.
constexpr PlaneAlignment plane_alignment(const ChipRow& chip, const AlignmentRequest& request,
                                         uint32_t plane) {
  const bool whole_tiles = chip.supported && chip.family_id != 5 && is_tiled(request) &&
                           !has_blocks(request.format) &&
                           (request.extra.width | request.extra.height) == 0;
  return {whole_tiles, whole_tiles ? plane_tile_family67(request, plane) : TileSize{}};
}

// What fdm_extent answers for a plane that takes whole tiles. Both sizes are 1 or more.
constexpr Extent whole_tiles_extent(int32_t width, int32_t height, TileSize tile) {
  return {round_up_counted(static_cast<uint32_t>(width), tile.width),
          round_up_counted(static_cast<uint32_t>(height), tile.height)};
}

}  // namespace korvel
