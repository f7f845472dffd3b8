// Tiles that hold one multisampled block: the data behind sample_tile_dims.
#pragma once

#include <array>
#include <cstdint>
#include <iterator>

#include "formats/extent.h"
#include "formats/format_ids.h"

namespace korvel {

// Ordinary formats, by samples and element size. 0 x 0 where no tile is known.
struct SampleTileRow {
  uint32_t samples;
  SmallExtent<Elements> bytes_1_2_4;
  SmallExtent<Elements> bytes_8;
  SmallExtent<Elements> bytes_16;
};

// clang-format off
inline constexpr SampleTileRow kSampleTileRows[] = {
    // samples  1, 2, 4 bytes  8 bytes  16 bytes
    {1,         {16, 4},       {8, 4},  {4, 4}},
    {2,         { 8, 4},       {4, 4},  {4, 2}},
    {4,         { 4, 4},       {4, 2},  {2, 2}},
    {8,         { 4, 2},       {2, 2},  {0, 0}},
};

// 2-byte formats that take a taller tile when they are single-sampled. The family sets differ.
inline constexpr IdRange kTallSampleTileFormatsFamily5[]  = {{48, 52}, {511}, {514}, {517}};
inline constexpr IdRange kTallSampleTileFormatsFamily67[] = {{48, 52}, {511}, {514}, {517}, {678}};
inline constexpr Extent<Elements> kTallSampleTile = {16, 8};

// Video formats on families 6 and 7, by format alone.
struct VideoSampleTileRow {
  uint32_t first_family;  // families from here on know the row
  uint8_t width;          // elements, plane 0
  uint8_t half_width;     // elements, further planes
  uint8_t height;         // rows
  IdRange ids[kRowRanges];
};

// No format has the first row's tile: its number marks formats that are not video. The second row
// stands for every video format that no other row lists.
inline constexpr VideoSampleTileRow kVideoSampleTiles[] = {
    {6,  0,  0, 0, {}},
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

static_assert(rows_are_disjoint(kVideoSampleTiles));

inline constexpr uint8_t kNoVideoFormat = 0;
inline constexpr uint8_t kUnlistedVideoFormat = 1;

// The row of kVideoSampleTiles that a video format takes.
constexpr uint8_t video_sample_tile_row(FormatId format) {
  for (std::size_t row = kUnlistedVideoFormat + 1; row < std::size(kVideoSampleTiles); ++row) {
    if (contains(kVideoSampleTiles[row].ids, format)) return static_cast<uint8_t>(row);
  }
  return kUnlistedVideoFormat;
}

inline constexpr uint32_t kMostTileSamples = 8;
inline constexpr uint32_t kMostTileBytes = 16;

// kSampleTileRows by samples and bytes, with 0 x 0 for all that it does not name.
using SampleTilesBySize =
    std::array<std::array<SmallExtent<Elements>, kMostTileBytes + 1>, kMostTileSamples + 1>;

inline constexpr SampleTilesBySize kSampleTilesBySize = [] {
  SampleTilesBySize tiles{};
  for (const SampleTileRow& row : kSampleTileRows) {
    for (const uint32_t bytes : {1U, 2U, 4U}) tiles[row.samples][bytes] = row.bytes_1_2_4;
    tiles[row.samples][8] = row.bytes_8;
    tiles[row.samples][16] = row.bytes_16;
  }
  return tiles;
}();

static_assert(is_sorted_list(kTallSampleTileFormatsFamily5) &&
              is_sorted_list(kTallSampleTileFormatsFamily67));

}  // namespace korvel
