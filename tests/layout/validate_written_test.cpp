// Which of the library's own records its validator accepts, and why it refuses the others.
#include "tests/layout/stored_records.h"

namespace layout_test {
namespace {

using Columns = korvel::ChipColumns;

struct Description {
  int32_t width = 100;
  int32_t height = 50;
  int32_t depth = 1;
  uint32_t format = 28;
  uint32_t samples = 1;
  uint32_t mode = kTiled;
  uint64_t flags = 0;
  uint32_t planes = 1;
};

// The validator's message, "" when it accepts the record; with the UUIDs of the GPU that wrote it.
std::string verdict_on_written(harness::Gpu& gpu, const harness::ChipData& chip,
                               const Description& d) {
  auto blob = canary<LayoutMetadata>();
  EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, d.width, d.height, d.depth, d.format, d.samples,
                                           d.mode, d.flags, d.planes),
            0u);
  (void)gpu.take_messages();  // of chips without rules
  uint8_t device[16];
  uint8_t driver[16];
  EXPECT_EQ(gpu->get_device_uuid(device, 16, chip.family_id, chip.model_code, chip.rev_id), 0);
  EXPECT_EQ(gpu->get_driver_uuid(driver, 16), 0);
  return verdict<Resource>(gpu, blob.layout, 5512, device, driver);
}

uint32_t plane_count(uint32_t format) {
  switch (format) {
    case 103:
    case 104:
    case 105:
    case 106:
    case 110:
    case 504:
    case 505:
    case 506:
    case 619:
    case 647:
    case 654:
    case 660:
    case 709:
    case 712:
    case 717: return 2;
    case 615:
    case 616: return 3;
    default: return 1;
  }
}

bool must_be_tiled(uint32_t format) {
  return format == 20 || format == 40 || format == 45 || format == 55 || format == 501 ||
         (format >= 548 && format <= 553);
}

// Formats without a sample tile on families 6 and 7, whose flag buffers are a division by 0.
bool no_flags(uint32_t family, uint32_t format) {
  if (family == 5) return false;
  return format == 619 || format == 659 ||
         (family == 6 && (format == 658 || (format >= 709 && format <= 711)));
}

TEST(ValidateWritten, EveryFormatOfEveryFamily) {
  for (const uint32_t family : kFamilies) {
    const harness::ChipData& chip =
        harness::chip_where("full, and compressing most", [family](const harness::ChipData& c) {
          return c.family_id == family && c.supported && harness::in_every_column(c.columns) &&
                 !c.ubwc.never && (c.ubwc.yuv_a || c.ubwc.yuv_b) &&
                 (family != 7 || harness::model_of(c).max_surface_pitch != 0);
        });
    harness::Gpu gpu(chip.chip_id);
    for (uint32_t format = 1; format <= 721; ++format) {
      const uint32_t planes = plane_count(format);
      const uint64_t flags = LAYOUT_FLAG_EXTRA | LAYOUT_FLAG_EXTENDED |
                             (no_flags(family, format) ? 0 : LAYOUT_FLAG_UBWC);
      EXPECT_EQ(verdict_on_written(
                    gpu, chip, {.depth = 3, .format = format, .flags = flags, .planes = planes}),
                "")
          << family << ": " << format;
      if (must_be_tiled(format)) continue;
      EXPECT_EQ(verdict_on_written(
                    gpu, chip, {.depth = 3, .format = format, .mode = kLinear, .planes = planes}),
                "")
          << family << ": " << format;
    }
  }
}

TEST(ValidateWritten, SamplesAndSizes) {
  for (const uint32_t family : kFamilies) {
    const harness::ChipData& chip = harness::full_chip(family);
    harness::Gpu gpu(chip.chip_id);
    for (const uint32_t samples : {1u, 2u, 4u, 8u}) {
      for (const int32_t size : {1, 16, 63, 64, 65, 2049}) {
        for (const int32_t depth : {1, 2, 17}) {
          for (const uint32_t mode : {kLinear, kTiled}) {
            const Description d{.width = size,
                                .height = size,
                                .depth = depth,
                                .samples = samples,
                                .mode = mode,
                                .flags = mode == kTiled ? LAYOUT_FLAG_UBWC : 0};
            EXPECT_EQ(verdict_on_written(gpu, chip, d), "")
                << family << ": " << size << ", " << depth << ", " << samples;
          }
        }
      }
    }
    EXPECT_EQ(verdict_on_written(gpu, chip, {.width = 1, .height = 1, .depth = 2048}), "");
    // Rows that the pitch limit cuts below the width are described as they are stored.
    EXPECT_EQ(verdict_on_written(gpu, chip, {.width = 20000, .mode = kLinear}), "");
  }
}

