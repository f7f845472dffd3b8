// Where a count of blocks, turned into texels, wraps 32 bits or changes its sign; and formats of
// every block height to try it on.
#pragma once

#include <cstdint>
#include <limits>
#include <set>
#include <vector>

namespace harness {

// Texel rows of a block, over all formats.
inline constexpr uint32_t kBlockHeights[] = {1, 3, 4, 5, 6, 8, 10, 12};

// Rows that the rules for extra padding can add.
inline constexpr uint32_t kExtraRows[] = {0, 16, 32, 48, 96, 128, 256};

struct BlockFormat {
  uint32_t format;
  uint32_t block_height;
};

// Two formats at least of every block height, one at least of every block width with it. Of those
// without blocks, some whose tiles have 32 rows, and some of two planes.
inline constexpr BlockFormat kBlockFormats[] = {
    {28, 1},  {49, 1},  {61, 1},  {103, 1},  {107, 1},  {654, 1},  {655, 1},
    {660, 1}, {670, 1}, {626, 3}, {637, 3},  {71, 4},   {98, 4},   {138, 4},
    {142, 5}, {570, 5}, {571, 5}, {154, 5},  {590, 5},  {150, 6},  {158, 6},
    {170, 6}, {162, 8}, {174, 8}, {178, 10}, {182, 10}, {186, 12}, {581, 12},
};

// Counts of blocks of `block` texels, below 2^31, to which a rule adds `added` blocks first: those
// just below, at and just above each multiple of 2^31 texels; and the first whose last tile, of 16
// or 32 blocks, reaches over such a multiple where the sign changes, with the one before.
inline std::vector<int32_t> block_wrap_edges(uint32_t block, uint32_t added) {
  constexpr int64_t kLargest = std::numeric_limits<int32_t>::max();
  std::set<int64_t> sizes = {kLargest};
  const auto insert = [&sizes, added](int64_t blocks) {
    const int64_t size = blocks - added;
    if (size >= 0 && size <= kLargest) sizes.insert(size);
  };
  for (int64_t crossing = 0; crossing <= block; ++crossing) {
    const int64_t limit = crossing << 31;  // texels
    const int64_t blocks_within = limit / block;
    for (int64_t blocks = blocks_within - 1; blocks <= blocks_within + 1; ++blocks) insert(blocks);
    // Tiles are counted from where the 32-bit number is 0.
    if (crossing % 2 == 0) continue;
    const int64_t wrapped = (crossing - 1) << 31;
    for (const int64_t tile_blocks : {16, 32}) {
      const int64_t tile = tile_blocks * block;  // texels
      const int64_t last_whole_tiles = (limit - 1 - wrapped) / tile * tile;
      const int64_t blocks_before = (wrapped + last_whole_tiles) / block;
      insert(blocks_before);
      insert(blocks_before + 1);
    }
  }
  return {sizes.begin(), sizes.end()};
}

}  // namespace harness
