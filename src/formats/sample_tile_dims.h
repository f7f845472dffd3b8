// The width and height in pixels of the tile that holds one multisampled block of a format.
#pragma once

#include <bit>
#include <cstdint>

#include "formats/format_traits.h"
#include "formats/sample_tiles.h"

namespace korvel {

// 0 x 0 where the table has no tile.
constexpr SampleTile ordinary_sample_tile(uint32_t bytes, uint32_t samples, bool tall) {
  if (samples == 1 && bytes == 2 && tall) return kTallSampleTile;
  for (const SampleTileRow& row : kSampleTileRows) {
    if (row.samples != samples) continue;
    switch (bytes) {
      case 1:
      case 2:
      case 4: return row.bytes_1_2_4;
      case 8: return row.bytes_8;
      case 16: return row.bytes_16;
      default: return {0, 0};
    }
  }
  return {0, 0};
}

constexpr SampleTile video_sample_tile(const FormatTraits& format, uint32_t family_id,
                                       bool half_width) {
  const VideoSampleTileRow& row = kVideoSampleTiles[format.sample_tile];
  if (family_id < row.first_family) return {0, 0};
  return {half_width ? row.half_width : row.width, row.height};
}

// 0 x 0 where families 6 and 7 know no tile, 1 x 1 where family 5 knows none and on any other
// family. `half_width` picks the narrower of two widths where a format has two; the layouts pass
// the plane.
constexpr SampleTile sample_tile_dims(uint32_t family_id, const FormatTraits& format,
                                      bool half_width, uint32_t samples) {
  switch (family_id) {
    case 5: {
      const bool tall = (format.rules & kRuleTallSampleTileFamily5) != 0;
      const SampleTile tile = ordinary_sample_tile(format.bytes, samples, tall);
      return tile.width != 0 ? tile : SampleTile{1, 1};
    }
    case 6:
    case 7: {
      if ((format.rules & kRuleSampleTileByFormat) != 0) {
        return video_sample_tile(format, family_id, half_width);
      }
      const bool tall = (format.rules & kRuleTallSampleTileFamily67) != 0;
      return ordinary_sample_tile(format.bytes, samples, tall);
    }
    default: return {1, 1};
  }
}

}  // namespace korvel
