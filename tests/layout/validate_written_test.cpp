// Which of the library's own records its validator accepts, and why it refuses the others.
#include "tests/layout/chosen_chips.h"
#include "tests/layout/expected_layouts.h"
#include "tests/layout/stored_records.h"

namespace layout_test {
namespace {

using Columns = korvel::ChipColumns;

// The UUIDs that the library makes for a chip.
Uuids uuids_of(const harness::Gpu& gpu, const harness::ChipData& chip) {
  Uuids uuids;
  EXPECT_NUMBER(
      gpu->get_device_uuid(uuids.device, 16, chip.family_id, chip.model_code, chip.rev_id), 0);
  EXPECT_NUMBER(gpu->get_driver_uuid(uuids.driver, 16), 0);
  return uuids;
}

// The validator's message, "" when it accepts the record; with the UUIDs of the GPU that wrote it.
std::string verdict_on_written(harness::Gpu& gpu, const harness::ChipData& chip,
                               const Request& request) {
  const LayoutMetadata blob = laid_out(gpu, request);
  (void)gpu.take_messages();  // of chips without rules
  return verdict<ResourceKind>(gpu, blob.layout, kRecordBytes, uuids_of(gpu, chip));
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
      const uint64_t flags = kExtra | kExtended | (no_flags(family, format) ? 0 : kUbwc);
      EXPECT_EQ(verdict_on_written(
                    gpu, chip, {.depth = 3, .format = format, .flags = flags, .planes = planes}),
                "")
          << family << ": " << format;
      if (must_be_tiled(format)) continue;
      EXPECT_EQ(
          verdict_on_written(
              gpu, chip, {.depth = 3, .format = format, .tiling_mode = kLinear, .planes = planes}),
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
            const Request request{.width_px = size,
                                  .height_px = size,
                                  .depth = depth,
                                  .samples = samples,
                                  .tiling_mode = mode,
                                  .flags = mode == kTiled ? kUbwc : 0};
            EXPECT_EQ(verdict_on_written(gpu, chip, request), "")
                << family << ": " << size << ", " << depth << ", " << samples;
          }
        }
      }
    }
    EXPECT_EQ(verdict_on_written(gpu, chip, {.width_px = 1, .height_px = 1, .depth = 2048}), "");
    // Rows that the pitch limit cuts below the width are described as they are stored.
    EXPECT_EQ(verdict_on_written(gpu, chip, {.width_px = 20000, .tiling_mode = kLinear}), "");
  }
}

TEST(ValidateWritten, WhatTheWriterAllowsAndTheValidatorRefuses) {
  struct Row {
    Request request;
    const char* text;
  };
  const Row rows[] = {
      // The writer gives linear surfaces flag buffers too.
      {{.tiling_mode = kLinear, .flags = kUbwc},
       "Metadata level flagbuffer enabled but tiling is disabled {level 0, plane 0}"},
      // Other modes have an alignment of 0,
      {{.tiling_mode = 2}, "Metadata alignment is not pot 0"},
      {{.tiling_mode = 0xFFFFFFFF}, "Metadata alignment is not pot 0"},
      // more than 2048 slices are laid out,
      {{.depth = 2049}, "Metadata level slices is invalid value {level 0, slices 2049}"},
      // and surfaces of no planes, of no bytes.
      {{.planes = 0}, "Metadata level size is invalid value {level 0, size 0, surface size 5512}"},
      // 2^32 bytes that wrapped to 0 in the slice,
      {{.width_px = 32768, .height_px = 32768},
       "Metadata level size is invalid value {level 0, size 0, surface size 5512}"},
      // and 4 x 2^30 that did not, but are 0 to the validator; 5 x 2^30 are 2^30.
      {{.width_px = 16384, .height_px = 16384, .depth = 4},
       "Metadata level image buffer exceeds surface bounds {level 0, plane 0, image offset 0, "
       "image slice pitch 1073741824, slices 4, image size 1073741824, surface size 0}"},
      {{.width_px = 16384, .height_px = 16384, .depth = 5},
       "Metadata level image buffer exceeds surface bounds {level 0, plane 0, image offset 0, "
       "image slice pitch 1073741824, slices 5, image size 1073741824, surface size 1073741824}"},
      // 2 and 3 x 2^30 are negative there, which bounds nothing.
      {{.width_px = 16384, .height_px = 16384, .depth = 2}, ""},
      {{.width_px = 16384, .height_px = 16384, .depth = 3}, ""},
      // 65536 x 4112 x 16 = 2^32 + 2^24 bytes, of which 2^24 are counted: pitch x height wraps
      // alike.
      {{.width_px = 65536, .height_px = 4112, .format = 2}, ""},
  };
  for (const uint32_t family : kFamilies) {
    const harness::ChipData& chip = harness::full_chip(family);
    harness::Gpu gpu(chip.chip_id);
    for (const Row& row : rows) {
      EXPECT_EQ(verdict_on_written(gpu, chip, row.request), row.text) << family;
    }
  }
}

TEST(ValidateWritten, ChipsOutsideAColumn) {
  const auto verdict_of = [](const harness::ChipData& chip, const Request& request) {
    harness::Gpu gpu(chip.chip_id);
    return verdict_on_written(gpu, chip, request);
  };
  const Request tiled{.flags = kUbwc};
  const Request linear{.tiling_mode = kLinear};
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
  const harness::ChipData& chip = unsupported_chip();
  harness::Gpu gpu(chip.chip_id);
  EXPECT_EQ(verdict_on_written(gpu, chip, {.flags = kUbwc}), "");
  EXPECT_EQ(verdict_on_written(gpu, chip, {.tiling_mode = kLinear}), "");
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
  EXPECT_EQ(verdict_on_written(gpu, chip, {.width_px = 129, .tiling_mode = kLinear}),
            "Metadata level size is invalid value {level 0, size 0, surface size 5512}");
  EXPECT_EQ(verdict_on_written(gpu, chip, {.width_px = 128, .tiling_mode = kLinear}),
            "");  // 512 bytes
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
    const Uuids uuids = uuids_of(gpu, chip);
    for (Request request :
         {Request{.format = 28}, Request{.format = 28, .flags = kUbwc},
          Request{.format = 28, .tiling_mode = kLinear},
          Request{.format = 103, .flags = kUbwc, .planes = 2}, Request{.format = 71}}) {
      request.height_px = 100;
      request.depth = 3;
      for (const uint32_t levels : {1u, 7u, 15u}) {
        LayoutMetadata blob{};
        EXPECT_NUMBER(init_layout(gpu, &blob, request), 0);
        blob.layout.levels = levels;
        init_multi_level(gpu, blob.layout, request);
        EXPECT_EQ(verdict<ResourceKind>(gpu, blob.layout, kRecordBytes, uuids), "")
            << request.format << ", " << levels;
      }
    }
  }
}

}  // namespace
}  // namespace layout_test
