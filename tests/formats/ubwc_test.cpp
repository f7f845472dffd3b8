// Which formats a GPU keeps in bandwidth compression.

#include <gmock/gmock.h>

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
                    << ": " << answer;
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
      EXPECT_EQ(gpu->isUBWCSupportedByGpu(format), 0U) << format;
    }
  }
  EXPECT_EQ(chips, 2);
}

TEST(Compression, OfDepthFormatsIsMissingOnSomeChips) {
  const auto answers = [](bool excluded) {
    const ChipData& chip = chip_where("in or out of the depth exclusion", [=](const ChipData& c) {
      return !c.ubwc.never && c.ubwc.depth_excluded == excluded;
    });
    Gpu gpu(chip.chip_id);
    return std::vector<uint32_t>{gpu->isUBWCSupportedByGpu(40), gpu->isUBWCSupportedByGpu(548),
                                 gpu->isUBWCSupportedByGpu(610), gpu->isUBWCSupportedByGpu(28)};
  };
  EXPECT_THAT(answers(true), testing::ElementsAre(0, 0, 0, 1));
  EXPECT_THAT(answers(false), testing::ElementsAre(1, 1, 1, 1));
}

TEST(Compression, OfYuvFormatsFollowsTheThreeSets) {
  struct Case {
    bool yuv_a, yuv_b, yuv16;
    std::vector<uint32_t> answers;  // for 104, 683, 709
  };
  const Case cases[] = {
      {false, false, false, {0, 0, 0}},
      {true, false, false, {1, 0, 0}},
      {false, true, false, {1, 1, 0}},
      {false, true, true, {1, 1, 1}},
  };
  for (const Case& c : cases) {
    const ChipData& chip = chip_where("in these YUV sets", [&c](const ChipData& row) {
      return !row.ubwc.never && row.ubwc.yuv_a == c.yuv_a && row.ubwc.yuv_b == c.yuv_b &&
             row.ubwc.yuv16 == c.yuv16;
    });
    Gpu gpu(chip.chip_id);
    const std::vector<uint32_t> answers = {gpu->isUBWCSupportedByGpu(104),
                                           gpu->isUBWCSupportedByGpu(683),
                                           gpu->isUBWCSupportedByGpu(709)};
    EXPECT_EQ(answers, c.answers);
  }
}

TEST(Compression, IsNeverOfWideDepthStencilOrOfBlocks) {
  for (const uint32_t family : {5U, 6U, 7U}) {
    Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t format : {20U, 551U, 71U, 98U, 134U, 568U, 645U, 682U}) {
      EXPECT_EQ(gpu->isUBWCSupportedByGpu(format), 0U) << format;
    }
  }
}

TEST(Compression, IsOfNothingAndSilentOnAnUnknownFamily) {
  Gpu gpu(harness::kUnknownChip);
  gpu->get_gpu_pixel_alignment();
  gpu.take_messages();
  for (const int32_t format : format_arguments()) {
    EXPECT_EQ(gpu->isUBWCSupportedByGpu(static_cast<uint32_t>(format)), 0U);
  }
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

}  // namespace
}  // namespace formats_test
