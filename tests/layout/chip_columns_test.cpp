// Chips that lack a property: what its default does to a layout.
#include "tests/layout/layout_records.h"

namespace layout_test {
namespace {

using harness::message;
using Columns = korvel::ChipColumns;

constexpr uint64_t kUbwc = LAYOUT_FLAG_UBWC;
constexpr uint64_t kExtra = LAYOUT_FLAG_EXTRA;
constexpr char kFdm[] = "compute_fmt_aligned_width_and_height_fdm";

struct Surface {
  int32_t width = 100;
  int32_t height = 50;
  int32_t depth = 1;
  uint32_t format = 28;
  uint32_t samples = 1;
  uint32_t mode = kTiled;
  uint64_t flags = kUbwc;
  uint32_t planes = 1;
};

LayoutMetadata laid_out(const harness::Gpu& gpu, const Surface& s) {
  auto blob = canary<LayoutMetadata>();
  EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, s.width, s.height, s.depth, s.format, s.samples,
                                           s.mode, s.flags, s.planes),
            0u);
  return blob;
}

// As on a full chip: 128 x 64 elements, flags of 64 bytes a row.
//   image 32768 bytes, flags 4096, together 36864.

TEST(ChipColumns, WithoutABaseAlignmentNothingTakesBytes) {
  const harness::ChipData& chip = chip_lacking(&Columns::base_alignment);
  const harness::Gpu gpu(chip.chip_id);
  auto expected = canary<LayoutMetadata>();
  put_head(expected, chip, 28, 1, 4096);
  put_level(expected.layout.level[0], 1, 1, 0, 1);
  put_image(expected.layout.level[0].plane[0], {0, 0, 512, 0, 4, 128, 64});
  put_flags(expected.layout.level[0].plane[0], {0, 0, 64, 0});
  put_no_extra(expected.layout);
  expected.layout.total_size = 5512;
  expect_same_bytes(laid_out(gpu, {}), expected, "no base alignment");

  put_extra(expected.layout, 0, 8224, 0);
  expected.layout.total_size = 5512 + 12288;
  expect_same_bytes(laid_out(gpu, {.flags = kUbwc | kExtra}), expected, "with the extra buffer");
}

TEST(ChipColumns, WithoutALinearAlignmentLinearImagesAndFlagBuffersTakeNoBytes) {
  const harness::ChipData& chip = chip_lacking(&Columns::linear_alignment);
  const harness::Gpu gpu(chip.chip_id);
  auto expected = canary<LayoutMetadata>();
  put_head(expected, chip, 28, 1, 4096);
  put_level(expected.layout.level[0], 1, 1, 32768, 1);
  put_image(expected.layout.level[0].plane[0], {0, 32768, 512, 32768, 4, 128, 64});
  put_flags(expected.layout.level[0].plane[0], {0, 0, 0, 32768});
  put_no_extra(expected.layout);
  expected.layout.total_size = 5512 + 32768;
  expect_same_bytes(laid_out(gpu, {}), expected, "tiled");

  expected = canary<LayoutMetadata>();
  put_head(expected, chip, 28, 1, 64);
  put_level(expected.layout.level[0], 1, 0, 0, 1);
  put_image(expected.layout.level[0].plane[0], {0, 0, 512, 0, 4, 128, 50});
  put_no_extra(expected.layout);
  expected.layout.total_size = 5512;
  expect_same_bytes(laid_out(gpu, {.mode = kLinear, .flags = 0}), expected, "linear");
}

TEST(ChipColumns, WithoutATiledAlignmentTheSurfaceIsAlignedTo1) {
  const harness::ChipData& chip = chip_lacking(&Columns::tiled_alignment);
  const harness::Gpu gpu(chip.chip_id);
  auto expected = canary<LayoutMetadata>();
  put_head(expected, chip, 28, 1, 1);
  put_level(expected.layout.level[0], 1, 1, 36864, 1);
  put_image(expected.layout.level[0].plane[0], {4096, 32768, 512, 36864, 4, 128, 64});
  put_flags(expected.layout.level[0].plane[0], {0, 4096, 64, 36864});
  put_extra(expected.layout, 36864, 8224, 0);
  expected.layout.total_size = 5512 + 45088;
  expect_same_bytes(laid_out(gpu, {.flags = kUbwc | kExtra}), expected, "no tiled alignment");
}