TEST(ValidateWritten, WhatTheWriterAllowsAndTheValidatorRefuses) {
  struct Row {
    Description description;
    const char* text;
  };
  const Row rows[] = {
      // The writer gives linear surfaces flag buffers too.
      {{.mode = kLinear, .flags = LAYOUT_FLAG_UBWC},
       "Metadata level flagbuffer enabled but tiling is disabled {level 0, plane 0}"},
      // Other modes have an alignment of 0,
      {{.mode = 2}, "Metadata alignment is not pot 0"},
      {{.mode = 0xFFFFFFFF}, "Metadata alignment is not pot 0"},
      // more than 2048 slices are laid out,
      {{.depth = 2049}, "Metadata level slices is invalid value {level 0, slices 2049}"},
      // and surfaces of no planes, of no bytes.
      {{.planes = 0}, "Metadata level size is invalid value {level 0, size 0, surface size 5512}"},
      // 2^32 bytes that wrapped to 0 in the slice,
      {{.width = 32768, .height = 32768},
       "Metadata level size is invalid value {level 0, size 0, surface size 5512}"},
      // and 4 x 2^30 that did not, but are 0 to the validator; 5 x 2^30 are 2^30.
      {{.width = 16384, .height = 16384, .depth = 4},
       "Metadata level image buffer exceeds surface bounds {level 0, plane 0, image offset 0, "
       "image slice pitch 1073741824, slices 4, image size 1073741824, surface size 0}"},
      {{.width = 16384, .height = 16384, .depth = 5},
       "Metadata level image buffer exceeds surface bounds {level 0, plane 0, image offset 0, "
       "image slice pitch 1073741824, slices 5, image size 1073741824, surface size 1073741824}"},
      // 2 and 3 x 2^30 are negative there, which bounds nothing.
      {{.width = 16384, .height = 16384, .depth = 2}, ""},
      {{.width = 16384, .height = 16384, .depth = 3}, ""},
      // 65536 x 4112 x 16 = 2^32 + 2^24 bytes, of which 2^24 are counted: pitch x height wraps
      // alike.
      {{.width = 65536, .height = 4112, .format = 2}, ""},
  };
  for (const uint32_t family : kFamilies) {
    const harness::ChipData& chip = harness::full_chip(family);
    harness::Gpu gpu(chip.chip_id);
    for (const Row& row : rows) {
      EXPECT_EQ(verdict_on_written(gpu, chip, row.description), row.text) << family;
    }
  }
}

TEST(ValidateWritten, ChipsOutsideAColumn) {
  const auto verdict_of = [](const harness::ChipData& chip, const Description& d) {
    harness::Gpu gpu(chip.chip_id);
    return verdict_on_written(gpu, chip, d);
  };
  const Description tiled{.flags = LAYOUT_FLAG_UBWC};
  const Description linear{.mode = kLinear};
  const std::string no_bytes =
      "Metadata level size is invalid value {level 0, size 0, surface size 5512}";
  // Images of no bytes.
  EXPECT_EQ(verdict_of(chip_lacking(&Columns::base_alignment), tiled), no_bytes);
  EXPECT_EQ(verdict_of(chip_lacking(&Columns::base_alignment), linear), no_bytes);
  EXPECT_EQ(verdict_of(chip_lacking(&Columns::linear_alignment), linear), no_bytes);
  // Flag buffers whose rows have none.
  EXPECT_EQ(verdict_of(chip_lacking(&Columns::linear_alignment), tiled),
            "Metadata level flagbuffer pitch mismatch {level 0, plane 0, flag pitch 0, flag slice "
            "pitch 32768}");
  EXPECT_EQ(verdict_of(chip_lacking(&Columns::linear_alignment), {}), "");
  // The others are laid out otherwise, but well.
  for (bool Columns::*column :
       {&Columns::tiled_alignment, &Columns::pixel_alignment, &Columns::aux_alignment,
        &Columns::min_level_extent, &Columns::level_offset_alignment}) {
    EXPECT_EQ(verdict_of(chip_lacking(column), tiled), "");
    EXPECT_EQ(verdict_of(chip_lacking(column), linear), "");
  }
}

