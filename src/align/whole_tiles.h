// Planes whose sizes take whole tiles and no more: most planes of mip chains. Their tile is looked
// up once for all levels.
#pragma once

#include <cstdint>

#include "align/family67_rules.h"

namespace korvel {

// Tiles of elements without blocks, not padded, on a chip of families 6 and 7.
constexpr bool takes_whole_tiles(const ChipRow& chip, const AlignmentRequest& request) {
  return chip.supported && chip.family_id != 5 && is_tiled(request) &&
         !has_blocks(request.format) && (request.extra.width | request.extra.height) == 0;
}

// What fdm_extent answers for a plane that takes whole tiles. Both sizes are 1 or more.
constexpr Extent whole_tiles_extent(int32_t width, int32_t height, TileSize tile) {
  return {round_up_counted(static_cast<uint32_t>(width), tile.width),
          round_up_counted(static_cast<uint32_t>(height), tile.height)};
}

}  // namespace korvel