TEST(ChipColumns, WithoutAPixelAlignmentLinearSurfacesAreAlignedToAnElement) {
  const harness::ChipData& chip = chip_lacking(&Columns::pixel_alignment);
  const harness::Gpu gpu(chip.chip_id);
  auto expected = canary<LayoutMetadata>();
  put_head(expected, chip, 28, 1, 4);
  put_level(expected.layout.level[0], 1, 0, 28672, 1);
  put_image(expected.layout.level[0].plane[0], {0, 28672, 512, 28672, 4, 128, 50});
  put_extra(expected.layout, 28672, 8224, 0);
  expected.layout.total_size = 5512 + 36896;  // no multiple of 64
  expect_same_bytes(laid_out(gpu, {.mode = kLinear, .flags = kExtra}), expected, "linear");

  struct Row {
    uint32_t format;
    uint32_t samples;
    uint32_t alignment;
  };
  for (const Row& row : {Row{61, 1, 1}, Row{508, 1, 4}, Row{508, 2, 8}, Row{523, 1, 8},
                         Row{6, 4, 64}, Row{2, 8, 128}, Row{71, 1, 8}}) {
    const LayoutMetadata blob =
        laid_out(gpu, {.format = row.format, .samples = row.samples, .mode = kLinear, .flags = 0});
    EXPECT_EQ(blob.layout.alignment, row.alignment) << row.format;
  }
}

TEST(ChipColumns, WithoutAPixelAlignmentBlockWidthsAreNotRounded) {
  // 25 blocks of 100 texels: to tiles of 32 on families 6 and 7; 64 on all full chips.
  const harness::ChipData& chip = chip_lacking(&Columns::pixel_alignment, 6);
  const harness::Gpu gpu(chip.chip_id);
  EXPECT_EQ(laid_out(gpu, {.format = 71}).layout.level[0].plane[0].image_width, 32u);
}

TEST(ChipColumns, WithoutAnAuxAlignmentTheShortestRowsArePaddedToo) {
  // Pairs with 8 samples in tiles of 8 elements: 10 -> 16 elements of 2 bytes, 32 bytes a row. More
  // than 0, so padded to 64; on a full chip 512 bytes go as they are.
  struct Row {
    const harness::ChipData& chip;
    uint32_t width;
  };
  for (const Row& row :
       {Row{chip_lacking(&Columns::aux_alignment, 6), 64}, Row{harness::full_chip(6), 16}}) {
    const harness::Gpu gpu(row.chip.chip_id);
    const PlaneLayout plane =
        laid_out(gpu, {.width = 10, .format = 68, .samples = 8, .mode = kLinear, .flags = 0})
            .layout.level[0]
            .plane[0];
    EXPECT_EQ(plane.image_width, row.width);
    EXPECT_EQ(plane.image_pitch, row.width * 16);
  }
}

TEST(ChipColumns, OthersHaveNoEffectOnOneLevel) {
  for (bool Columns::*column : {&Columns::min_level_extent, &Columns::level_offset_alignment}) {
    const harness::ChipData& chip = chip_lacking(column);
    const harness::Gpu gpu(chip.chip_id);
    auto expected = canary<LayoutMetadata>();
    put_head(expected, chip, 28, 1, 4096);
    put_level(expected.layout.level[0], 1, 1, 36864, 1);
    put_image(expected.layout.level[0].plane[0], {4096, 32768, 512, 36864, 4, 128, 64});
    put_flags(expected.layout.level[0].plane[0], {0, 4096, 64, 36864});
    put_no_extra(expected.layout);
    expected.layout.total_size = 5512 + 36864;
    expect_same_bytes(laid_out(gpu, {}), expected, "chip " + std::to_string(chip.chip_id));
  }
}