TEST(ValidateWritten, ChipsWithoutRules) {
  const harness::ChipData& chip =
      harness::chip_where("in every column and unsupported", [](const harness::ChipData& c) {
        return !c.supported && harness::in_every_column(c.columns) && !c.ubwc.never;
      });
  harness::Gpu gpu(chip.chip_id);
  EXPECT_EQ(verdict_on_written(gpu, chip, {.flags = LAYOUT_FLAG_UBWC}), "");
  EXPECT_EQ(verdict_on_written(gpu, chip, {.mode = kLinear}), "");
}

TEST(ValidateWritten, UnknownChips) {
  harness::Gpu gpu(harness::kUnknownChip);
  const harness::ChipData nothing{};  // family, model and revision 0
  EXPECT_EQ(verdict_on_written(gpu, nothing, {}),
            "Metadata level size is invalid value {level 0, size 0, surface size 5512}");
}

TEST(ValidateWritten, ModelsWithoutAPitchLimit) {
  // Padded linear rows are 0 wide: no bytes.
  const harness::ChipData& chip =
      harness::chip_where("of family 7 and without a pitch limit", [](const harness::ChipData& c) {
        return c.family_id == 7 && c.supported && harness::in_every_column(c.columns) &&
               harness::model_of(c).max_surface_pitch == 0;
      });
  harness::Gpu gpu(chip.chip_id);
  EXPECT_EQ(verdict_on_written(gpu, chip, {.width = 129, .mode = kLinear}),
            "Metadata level size is invalid value {level 0, size 0, surface size 5512}");
  EXPECT_EQ(verdict_on_written(gpu, chip, {.width = 128, .mode = kLinear}), "");  // 512 bytes
}

TEST(ValidateWritten, AnotherGpuOrDriverIsRefused) {
  const harness::ChipData& chip = harness::full_chip(6);
  harness::Gpu gpu(chip.chip_id);
  harness::ChipData other = chip;
  other.rev_id += 1;
  EXPECT_THAT(verdict_on_written(gpu, other, {}),
              testing::StartsWith("Metadata device version mismatch {store uuid 525a0000-0600-"));
}

TEST(ValidateWritten, MipChains) {
  for (const uint32_t family : kFamilies) {
    const harness::ChipData& chip = harness::full_chip(family);
    harness::Gpu gpu(chip.chip_id);
    uint8_t device[16];
    uint8_t driver[16];
    EXPECT_EQ(gpu->get_device_uuid(device, 16, chip.family_id, chip.model_code, chip.rev_id), 0);
    EXPECT_EQ(gpu->get_driver_uuid(driver, 16), 0);
    struct Row {
      uint32_t format;
      uint32_t mode;
      uint64_t flags;
      uint32_t planes;
    };
    for (const Row& row :
         {Row{28, kTiled, 0, 1}, Row{28, kTiled, LAYOUT_FLAG_UBWC, 1}, Row{28, kLinear, 0, 1},
          Row{103, kTiled, LAYOUT_FLAG_UBWC, 2}, Row{71, kTiled, 0, 1}}) {
      for (const uint32_t levels : {1u, 7u, 15u}) {
        LayoutMetadata blob{};
        EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 100, 100, 3, row.format, 1, row.mode,
                                                 row.flags, row.planes),
                  0u);
        blob.layout.levels = levels;
        gpu->korvel_init_multi_level_surface(&blob.layout, 100, 100, 3, row.format, 1, row.mode,
                                             row.flags, row.planes);
        EXPECT_EQ(verdict<Resource>(gpu, blob.layout, 5512, device, driver), "")
            << row.format << ", " << levels;
      }
    }
  }
}

}  // namespace
}  // namespace layout_test
