// The predicates and chip properties against the reference.

#include <gtest/gtest.h>

#include "tests/harness/chips.h"
#include "tests/reference/comparison.h"
#include "tests/reference/difference.h"

using comparison::difference;
using comparison::Pair;

namespace {

void compare_predicates(Pair& pair, uint32_t format) {
  const auto id = static_cast<int32_t>(format);
  EXPECT_EQ(pair.gpu->isUBWCSupportedByGpu(format),
            reference::isUBWCSupportedByGpu(pair.process, format))
      << "format " << format;
  for (const int32_t depth : {0, 1, -1}) {
    EXPECT_EQ(pair.gpu->isFormatRenderableByGpu(id, depth),
              reference::isFormatRenderableByGpu(pair.process, id, depth))
        << "format " << format << ", depth_stencil_use " << depth;
    for (const uint32_t samples : {0U, 1U, 2U, 0xFFFFFFFFU}) {
      EXPECT_EQ(pair.gpu->isFormatSampleableByGpu(id, samples, depth),
                reference::isFormatSampleableByGpu(pair.process, id, samples, depth))
          << "format " << format << ", sample_count " << samples << ", depth_stencil_view "
          << depth;
    }
  }
}

}  // namespace

TEST(CapabilityComparison, EveryFormatOnEveryChip) {
  for (const korvel::ChipData& chip : korvel::kChipData) {
    Pair pair(chip);
    for (uint32_t format = 0xFFFFFFFF; format != 801; ++format) compare_predicates(pair, format);
    compare_predicates(pair, 0x37425857);
    compare_predicates(pair, 0x80000000);
    pair.expect_equal_reports();
    if (HasFailure()) FAIL() << "chip 0x" << std::hex << chip.chip_id;
  }
}

TEST(CapabilityComparison, UnknownChip) {
  Pair pair(comparison::facts_of_unknown_chip(harness::kUnknownChip));
  for (uint32_t format = 0; format < 20; ++format) compare_predicates(pair, format);
  pair.expect_equal_reports();
}

TEST(CapabilityComparison, PropertiesOfEveryChip) {
  for (const korvel::ChipData& chip : korvel::kChipData) {
    Pair pair(chip);
    EXPECT_EQ(pair.gpu->get_gpu_pixel_alignment(),
              reference::get_gpu_pixel_alignment(pair.process));
    for (const uint32_t mode : {0U, 1U, 2U}) {
      uint32_t expected = 0;
      if (!comparison::reference_answers(
              [&] { expected = reference::get_slice_pitch_alignment(pair.process, mode); })) {
        continue;
      }
      const uint32_t actual = pair.gpu->get_slice_pitch_alignment(mode);
      EXPECT_EQ(actual, expected) << "get_slice_pitch_alignment(tiling_mode " << mode
                                  << ") on chip 0x" << std::hex << chip.chip_id << std::dec << ": "
                                  << difference(actual, expected);
    }
    pair.expect_equal_reports();
  }
}