TEST(ChipColumns, AChipWithoutRulesKeepsSizesAsTheyAre) {
  // Identified, in every column, compressing, but not supported: 100 x 50, 20000 -> 20480 bytes;
  // flags 13 -> 16 rows of 7 -> 64 bytes.
  const harness::ChipData& chip =
      harness::chip_where("in every column and unsupported", [](const harness::ChipData& c) {
        return !c.supported && harness::in_every_column(c.columns) && !c.ubwc.never;
      });
  harness::Gpu gpu(chip.chip_id);
  auto expected = canary<LayoutMetadata>();
  put_head(expected, chip, 28, 1, 4096);
  put_level(expected.layout.level[0], 1, 1, 24576, 1);
  put_image(expected.layout.level[0].plane[0], {4096, 20480, 400, 24576, 4, 100, 50});
  put_flags(expected.layout.level[0].plane[0], {0, 4096, 64, 24576});
  put_no_extra(expected.layout);
  expected.layout.total_size = 5512 + 24576;
  expect_same_bytes(laid_out(gpu, {}), expected, "unsupported");
  EXPECT_EQ(gpu.take_messages(), std::vector<harness::Message>{message(
                                     kFdm, "Unknown Chip ID " + std::to_string(chip.chip_id))});
}

TEST(ChipColumns, AnIdentifiedChipInNoColumn) {
  const harness::ChipData& chip =
      harness::chip_where("in no column", [](const harness::ChipData& c) {
        return !c.supported && !c.ubwc.never && !c.columns.base_alignment &&
               !c.columns.linear_alignment && !c.columns.pixel_alignment &&
               !c.columns.tiled_alignment;
      });
  const harness::Gpu gpu(chip.chip_id);
  auto expected = canary<LayoutMetadata>();
  put_head(expected, chip, 28, 1, 1);
  put_level(expected.layout.level[0], 1, 1, 0, 1);
  put_image(expected.layout.level[0].plane[0], {0, 0, 400, 0, 4, 100, 50});
  put_flags(expected.layout.level[0].plane[0], {0, 0, 0, 0});
  put_no_extra(expected.layout);
  expected.layout.total_size = 5512;
  expect_same_bytes(laid_out(gpu, {}), expected, "no column");
}

TEST(ChipColumns, AnUnknownChipIsOfNoFamily) {
  for (const uint32_t failures : {0u, HXL_SIM_FAIL_DEVICE_OPEN}) {
    harness::Gpu gpu(harness::kUnknownChip, failures);
    auto expected = canary<LayoutMetadata>();
    put_head(expected, 0, 0, 0, 28, 1, 1);
    put_level(expected.layout.level[0], 1, 1, 0, 1);
    put_image(expected.layout.level[0].plane[0], {0, 0, 400, 0, 4, 100, 50});
    put_extra(expected.layout, 0, 8224, 1);
    expected.layout.total_size = 5512 + 8224;
    expect_same_bytes(laid_out(gpu, {.flags = kUbwc | kExtra | LAYOUT_FLAG_EXTENDED}), expected,
                      "unknown chip");
    const uint32_t chip_id = failures == 0 ? harness::kUnknownChip : 0;
    std::vector<harness::Message> messages = harness::unknown_chip_messages(chip_id);
    messages.push_back(message(kFdm, "Unknown Chip ID " + std::to_string(chip_id)));
    EXPECT_EQ(gpu.take_messages(), messages);
    // Blocks: one by one, by an alignment of 1; linear alignment: an element.
    const LayoutMetadata blob = laid_out(gpu, {.format = 71, .mode = kLinear});
    EXPECT_EQ(blob.layout.alignment, 8u);
    EXPECT_EQ(blob.layout.level[0].plane[0].image_width, 25u);
    EXPECT_EQ(blob.layout.level[0].plane[0].image_height, 13u);
    EXPECT_EQ(blob.layout.level[0].plane[0].image_pitch, 200u);
  }
}

}  // namespace
}  // namespace layout_test
