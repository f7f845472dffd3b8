// Which formats a GPU samples from.

#include <gmock/gmock.h>

#include "tests/formats/format_calls.h"
#include "tests/formats/id_list.h"
#include "tests/formats/predicate_cases.h"
#include "tests/harness/chips.h"
#include "tests/harness/gpu.h"

namespace formats_test {
namespace {

using harness::Gpu;
using harness::message;
using testing::ElementsAre;
using testing::IsEmpty;

const IdList kEverywhere =
    "2-4 10-14 16-18 21 22 24-26 28-32 34-38 41-43 49-52 54 56-59 61-65 67-88 91 93-100 103 104 "
    "107 115 133 137 141 145 149 153 157 161 165 169 173 177 181 185 502 503 506 507 509 511 512 "
    "514 515 517-520 522 524 525 527 528 530 532 535 537-547 568-622 625-648 650 652-664 678 681 "
    "682";
const IdList kOnFamily5 = "676 677";
const IdList kOnFamilies67 = "116 117 118 668 669 679 680";
const IdList kOnFamily7 = "683 684";
const IdList kDepthStencilViews = "20 40 45 46 47 55 548 549 551 552 553";
const IdList kDepthStencilViewsOnFamily5 = "668 669";
const IdList kSingleSampledColour = "508";
const IdList kYuv16 = "709-714";
const IdList kP016 = "105 715-721";

// What two models of family 5 lack.
const IdList kExcluded = "80 81 83 84 95 96 626-635";

constexpr uint32_t kSampleCounts[] = {0, 1, 2, 3, 4, 0xFFFFFFFF};

bool family5_has(uint32_t id, bool view) {
  return kOnFamily5.has(id) || (view && kDepthStencilViewsOnFamily5.has(id));
}

bool later_family_has(const ChipFormats& chip, uint32_t id) {
  if (kOnFamilies67.has(id)) return true;
  if (chip.family != 7) return false;
  if (kYuv16.has(id)) return chip.yuv16_ext;
  if (kP016.has(id)) return chip.p016;
  return kOnFamily7.has(id);
}

uint32_t expected(const ChipFormats& chip, int32_t format, uint32_t samples, int32_t view) {
  if (format < 0) return 0;
  const auto id = static_cast<uint32_t>(format);
  if (chip.family == 5 && chip.sample_excluded && kExcluded.has(id)) return 0;
  if (kEverywhere.has(id)) return 1;
  if (kDepthStencilViews.has(id)) return view != 0 ? 1 : 0;
  if (kSingleSampledColour.has(id)) return samples < 2 && view == 0 ? 1 : 0;
  const bool has = chip.family == 5 ? family5_has(id, view != 0) : later_family_has(chip, id);
  return has ? 1 : 0;
}

TEST(Sampleable, IsExactlyTheListedFormatsOnEveryChip) {
  const std::vector<int32_t> formats = format_arguments();
  for (const harness::ChipData& row : korvel::kChipData) {
    const ChipFormats chip(row);
    Gpu gpu(row.chip_id);
    for (const int32_t format : formats) {
      for (const uint32_t samples : kSampleCounts) {
        for (const int32_t view : kUsages) {
          const uint32_t answer = sampleable(
              gpu, {.format = format, .sample_count = samples, .depth_stencil_view = view});
          if (answer == expected(chip, format, samples, view)) continue;
          ADD_FAILURE() << "chip " << std::hex << row.chip_id << std::dec << " format " << format
                        << " sample_count " << samples << " depth_stencil_view " << view
                        << ": expected " << expected(chip, format, samples, view) << ", got "
                        << answer;
        }
      }
    }
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

TEST(Sampleable, DepthFormatOnlyAsADepthView) {
  for (const uint32_t family : {5U, 6U, 7U}) {
    const Gpu gpu(harness::full_chip(family).chip_id);
    EXPECT_NUMBER(sampleable(gpu, {.format = kDepth32, .depth_stencil_view = 1}), 1) << family;
    EXPECT_NUMBER(sampleable(gpu, {.format = kDepth32, .depth_stencil_view = 0}), 0) << family;
  }
}

TEST(Sampleable, ThreeByteColourOnlyWithOneSampleAndNotAsADepthView) {
  for (const uint32_t family : {5U, 6U, 7U}) {
    const Gpu gpu(harness::full_chip(family).chip_id);
    EXPECT_NUMBER(sampleable(gpu, {.format = kRgb8, .sample_count = 0}), 1) << family;
    EXPECT_NUMBER(sampleable(gpu, {.format = kRgb8, .sample_count = 1}), 1) << family;
    EXPECT_NUMBER(sampleable(gpu, {.format = kRgb8, .sample_count = 2}), 0) << family;
    EXPECT_NUMBER(sampleable(gpu, {.format = kRgb8, .sample_count = 0x80000000}), 0) << family;
    EXPECT_NUMBER(sampleable(gpu, {.format = kRgb8, .depth_stencil_view = 1}), 0) << family;
  }
}

TEST(Sampleable, FamiliesDifferInFourVideoFormats) {
  struct Row {
    int32_t format;
    bool on_5;
    bool on_5_as_depth_stencil;
    bool on_6_and_7;  // whatever the view
  };
  constexpr Row kRows[] = {
      {.format = 668, .on_5 = false, .on_5_as_depth_stencil = true, .on_6_and_7 = true},
      {.format = 669, .on_5 = false, .on_5_as_depth_stencil = true, .on_6_and_7 = true},
      {.format = 676, .on_5 = true, .on_5_as_depth_stencil = true, .on_6_and_7 = false},
      {.format = 677, .on_5 = true, .on_5_as_depth_stencil = true, .on_6_and_7 = false},
  };
  for (const uint32_t family : {5U, 6U, 7U}) {
    const Gpu gpu(harness::full_chip(family).chip_id);
    for (const Row& row : kRows) {
      const bool five = family == 5;
      EXPECT_NUMBER(sampleable(gpu, {.format = row.format, .depth_stencil_view = 0}),
                    (five ? row.on_5 : row.on_6_and_7) ? 1 : 0)
          << "family " << family << ", format " << row.format;
      EXPECT_NUMBER(sampleable(gpu, {.format = row.format, .depth_stencil_view = 1}),
                    (five ? row.on_5_as_depth_stencil : row.on_6_and_7) ? 1 : 0)
          << "family " << family << ", format " << row.format;
    }
  }
}

// 4 x 4 texels: 133 is the typeless form, 134 and 135 the others, and 136 is no format.
TEST(Sampleable, AstcOnlyInItsTypelessForm) {
  for (const uint32_t family : {5U, 6U, 7U}) {
    const Gpu gpu(harness::full_chip(family).chip_id);
    EXPECT_NUMBER(sampleable(gpu, {.format = 133}), 1) << family;
    for (const int32_t format : {134, 135, 136}) {
      EXPECT_NUMBER(sampleable(gpu, {.format = format}), 0) << family << ": " << format;
    }
  }
}

TEST(Sampleable, TwoModelsOfFamily5LackSomeBlockFormats) {
  const harness::ChipData& chip =
      harness::chip_where("of a model without some block formats", [](const auto& c) {
        return c.family_id == 5 && harness::model_of(c).family5_sample_excluded;
      });
  const Gpu gpu(chip.chip_id);
  for (const int32_t format : {80, 81, 83, 84, 95, 96, 626, 630, 635}) {
    EXPECT_NUMBER(sampleable(gpu, {.format = format}), 0) << "format " << format;
  }
  for (const int32_t format : {79, 82, 85, 94, 97, 625, 636}) {
    EXPECT_NUMBER(sampleable(gpu, {.format = format}), 1) << "format " << format;
  }
}

TEST(Sampleable, IsNothingOnAnUnknownFamilyAndReportsEveryCall) {
  Gpu gpu(harness::kUnknownChip);
  gpu->get_gpu_pixel_alignment();
  gpu.take_messages();
  for (const int32_t format : {28, 0, -1, 800, INT_MIN, INT_MAX}) {
    for (const uint32_t samples : kSampleCounts) {
      EXPECT_NUMBER(sampleable(gpu, {.format = format, .sample_count = samples}), 0) << format;
      EXPECT_THAT(gpu.take_messages(),
                  ElementsAre(message("isFormatSampleableByGpu", "Unknown Family ID 0")));
    }
  }
}

TEST(Sampleable, ReportsTheFamilyAfterTheIdentification) {
  Gpu gpu(harness::full_chip(7).chip_id, HXL_SIM_FAIL_DEVICE_OPEN);
  EXPECT_NUMBER(sampleable(gpu, {.format = kRgba8}), 0);
  EXPECT_THAT(gpu.take_messages(),
              ElementsAre(message("korvel_get_family_id", "Unknown HXL chip ID 0"),
                          message("korvel_get_chip_id", "Unknown HXL chip ID 0"),
                          message("korvel_get_rev_id", "Unknown HXL chip ID 0"),
                          message("isFormatSampleableByGpu", "Unknown Family ID 0")));
}

}  // namespace
}  // namespace formats_test
