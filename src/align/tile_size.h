// Tiles of the tiled mode.
#pragma once

#include <array>
#include <cstdint>

#include "formats/extent.h"
#include "formats/format_traits.h"

namespace korvel {

using TileSize = Extent<Elements, uint16_t>;

struct TileSizeRow {
  uint32_t element_bytes;  // all samples
  TileSize tile;
};

// clang-format off
inline constexpr TileSizeRow kTileSizes[] = {
    { 1, {128, 32}},
    { 2, {128, 16}},
    { 4, { 64, 16}},
    { 8, { 32, 16}},
    {16, { 16, 16}},
    {32, {  8, 16}},
    {64, {  8, 16}},
};
inline constexpr TileSize kOtherTileSize    = { 64, 16};
inline constexpr TileSize kWideByteTileSize = {256, 16};  // 1 byte
inline constexpr TileSize kTallTileSize     = { 64, 32};  // 2 bytes
// clang-format on

inline constexpr uint32_t kLargestTileElement_bytes = 64;

// By element size, then by variant; rows of 16 bytes, so that the address is a shift.
using TileSizesOfVariants = std::array<TileSize, 4>;
static_assert(kTileVariants <= std::tuple_size_v<TileSizesOfVariants>);

inline constexpr auto kTileSizesByBytes = [] {
  std::array<TileSizesOfVariants, kLargestTileElement_bytes + 1> sizes{};
  for (TileSizesOfVariants& tiles : sizes) tiles.fill(kOtherTileSize);
  for (const TileSizeRow& row : kTileSizes) sizes[row.element_bytes].fill(row.tile);
  sizes[1][kTileWideByte] = kWideByteTileSize;
  sizes[2][kTileTall] = kTallTileSize;
  return sizes;
}();

// `element_bytes` with all samples; `variant` is the format's in the family set.
constexpr Extent<Elements> tile_size(uint32_t element_bytes, TileVariant variant) {
  const TileSize tile = element_bytes <= kLargestTileElement_bytes
                            ? kTileSizesByBytes[element_bytes][variant]
                            : kOtherTileSize;
  return {tile.width, tile.height};
}

}  // namespace korvel
