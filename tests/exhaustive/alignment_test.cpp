// Every alignment entry against the reference on whole products of its arguments.
//
// A chip counts through its family, its pitch limit and its padding units only, so the large
// product runs on a full chip of each family, and a small one on every chip. Widths and heights
// never meet in a rule: both run through the edges side by side.

#include <gtest/gtest.h>

#include "tests/exhaustive/scale.h"
#include "tests/harness/chips.h"
#include "tests/harness/edges.h"
#include "tests/reference/alignment_call.h"

namespace {

using comparison::AlignmentCall;
using comparison::compare_alignments;
using comparison::Counts;
using comparison::Pair;
using exhaustive::format_stride;

constexpr int32_t kThresholds[] = {512, 0, -1, 0x7FFFFFFF, 4096};
constexpr uint32_t kDivisors[] = {1, 2, 3, 4, 8, 16, 64, 65};

// Ends what the first call of a process reports.
void identify(Pair& pair) {
  EXPECT_EQ(pair.gpu->get_gpu_pixel_alignment(), reference::get_gpu_pixel_alignment(pair.process));
  pair.expect_equal_reports();
}

void report(const Counts& counts) {
  std::printf("%llu calls compared, %llu of them faults\n",
              static_cast<unsigned long long>(counts.calls),
              static_cast<unsigned long long>(counts.faults));
  EXPECT_GT(counts.calls, 10000U);
}

class EveryAlignment : public testing::TestWithParam<uint32_t> {
 protected:
  Pair pair_{harness::full_chip(GetParam())};
  harness::FaultTrap trap_;
  Counts counts_;

  void SetUp() override { identify(pair_); }
  void TearDown() override { report(counts_); }

  bool compare(const AlignmentCall& call) {
    return compare_alignments(pair_, trap_, call, counts_);
  }

  // All sizes of one format, sample count, mode and plane. `turn` gives the linear rules' further
  // arguments each of their values. Planes without elements fault at every size: one size shows it.
  bool compare_sizes(const std::vector<int32_t>& sizes, uint32_t format, uint32_t samples,
                     uint32_t tiling_mode, uint32_t plane, uint32_t& turn) {
    for (std::size_t i = 0; i < sizes.size(); ++i) {
      ++turn;
      const uint64_t faults = counts_.faults;
      const AlignmentCall call = {sizes[i],
                                  sizes[sizes.size() - 1 - i],
                                  plane,
                                  format,
                                  samples,
                                  tiling_mode,
                                  turn % 3,
                                  turn % 4,
                                  kThresholds[turn % 5],
                                  kDivisors[turn / 3 % 8],
                                  turn / 2 % 2};
      if (!compare(call)) return false;
      if (counts_.faults != faults) break;
    }
    return true;
  }
};

// The sample counts of real surfaces at every edge.
TEST_P(EveryAlignment, OfRealSampleCountsAtEverySizeEdge) {
  const std::vector<int32_t> sizes = harness::size_edges();
  const std::vector<uint32_t> formats = harness::format_edges();
  uint32_t turn = 0;
  for (std::size_t f = 0; f < formats.size(); f += format_stride()) {
    for (const uint32_t samples : {1U, 2U, 4U, 8U}) {
      for (const uint32_t tiling_mode : {0U, 1U}) {
        for (const uint32_t plane : {0U, 1U, 2U}) {
          if (!compare_sizes(sizes, formats[f], samples, tiling_mode, plane, turn)) return;
        }
      }
    }
  }
  pair_.expect_equal_reports();
}

// All sample counts, modes and planes at some sizes, at all in the full form.
TEST_P(EveryAlignment, OfAnySampleCountModeAndPlane) {
  const std::vector<int32_t> few(std::begin(harness::kFewSizes), std::end(harness::kFewSizes));
  const std::vector<int32_t> sizes = exhaustive::is_full() ? harness::size_edges() : few;
  const std::vector<uint32_t> formats = harness::format_edges();
  uint32_t turn = 0;
  for (std::size_t f = 0; f < formats.size(); f += format_stride()) {
    for (const uint32_t samples : harness::kSampleEdges) {
      for (const uint32_t tiling_mode : {0U, 1U, 2U, 0xFFFFFFFFU}) {
        for (const uint32_t plane : {0U, 1U, 2U, 3U, 0xFFFFFFFFU}) {
          if (!compare_sizes(sizes, formats[f], samples, tiling_mode, plane, turn)) return;
        }
      }
    }
  }
  pair_.expect_equal_reports();
}

// Every linear width up to the third repetition of the padding, for every element size, in both
// halves of the table, on both sides of the threshold.
TEST_P(EveryAlignment, OfEveryWidthOfThePitchTable) {
  for (const uint32_t format : {61U, 49U, 28U, 11U, 2U, 508U, 523U, 6U, 103U, 71U, 73U, 656U}) {
    for (int32_t width = 0; width <= 6400; width += static_cast<int32_t>(format_stride())) {
      for (const uint32_t selector : {1U, 2U}) {
        for (const int32_t threshold : {0, width * 4, width * 4 - 1}) {
          if (!compare({width, width, 0, format, 1, 0, selector - 1, selector, threshold, 1, 0})) {
            return;
          }
        }
      }
    }
  }
  pair_.expect_equal_reports();
}

// Every divisor of the linear alignment, zero among them, with both answers to whether tiling is
// allowed.
TEST_P(EveryAlignment, OfEveryDivisor) {
  const std::vector<uint32_t> formats = harness::format_edges();
  for (std::size_t f = 0; f < formats.size(); f += format_stride()) {
    for (uint32_t divisor = 0; divisor <= 65; ++divisor) {
      for (const uint32_t allowed : {0U, 1U, 2U}) {
        if (!compare({1921, 1081, 0, formats[f], 1 + divisor % 2 * 3, 0, allowed, 1, 0x7FFFFFFF,
                      divisor, divisor / 2 % 2})) {
          return;
        }
      }
    }
  }
  pair_.expect_equal_reports();
}

INSTANTIATE_TEST_SUITE_P(Families, EveryAlignment, testing::Values(5U, 6U, 7U),
                         [](const auto& family) {
                           return "Family" + std::to_string(family.param);
                         });

// Pitch limit and padding units go by model: every chip, every format.
TEST(EveryChipsAlignment, OfEveryFormat) {
  const std::vector<uint32_t> formats = harness::format_edges();
  harness::FaultTrap trap;
  Counts counts;
  for (const korvel::ChipData& chip : korvel::kChipData) {
    Pair pair(chip);
    identify(pair);
    for (std::size_t f = 0; f < formats.size(); f += format_stride()) {
      for (const uint32_t tiling_mode : {0U, 1U}) {
        for (const uint32_t padding : {0U, 1U}) {
          for (const int32_t size : {100, 20000}) {
            if (!compare_alignments(
                    pair, trap, {size, size, 0, formats[f], 1, tiling_mode, 0, 1, 512, 1, padding},
                    counts)) {
              FAIL() << "chip 0x" << std::hex << chip.chip_id;
            }
          }
        }
      }
      // An unsupported chip reports every call.
      if (!chip.supported) pair.expect_equal_reports();
    }
    pair.expect_equal_reports();
    if (HasFailure()) FAIL() << "chip 0x" << std::hex << chip.chip_id;
  }
  report(counts);
}

}  // namespace
