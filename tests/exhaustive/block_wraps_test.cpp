// Every alignment entry against the reference where the texels of a count of blocks wrap 32 bits or
// change their sign: at every wrap of the blocks of every format, with and without extra padding.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "tests/exhaustive/scale.h"
#include "tests/harness/block_edges.h"
#include "tests/harness/chips.h"
#include "tests/reference/alignment_call.h"
#include "tests/reference/rules.h"

namespace {

using comparison::compare_alignments;
using comparison::Counts;
using comparison::Pair;

class BlockWraps : public testing::TestWithParam<uint32_t> {
 protected:
  Pair pair_{harness::full_chip(GetParam())};
  harness::FaultTrap trap_;
  Counts counts_;
  // Of each block height, the heights that went to whole tiles past 2^31.
  std::map<uint32_t, uint32_t> passed_;

  bool compare(const comparison::AlignmentCall& call) {
    return compare_alignments(pair_, trap_, call, counts_);
  }

  // All wraps of one format's blocks, widths and heights side by side: they never meet in a rule.
  bool compare_wraps(uint32_t format, uint32_t want_extra_padding) {
    const reference::Dimensions block = reference::format_block_dims(format);
    const bool extra = want_extra_padding != 0;
    const uint32_t extra_rows = extra ? reference::extra_height_padding(pair_.process) : 0;
    const std::vector<int32_t> heights = harness::block_wrap_edges(block.height, extra_rows);
    const std::vector<int32_t> widths = harness::block_wrap_edges(
        block.width, extra ? reference::extra_width_padding(pair_.process, format) : 0);
    for (std::size_t i = 0; i < std::max(widths.size(), heights.size()); ++i) {
      const int32_t width = widths[i % widths.size()];
      const int32_t height = heights[i % heights.size()];
      const auto turn = static_cast<uint32_t>(i);
      for (const uint32_t samples : {1U, 4U}) {
        for (const uint32_t tiling_mode : {0U, 1U}) {
          for (const uint32_t plane : {0U, 1U}) {
            if (!compare({width, height, plane, format, samples, tiling_mode, turn % 3, turn % 4,
                          turn % 2 == 0 ? 512 : 0x7FFFFFFF, 1, want_extra_padding})) {
              return false;
            }
          }
        }
      }
      const uint32_t tiled_height = reference::align_height_family67(static_cast<uint32_t>(height),
                                                                     0, 1, format, 1, extra_rows);
      if (tiled_height > 0x7FFFFFFF) ++passed_[block.height];
    }
    return true;
  }
};

TEST_P(BlockWraps, OfEveryFormat) {
  EXPECT_EQ(pair_.gpu->get_gpu_pixel_alignment(),
            reference::get_gpu_pixel_alignment(pair_.process));
  pair_.expect_equal_reports();
  for (const uint32_t format : exhaustive::formats_of_every_block_height()) {
    for (const uint32_t want_extra_padding : {0U, 1U}) {
      if (!compare_wraps(format, want_extra_padding)) return;
    }
  }
  pair_.expect_equal_reports();
  std::printf("%llu calls compared, %llu of them faults\n",
              static_cast<unsigned long long>(counts_.calls),
              static_cast<unsigned long long>(counts_.faults));
  for (const uint32_t block_height : harness::kBlockHeights) {
    EXPECT_GE(passed_[block_height], 4U) << "block height " << block_height;
  }
}

INSTANTIATE_TEST_SUITE_P(Families, BlockWraps, testing::Values(5U, 6U, 7U), [](const auto& family) {
  return "Family" + std::to_string(family.param);
});

// What the sweeps over formats of every block height stand on.
TEST(BlockFormats, HaveTheBlockHeightsThatTheyStandFor) {
  for (const harness::BlockFormat& block : harness::kBlockFormats) {
    EXPECT_EQ(reference::format_block_dims(block.format).height, block.block_height)
        << "format " << block.format;
  }
  for (uint32_t format = 0; format < 722; ++format) {
    EXPECT_TRUE(std::count(std::begin(harness::kBlockHeights), std::end(harness::kBlockHeights),
                           reference::format_block_dims(format).height))
        << "format " << format;
  }
}

}  // namespace
