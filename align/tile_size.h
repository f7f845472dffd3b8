// Tiles of the tiled modes, in elements.
#pragma once

#include <array>
#include <cstdint>

#include "formats/format_traits.h"

namespace korvel {

struct TileSize {
  uint32_t width;   // elements; for formats that count in blocks, before their block width
  uint32_t height;  // rows of elements
};

struct TileSizeRow {
  uint32_t bytes;  // of an element, all samples
  TileSize tile;
};

// clang-format off
inline constexpr TileSizeRow kTileSizes[] = {
    { 1, {128, 32}},
    { 2, {128, 16}},
    { 8, { 32, 16}},
    {16, { 16, 16}},
    {32, {  8, 16}},
    {64, {  8, 16}},
};
inline constexpr TileSize kOtherTileSize    = { 64, 16};
inline constexpr TileSize kWideByteTileSize = {256, 16};  // 1 byte
inline constexpr TileSize kTallTileSize     = { 64, 32};  // 2 bytes
// clang-format on

inline constexpr uint32_t kLargestTileBytes = 64;

inline constexpr auto kTileSizeByBytes = [] {
  std::array<TileSize, kLargestTileBytes + 1> sizes{};
  sizes.fill(kOtherTileSize);
  for (const TileSizeRow& row : kTileSizes) sizes[row.bytes] = row.tile;
  return sizes;
}();

// `tall_rule` is the tall-tile bit of the family set; `rules` are those of the format (FormatRule).
constexpr TileSize tile_size(uint32_t bytes, uint32_t rules, FormatRule tall_rule) {
  if (bytes == 1 && (rules & kRuleWideByteTile) != 0) return kWideByteTileSize;
  if (bytes == 2 && (rules & tall_rule) != 0) return kTallTileSize;
  return bytes <= kLargestTileBytes ? kTileSizeByBytes[bytes] : kOtherTileSize;
}

}  // namespace korvel
