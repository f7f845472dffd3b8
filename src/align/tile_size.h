// Tiles of the tiled modes, in elements.
#pragma once

#include <array>
#include <cstdint>

#include "formats/format_traits.h"

namespace korvel {

struct TileSize {
  uint16_t width;   // elements
  uint16_t height;  // rows of elements
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

// By element size, then by variant: a row is 16 bytes.
using TileSizesOfVariants = std::array<TileSize, 4>;
static_assert(kTileVariants <= std::tuple_size_v<TileSizesOfVariants>);

inline constexpr auto kTileSizesByBytes = [] {
  std::array<TileSizesOfVariants, kLargestTileBytes + 1> sizes{};
  for (TileSizesOfVariants& tiles : sizes) tiles.fill(kOtherTileSize);
  for (const TileSizeRow& row : kTileSizes) sizes[row.bytes].fill(row.tile);
  sizes[1][kTileWideByte] = kWideByteTileSize;
  sizes[2][kTileTall] = kTallTileSize;
  return sizes;
}();

// `variant` is the format's in the family set.
constexpr TileSize tile_size(uint32_t bytes, TileVariant variant) {
  return bytes <= kLargestTileBytes ? kTileSizesByBytes[bytes][variant] : kOtherTileSize;
}

}  // namespace korvel
