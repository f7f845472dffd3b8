// Which formats a GPU keeps in bandwidth compression.

#include <gmock/gmock.h>

#include "tests/formats/format_calls.h"
#include "tests/formats/id_list.h"
#include "tests/formats/predicate_cases.h"
#include "tests/harness/chips.h"
#include "tests/harness/gpu.h"

namespace formats_test {
namespace {

using harness::chip_where;
using harness::ChipData;
using harness::Gpu;
using testing::IsEmpty;

const IdList kColour = "10 24 28 29 87 88 103 107 506 507 520 614 619 620";
const IdList kDepth = "40 45 55 548 610";
const IdList kYuv = "104 654 655 656 657 658 659 660 661 662 663 664";
const IdList kPacked = "683 684";
const IdList kYuv16 = "709 710 711";

bool expected(const ChipData& chip, uint32_t format) {
  const auto& sets = chip.ubwc;
  if (sets.never) return false;
  if (kColour.has(format)) return true;
  if (kDepth.has(format)) return !sets.depth_excluded;
  if (kYuv.has(format)) return sets.yuv_a || sets.yuv_b;
  if (kPacked.has(format)) return sets.yuv_b;
  return kYuv16.has(format) && sets.yuv16;
}

TEST(Compression, IsExactlyOfTheListedFormatsOnEveryChip) {
  const std::vector<int32_t> formats = format_arguments();
  for (const ChipData& chip : korvel::kChipData) {
    Gpu gpu(chip.chip_id);
    for (const int32_t argument : formats) {
      const auto format = static_cast<uint32_t>(argument);
      const uint32_t answer = gpu->isUBWCSupportedByGpu(format);
      if (answer == (expected(chip, format) ? 1U : 0U)) continue;
      ADD_FAILURE() << "chip " << std::hex << chip.chip_id << std::dec << " format " << format
                    << ": expected " << expected(chip, format) << ", got " << answer;
    }
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

TEST(Compression, IsOfNothingOnTheTwoExcludedChips) {
  int chips = 0;
  for (const ChipData& chip : korvel::kChipData) {
    if (!chip.ubwc.never) continue;
    ++chips;
    Gpu gpu(chip.chip_id);
    for (uint32_t format = 0; format <= 800; ++format) {
      EXPECT_NUMBER(gpu->isUBWCSupportedByGpu(format), 0) << format;
    }
  }
  EXPECT_EQ(chips, 2);
}

TEST(Compression, OfDepthFormatsIsMissingOnSomeChips) {
  for (const bool excluded : {false, true}) {
    const ChipData& chip = chip_where("in or out of the depth exclusion", [=](const ChipData& c) {
      return !c.ubwc.never && c.ubwc.depth_excluded == excluded;
    });
    const Gpu gpu(chip.chip_id);
    for (const uint32_t depth : {kDepth32, 548U, 610U}) {
      EXPECT_NUMBER(gpu->isUBWCSupportedByGpu(depth), excluded ? 0 : 1) << "format " << depth;
    }
    EXPECT_NUMBER(gpu->isUBWCSupportedByGpu(kRgba8), 1) << "excluded " << excluded;
  }
}

TEST(Compression, OfYuvFormatsFollowsTheThreeSets) {
  struct Case {
    bool yuv_a;
    bool yuv_b;
    bool yuv16;
    uint32_t of_104;  // in sets a and b
    uint32_t of_683;  // in set b
    uint32_t of_709;  // in the 16-bit set
  };
  constexpr Case kCases[] = {
      {.yuv_a = false, .yuv_b = false, .yuv16 = false, .of_104 = 0, .of_683 = 0, .of_709 = 0},
      {.yuv_a = true, .yuv_b = false, .yuv16 = false, .of_104 = 1, .of_683 = 0, .of_709 = 0},
      {.yuv_a = false, .yuv_b = true, .yuv16 = false, .of_104 = 1, .of_683 = 1, .of_709 = 0},
      {.yuv_a = false, .yuv_b = true, .yuv16 = true, .of_104 = 1, .of_683 = 1, .of_709 = 1},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(testing::Message() << "case " << &c - kCases);
    const ChipData& chip = chip_where("in these YUV sets", [&c](const ChipData& row) {
      return !row.ubwc.never && row.ubwc.yuv_a == c.yuv_a && row.ubwc.yuv_b == c.yuv_b &&
             row.ubwc.yuv16 == c.yuv16;
    });
    const Gpu gpu(chip.chip_id);
    EXPECT_NUMBER(gpu->isUBWCSupportedByGpu(104), c.of_104);
    EXPECT_NUMBER(gpu->isUBWCSupportedByGpu(683), c.of_683);
    EXPECT_NUMBER(gpu->isUBWCSupportedByGpu(709), c.of_709);
  }
}

TEST(Compression, IsNeverOfWideDepthStencilOrOfBlocks) {
  for (const uint32_t family : {5U, 6U, 7U}) {
    Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t format : {20U, 551U, 71U, 98U, 134U, 568U, 645U, 682U}) {
      EXPECT_NUMBER(gpu->isUBWCSupportedByGpu(format), 0) << format;
    }
  }
}

TEST(Compression, IsOfNothingAndSilentOnAnUnknownFamily) {
  Gpu gpu(harness::kUnknownChip);
  gpu->get_gpu_pixel_alignment();
  gpu.take_messages();
  for (const int32_t format : format_arguments()) {
    EXPECT_NUMBER(gpu->isUBWCSupportedByGpu(static_cast<uint32_t>(format)), 0);
  }
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

}  // namespace
}  // namespace formats_test
