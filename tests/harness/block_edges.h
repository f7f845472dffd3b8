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

// Two formats at least of every block height. Of those without blocks, some whose tiles have 32
// rows, and two-plane ones.
inline constexpr uint32_t kFormatsOfEveryBlockHeight[] = {
    28,  49,  61,  103, 107, 654, 655, 660, 670,  //  1 row
    626, 637,                                     //  3 rows: 3 x 3, 4 x 3
    71,  98,  138,                                //  4 rows: 4 x 4, 4 x 4, 5 x 4
    142, 570, 571, 154, 590,                      //  5 rows: 5 x 5, 5 x 5, 6 x 5, 8 x 5, 10 x 5
    150, 158, 170,                                //  6 rows: 6 x 6, 8 x 6, 10 x 6
    162, 174,                                     //  8 rows: 8 x 8, 10 x 8
    178, 182,                                     // 10 rows: 10 x 10, 12 x 10
    186, 581,                                     // 12 rows: 12 x 12
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
