// Chips that lack a property: what its default does to a layout.
#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>

#include "tests/layout/chosen_chips.h"
#include "tests/layout/expected_layouts.h"

namespace layout_test {
namespace {

using harness::message;
using Columns = korvel::ChipColumns;

constexpr char kFdm[] = "compute_fmt_aligned_width_and_height_fdm";

// On a full chip 100 x 50 takes 128 x 64 elements: 32768 bytes, and 4096 bytes of flags in front.

TEST(ChipColumns, WithoutABaseAlignmentNothingTakesBytes) {
  const harness::ChipData& chip = chip_lacking(&Columns::base_alignment);
  const harness::Gpu gpu(chip.chip_id);
  Image image = kTiled100x50;
  image.size_bytes = image.slice_pitch_bytes = 0;
  const Plane plane = {.image = image, .flags = FlagBuffer{.pitch_bytes = 64}};
  expect_layout(gpu, chip, {.flags = kUbwc}, {.levels = {{.planes = {plane}}}},
                "no base alignment");
  expect_layout(gpu, chip, {.flags = kUbwc | kExtra},
                {.levels = {{.planes = {plane}}},
                 .extra = Extra{.size_bytes = kExtraSliceBytes},
                 .surface_bytes = 3 * 4096},  // 8224 to pages
                "with the extra buffer");
}

TEST(ChipColumns, WithoutALinearAlignmentLinearImagesAndFlagBuffersTakeNoBytes) {
  const harness::ChipData& chip = chip_lacking(&Columns::linear_alignment);
  const harness::Gpu gpu(chip.chip_id);
  expect_layout(gpu, chip, {.flags = kUbwc},
                {.levels = {{.size_bytes = 32768,
                             .planes = {{.image = kTiled100x50,
                                         .flags = FlagBuffer{.slice_pitch_bytes = 32768}}}}},
                 .surface_bytes = 32768},
                "tiled");

  Image image = kLinear100x50;
  image.size_bytes = image.slice_pitch_bytes = 0;
  expect_layout(gpu, chip, {.tiling_mode = kLinear},
                {.alignment_bytes = 64, .levels = {{.planes = {{.image = image}}}}}, "linear");
}

TEST(ChipColumns, WithoutATiledAlignmentTheSurfaceIsAlignedTo1) {
  const harness::ChipData& chip = chip_lacking(&Columns::tiled_alignment);
  const harness::Gpu gpu(chip.chip_id);
  expect_layout(gpu, chip, {.flags = kUbwc | kExtra},
                {.alignment_bytes = 1,
                 .levels = {{.size_bytes = 36864, .planes = {tiled_100x50_with_flags()}}},
                 .extra = Extra{.offset_bytes = 36864, .size_bytes = kExtraSliceBytes},
                 .surface_bytes = 36864 + 8224},  // no page
                "no tiled alignment");
}

TEST(ChipColumns, WithoutAPixelAlignmentLinearSurfacesAreAlignedToAnElement) {
  const harness::ChipData& chip = chip_lacking(&Columns::pixel_alignment);
  const harness::Gpu gpu(chip.chip_id);
  expect_layout(gpu, chip, {.tiling_mode = kLinear, .flags = kExtra},
                {.alignment_bytes = 4,
                 .levels = {{.size_bytes = 28672, .planes = {{.image = kLinear100x50}}}},
                 .extra = Extra{.offset_bytes = 28672, .size_bytes = kExtraSliceBytes},
                 .surface_bytes = 28672 + 8224},  // a multiple of 4, none of 64
                "linear");

  // Bytes of an element times samples; elements of 3, 6 and 12 bytes align as 4, 8 and 16 do.
  struct Row {
    uint32_t format;
    uint32_t samples;
    uint32_t alignment_bytes;
  };
  for (const Row& row : {Row{.format = 61, .samples = 1, .alignment_bytes = 1},
                         Row{.format = 508, .samples = 1, .alignment_bytes = 4},  // 3 -> 4
                         Row{.format = 508, .samples = 2, .alignment_bytes = 4 * 2},
                         Row{.format = 523, .samples = 1, .alignment_bytes = 8},     // 6 -> 8
                         Row{.format = 6, .samples = 4, .alignment_bytes = 16 * 4},  // 12 -> 16
                         Row{.format = 2, .samples = 8, .alignment_bytes = 16 * 8},
                         Row{.format = 71, .samples = 1, .alignment_bytes = 8}}) {
    const LayoutMetadata blob =
        laid_out(gpu, {.format = row.format, .samples = row.samples, .tiling_mode = kLinear});
    EXPECT_NUMBER(blob.layout.alignment, row.alignment_bytes) << row.format;
  }
}

TEST(ChipColumns, WithoutAPixelAlignmentBlockWidthsAreNotRounded) {
  // 25 blocks of 100 texels: to tiles of 32 on families 6 and 7; 64 on all full chips.
  const harness::ChipData& chip = chip_lacking(&Columns::pixel_alignment, 6);
  const harness::Gpu gpu(chip.chip_id);
  const LayoutMetadata blob = laid_out(gpu, {.format = 71, .flags = kUbwc});
  EXPECT_NUMBER(blob.layout.level[0].plane[0].image_width, 32);
}

TEST(ChipColumns, WithoutAnAuxAlignmentTheShortestRowsArePaddedToo) {
  // Pairs with 8 samples in tiles of 8 elements: 10 -> 16 elements of 2 bytes, 32 bytes a row. More
  // than 0, so padded to 64; on a full chip 512 bytes go as they are.
  struct Row {
    const harness::ChipData& chip;
    uint32_t width_el;
  };
  for (const Row& row : {Row{.chip = chip_lacking(&Columns::aux_alignment, 6), .width_el = 64},
                         Row{.chip = harness::full_chip(6), .width_el = 16}}) {
    const harness::Gpu gpu(row.chip.chip_id);
    const PlaneLayout plane =
        laid_out(gpu, {.width_px = 10, .format = 68, .samples = 8, .tiling_mode = kLinear})
            .layout.level[0]
            .plane[0];
    EXPECT_NUMBER(plane.image_width, row.width_el);
    EXPECT_NUMBER(plane.image_pitch, row.width_el * 16);  // 2 bytes x 8 samples
  }
}

// The chips that round the flag buffers of a chain to nothing, apart from the rows that say so: this
// list is no copy that is made of them.
constexpr uint32_t kOutsideLevelSizeAlignment[] = {0x06090001, 0x07200010, 0x43010010, 0x430B0000,
                                                   0x44010020, 0x50030010, 0x50060000};

// Three levels of 128 x 64 elements and less, with flags for tiles of 16 x 4: 8 x 16 bytes, 4 x 8,
// 2 x 4, each side raised to 64. In all 168 bytes, or three times 4096; both to pages.
TEST(ChipColumns, ALevelSizeAlignmentRoundsTheFlagBuffersOfAChain) {
  std::size_t chips_outside = 0;
  for (const harness::ChipData& chip : korvel::kChipData) {
    if (chip.ubwc.never) continue;
    SCOPED_TRACE(chip.chip_id);
    const harness::Gpu gpu(chip.chip_id);
    MemoryLayout record{};
    record.levels = 3;
    init_multi_level(gpu, record, {.flags = kUbwc});
    const bool outside =
        std::find(std::begin(kOutsideLevelSizeAlignment), std::end(kOutsideLevelSizeAlignment),
                  chip.chip_id) != std::end(kOutsideLevelSizeAlignment);
    chips_outside += outside ? 1 : 0;
    const uint32_t rounded_bytes = chip.columns.min_level_extent ? 3 * 4096 : 4096;
    for (uint32_t level = 0; level < 3; ++level) {
      EXPECT_NUMBER(record.level[level].plane[0].flag_slice_pitch, outside ? 0 : rounded_bytes);
    }
  }
  EXPECT_EQ(chips_outside, std::size(kOutsideLevelSizeAlignment));
}

TEST(ChipColumns, OthersHaveNoEffectOnOneLevel) {
  for (bool Columns::*column : {&Columns::min_level_extent, &Columns::level_offset_alignment}) {
    const harness::ChipData& chip = chip_lacking(column);
    const harness::Gpu gpu(chip.chip_id);
    expect_layout(gpu, chip, {.flags = kUbwc},
                  {.levels = {{.size_bytes = 36864, .planes = {tiled_100x50_with_flags()}}},
                   .surface_bytes = 36864},
                  "chip " + std::to_string(chip.chip_id));
  }
}

// 100 x 50 elements of 4 bytes, as they are: 400 bytes a row, 20000 in all.
constexpr Image kUnalignedImage = {
    .pitch_bytes = 100 * 4, .element_bytes = 4, .width_el = 100, .height_rows = 50};

TEST(ChipColumns, AChipWithoutRulesKeepsSizesAsTheyAre) {
  // 20000 -> 20480 bytes. Flags for 16 x 4 texels: 13 -> 16 rows of 7 -> 64 bytes, one page.
  const harness::ChipData& chip = unsupported_chip();
  harness::Gpu gpu(chip.chip_id);
  constexpr uint64_t kSlice = 4096 + 20480;
  Image image = kUnalignedImage;
  image.offset_bytes = 4096;
  image.size_bytes = 20480;
  image.slice_pitch_bytes = kSlice;
  expect_layout(gpu, chip, {.flags = kUbwc},
                {.levels = {{.size_bytes = kSlice,
                             .planes = {{.image = image,
                                         .flags = FlagBuffer{.size_bytes = 4096,
                                                             .pitch_bytes = 64,
                                                             .slice_pitch_bytes = kSlice}}}}},
                 .surface_bytes = kSlice},
                "unsupported");
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
  // Bytes are rounded to multiples of 0.
  expect_layout(gpu, chip, {.flags = kUbwc},
                {.alignment_bytes = 1,
                 .levels = {{.planes = {{.image = kUnalignedImage, .flags = FlagBuffer{}}}}}},
                "no column");
}

TEST(ChipColumns, AnUnknownChipIsOfNoFamily) {
  const harness::ChipData no_chip = {};  // family, model and revision 0
  for (const uint32_t failures : {0u, HXL_SIM_FAIL_DEVICE_OPEN}) {
    harness::Gpu gpu(harness::kUnknownChip, failures);
    expect_layout(gpu, no_chip, {.flags = kUbwc | kExtra | kExtended},
                  {.alignment_bytes = 1,
                   .levels = {{.planes = {{.image = kUnalignedImage}}}},
                   .extra = Extra{.size_bytes = kExtraSliceBytes, .extended = 1},
                   .surface_bytes = kExtraSliceBytes},
                  "unknown chip");
    const uint32_t chip_id = failures == 0 ? harness::kUnknownChip : 0;
    std::vector<harness::Message> messages = harness::unknown_chip_messages(chip_id);
    messages.push_back(message(kFdm, "Unknown Chip ID " + std::to_string(chip_id)));
    EXPECT_EQ(gpu.take_messages(), messages);
    // Blocks of 4 x 4 texels and 8 bytes, one by one: 100 / 4 and 50 / 4 up; aligned to one.
    const LayoutMetadata blob =
        laid_out(gpu, {.format = 71, .tiling_mode = kLinear, .flags = kUbwc});
    EXPECT_NUMBER(blob.layout.alignment, 8);
    EXPECT_NUMBER(blob.layout.level[0].plane[0].image_width, 25);
    EXPECT_NUMBER(blob.layout.level[0].plane[0].image_height, 13);
    EXPECT_NUMBER(blob.layout.level[0].plane[0].image_pitch, 25 * 8);
  }
}

}  // namespace
}  // namespace layout_test
