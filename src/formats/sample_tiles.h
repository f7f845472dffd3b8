// Tiles that hold one multisampled block, in pixels: the data behind sample_tile_dims.
#pragma once

#include <array>
#include <cstdint>
#include <iterator>

#include "formats/format_ids.h"

namespace korvel {

struct SampleTile {
  uint32_t width;   // pixels
  uint32_t height;  // pixels
};

// Ordinary formats, by samples and element size.
struct SampleTileRow {
  uint32_t samples;
  SampleTile bytes_1_2_4;
  SampleTile bytes_8;
  SampleTile bytes_16;
};

// clang-format off
inline constexpr SampleTileRow kSampleTileRows[] = {
    // samples  1, 2, 4 bytes  8 bytes  16 bytes
    {1,         {16, 4},       {8, 4},  {4, 4}},
    {2,         { 8, 4},       {4, 4},  {4, 2}},
    {4,         { 4, 4},       {4, 2},  {2, 2}},
    {8,         { 4, 2},       {2, 2},  {0, 0}},
};

// 2-byte formats of the tall list, single-sampled.
inline constexpr SampleTile kTallSampleTile = {16, 8};

// Video formats on families 6 and 7, by format alone.
struct VideoSampleTileRow {
  uint32_t first_family;  // families from here on know the row
  uint32_t width;         // pixels, plane 0
  uint32_t half_width;    // pixels, further planes
  uint32_t height;        // pixels
  IdRange ids[kRowRanges];
};

// The first row stands for every format that no other row lists.
inline constexpr VideoSampleTileRow kVideoSampleTiles[] = {
    {6,  0,  0, 0, {}},
    {6, 32, 32, 4, {{107}, {614}, {617, 618}, {662, 663}, {668}, {680}}},
    {6, 16, 16, 4, {{620}, {664}, {669}}},
    {6, 32, 32, 8, {{625}, {657}, {665}, {679}}},
    {6, 16, 16, 8, {{666}}},
    {6, 48, 24, 4, {{654}}},
    {6, 48, 48, 4, {{655}}},
    {6, 24, 24, 4, {{656}}},
    {6, 64, 32, 4, {{660}}},
    {6, 64, 64, 4, {{661}}},
    {6, 32, 16, 4, {{104}}},
    {6, 32, 16, 8, {{103}, {106}, {506}}},
    {7, 32, 32, 4, {{710}, {713}, {715}, {718}, {720}}},
    {7, 16, 16, 4, {{711}, {714}, {716}, {719}, {721}}},
    {7, 16, 16, 8, {{658}}},
    {7, 32, 16, 4, {{105}, {709}, {712}, {717}}},
};
// clang-format on

// The row of kVideoSampleTiles that lists a format.
inline constexpr auto kVideoSampleTileRow = [] {
  std::array<uint8_t, kFormatCount> row_of{};
  for (std::size_t row = 0; row < std::size(kVideoSampleTiles); ++row) {
    for_each_id(kVideoSampleTiles[row].ids,
                [&](FormatId id) { row_of[id] = static_cast<uint8_t>(row); });
  }
  return row_of;
}();

}  // namespace korvel
