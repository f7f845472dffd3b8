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

// Tiles of one variant by element size.
using TileSizes = std::array<TileSize, kLargestTileBytes + 1>;

constexpr TileSizes tile_sizes(TileVariant variant) {
  TileSizes sizes{};
  sizes.fill(kOtherTileSize);
  for (const TileSizeRow& row : kTileSizes) sizes[row.bytes] = row.tile;
  if (variant == kTileWideByte) sizes[1] = kWideByteTileSize;
  if (variant == kTileTall) sizes[2] = kTallTileSize;
  return sizes;
}

inline constexpr std::array<TileSizes, kTileVariants> kTileSizesByVariant = {
    tile_sizes(kTilePlain), tile_sizes(kTileWideByte), tile_sizes(kTileTall)};

// `variant` is the format's TileVariant in the family set.
constexpr TileSize tile_size(uint32_t bytes, uint32_t variant) {
  return bytes <= kLargestTileBytes ? kTileSizesByVariant[variant][bytes] : kOtherTileSize;
}

}  // namespace korvel
