// The size of the tile that holds one multisampled block of a format.
#pragma once

#include <cstdint>

#include "formats/extent.h"
#include "formats/format_traits.h"
#include "formats/sample_tiles.h"

namespace korvel {

// Every element size of the table has its column.
static_assert([] {
  for (const FormatTraits& format : kFormatTraits) {
    if (format.bytes > kMostTileBytes) return false;
  }
  return true;
}());

// 0 x 0 where no tile is known.
constexpr Extent<Elements> ordinary_sample_tile(const FormatTraits& format, uint32_t samples,
                                                FormatRule tall_tile) {
  if (samples > kMostTileSamples) return {0, 0};
  if (samples == 1 && has_rule(format, tall_tile)) return kTallSampleTile;
  return widened(kSampleTilesBySize[samples][format.bytes]);
}

constexpr Extent<Elements> video_sample_tile(const FormatTraits& format, uint32_t family_id,
                                             bool half_width) {
  const VideoSampleTileRow& row = kVideoSampleTiles[format.video_sample_tile];
  if (family_id < row.first_family) return {0, 0};
  return {half_width ? row.half_width : row.width, row.height};
}

constexpr Extent<Elements> sample_tile_dims_family5(const FormatTraits& format, uint32_t samples) {
  const Extent<Elements> tile = ordinary_sample_tile(format, samples, kRuleTallSampleTileFamily5);
  return tile.width != 0 ? tile : Extent<Elements>{1, 1};
}

// 0 x 0 where families 6 and 7 know no tile, 1 x 1 where family 5 knows none and on any other
// family. `half_width` picks the narrower of two widths where a format has two; the layouts ask for
// it for every plane but the first.
constexpr Extent<Elements> sample_tile_dims(uint32_t family_id, const FormatTraits& format,
                                            bool half_width, uint32_t samples) {
  switch (family_id) {
    case 5: return sample_tile_dims_family5(format, samples);
    case 6:
    case 7:
      return format.video_sample_tile != kNoVideoFormat
                 ? video_sample_tile(format, family_id, half_width)
                 : ordinary_sample_tile(format, samples, kRuleTallSampleTileFamily67);
    default: return {1, 1};
  }
}

}  // namespace korvel
