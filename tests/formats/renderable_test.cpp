// Which formats a GPU renders to.

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
    "2-4 10-14 16-18 24-32 34-38 41-43 49-52 54 56-59 61-65 85-88 90-93 101-104 106 107 115 502 "
    "503 506 507 509 511 512 514 515 517-520 522 524 525 527 528 530 532 535 537-547 610-622 625 "
    "647 648 650 652 653 660 678";
const IdList kOnFamily5 = "663 664 668 669";
const IdList kOnFamilies67 = "67 116 117 118 646";
const IdList kOnFamily7 = "683 684";
const IdList kDepthStencilOnly = "20 40 45 55 548 551 552 553";
const IdList kColourOnly = "508";
const IdList kYuv16 = "709 712";
const IdList kP016 = "105 717";

uint32_t expected(const ChipFormats& chip, int32_t format, int32_t depth_stencil_use) {
  if (format < 0) return 0;
  const auto id = static_cast<uint32_t>(format);
  if (kEverywhere.has(id)) return 1;
  if (kDepthStencilOnly.has(id)) return depth_stencil_use != 0 ? 1 : 0;
  if (kColourOnly.has(id)) return depth_stencil_use == 0 ? 1 : 0;
  if (chip.family == 5) return kOnFamily5.has(id) ? 1 : 0;
  if (kOnFamilies67.has(id)) return 1;
  if (chip.family != 7) return 0;
  if (kYuv16.has(id)) return chip.yuv16_ext ? 1 : 0;
  if (kP016.has(id)) return chip.p016 ? 1 : 0;
  return kOnFamily7.has(id) ? 1 : 0;
}

TEST(Renderable, IsExactlyTheListedFormatsOnEveryChip) {
  const std::vector<int32_t> formats = format_arguments();
  for (const harness::ChipData& row : korvel::kChipData) {
    const ChipFormats chip(row);
    Gpu gpu(row.chip_id);
    for (const int32_t format : formats) {
      for (const int32_t use : kUsages) {
        const uint32_t answer = renderable(gpu, {.format = format, .depth_stencil_use = use});
        if (answer == expected(chip, format, use)) continue;
        ADD_FAILURE() << "chip " << std::hex << row.chip_id << std::dec << " format " << format
                      << " depth_stencil_use " << use << ": expected "
                      << expected(chip, format, use) << ", got " << answer;
      }
    }
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

TEST(Renderable, DepthFormatOnlyAsADepthTarget) {
  for (const uint32_t family : {5U, 6U, 7U}) {
    Gpu gpu(harness::full_chip(family).chip_id);
    EXPECT_NUMBER(renderable(gpu, {.format = kDepth32, .depth_stencil_use = 1}), 1) << family;
    EXPECT_NUMBER(renderable(gpu, {.format = kDepth32, .depth_stencil_use = 0}), 0) << family;
  }
}

TEST(Renderable, ThreeByteColourOnlyAsAColourTarget) {
  for (const uint32_t family : {5U, 6U, 7U}) {
    Gpu gpu(harness::full_chip(family).chip_id);
    EXPECT_NUMBER(renderable(gpu, {.format = kRgb8, .depth_stencil_use = 0}), 1) << family;
    EXPECT_NUMBER(renderable(gpu, {.format = kRgb8, .depth_stencil_use = 1}), 0) << family;
  }
}

TEST(Renderable, SharedExponentIsOnFamilies6And7Only) {
  for (const uint32_t family : {5U, 6U, 7U}) {
    const Gpu gpu(harness::full_chip(family).chip_id);
    EXPECT_NUMBER(renderable(gpu, {.format = kSharedExponent}), family == 5 ? 0 : 1) << family;
  }
}

TEST(Renderable, SixteenBitYuvFollowsTheModelOnFamily7) {
  const auto family7_chip = [](bool yuv16_ext, bool p016) -> const harness::ChipData& {
    return harness::chip_where("a family 7 chip with these YUV formats", [=](const auto& chip) {
      const harness::ModelData& model = harness::model_of(chip);
      return chip.family_id == 7 && model.yuv16_ext == yuv16_ext && model.p016 == p016;
    });
  };
  struct Case {
    bool yuv16_ext, p016;
  };
  for (const Case c :
       {Case{.yuv16_ext = false, .p016 = false}, Case{.yuv16_ext = true, .p016 = false},
        Case{.yuv16_ext = true, .p016 = true}}) {
    Gpu gpu(family7_chip(c.yuv16_ext, c.p016).chip_id);
    const auto expect_renderable = [&](int32_t format, bool expected_answer) {
      for (const int32_t use : {0, 1}) {
        EXPECT_NUMBER(renderable(gpu, {.format = format, .depth_stencil_use = use}),
                      expected_answer ? 1 : 0)
            << "format " << format << ", depth_stencil_use " << use;
      }
    };
    expect_renderable(709, c.yuv16_ext);
    expect_renderable(712, c.yuv16_ext);
    expect_renderable(105, c.p016);
    expect_renderable(717, c.p016);
    expect_renderable(710, false);  // a view of one plane
  }
}

TEST(Renderable, IsNothingOnAnUnknownFamilyAndReportsEveryCall) {
  Gpu gpu(harness::kUnknownChip);
  gpu->get_gpu_pixel_alignment();
  gpu.take_messages();
  for (const int32_t format : {28, 0, -1, 800, INT_MIN, INT_MAX}) {
    for (const int32_t use : kUsages) {
      EXPECT_NUMBER(renderable(gpu, {.format = format, .depth_stencil_use = use}), 0) << format;
      EXPECT_THAT(gpu.take_messages(),
                  ElementsAre(message("isFormatRenderableByGpu", "Unknown Family ID 0")));
    }
  }
}

TEST(Renderable, ReportsTheFamilyAfterTheIdentification) {
  Gpu gpu(harness::full_chip(7).chip_id, HXL_SIM_FAIL_GETINFO);
  EXPECT_NUMBER(renderable(gpu, {.format = kRgba8}), 0);
  EXPECT_THAT(gpu.take_messages(),
              ElementsAre(message("korvel_get_family_id", "Unknown HXL chip ID 0"),
                          message("korvel_get_chip_id", "Unknown HXL chip ID 0"),
                          message("korvel_get_rev_id", "Unknown HXL chip ID 0"),
                          message("isFormatRenderableByGpu", "Unknown Family ID 0")));
}

}  // namespace
}  // namespace formats_test
