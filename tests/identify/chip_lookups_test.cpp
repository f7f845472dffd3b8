// Answers about the chip that no export gives.

#include <gtest/gtest.h>

#include <climits>

#include "align/entries.h"
#include "identify/chip_properties.h"
#include "identify/gpu_identity.h"
#include "simulator/hxl_sim.h"
#include "tests/harness/chips.h"
#include "tests/harness/off_by.h"

namespace {

struct Pixels {
  int32_t width_px;
  uint32_t bytes_per_pixel;
};

bool wide_enough(const Pixels& pixels, bool in_column = true) {
  korvel::ChipColumns columns{};
  columns.wide_enough_for_tiling = in_column;
  return korvel::wide_enough_for_tiling(korvel::chip_properties(columns), pixels.width_px,
                                        pixels.bytes_per_pixel);
}

TEST(WideEnoughForTiling, HoldsFrom16TimesTheBytesOfAPixelOn) {
  for (const int32_t bytes : {1, 2, 4, 8, 16, 3}) {
    const auto bytes_per_pixel = static_cast<uint32_t>(bytes);
    const auto is_wide_enough = [=](int32_t width_px) {
      return wide_enough({.width_px = width_px, .bytes_per_pixel = bytes_per_pixel});
    };
    EXPECT_FALSE(is_wide_enough(16 * bytes - 1)) << bytes;
    EXPECT_TRUE(is_wide_enough(16 * bytes)) << bytes;
    EXPECT_TRUE(is_wide_enough(INT_MAX)) << bytes;
    EXPECT_FALSE(is_wide_enough(-1)) << bytes;
  }
}

TEST(WideEnoughForTiling, ComparesSigned32BitNumbers) {
  EXPECT_TRUE(wide_enough({.width_px = 0, .bytes_per_pixel = 0}));
  EXPECT_FALSE(wide_enough({.width_px = -1, .bytes_per_pixel = 0}));
  // 16 * 0x08000000 is the smallest negative number.
  EXPECT_TRUE(wide_enough({.width_px = INT_MIN, .bytes_per_pixel = 0x08000000}));
  EXPECT_TRUE(wide_enough({.width_px = 0, .bytes_per_pixel = 0x08000000}));
  // 16 * 0x07FFFFFF is 0x7FFFFFF0, just below 2^31.
  EXPECT_FALSE(wide_enough({.width_px = 0x7FFFFFEF, .bytes_per_pixel = 0x07FFFFFF}));
  EXPECT_TRUE(wide_enough({.width_px = 0x7FFFFFF0, .bytes_per_pixel = 0x07FFFFFF}));
  // 16 * 0x10000000 is 0 in 32 bits.
  EXPECT_TRUE(wide_enough({.width_px = 0, .bytes_per_pixel = 0x10000000}));
  EXPECT_FALSE(wide_enough({.width_px = -1, .bytes_per_pixel = 0x10000000}));
  // 16 * 0xFFFFFFFF is -16.
  EXPECT_TRUE(wide_enough({.width_px = -16, .bytes_per_pixel = 0xFFFFFFFF}));
  EXPECT_FALSE(wide_enough({.width_px = -17, .bytes_per_pixel = 0xFFFFFFFF}));
}

TEST(WideEnoughForTiling, HoldsForAnyWidthOutsideTheColumn) {
  for (const int32_t width_px : {INT_MIN, -1, 0, 1, 63, INT_MAX}) {
    for (const uint32_t bytes : {0U, 4U, 16U, 0xFFFFFFFFU}) {
      EXPECT_TRUE(wide_enough({.width_px = width_px, .bytes_per_pixel = bytes}, false));
    }
  }
}

TEST(WideEnoughForTiling, HoldsForAnyWidthOnAnUnknownChip) {
  for (const int32_t width_px : {0, -5}) {
    EXPECT_TRUE(korvel::wide_enough_for_tiling(korvel::kDefaultProperties, width_px, 4));
  }
}

struct Column {
  const char* name;
  bool korvel::ChipColumns::*listed;
  uint16_t korvel::ChipProperties::*property;
  uint32_t supported;
  uint32_t otherwise;
};

constexpr Column kColumns[] = {
    {.name = "base_alignment",
     .listed = &korvel::ChipColumns::base_alignment,
     .property = &korvel::ChipProperties::base_alignment,
     .supported = 4096,
     .otherwise = 0},
    {.name = "linear_alignment",
     .listed = &korvel::ChipColumns::linear_alignment,
     .property = &korvel::ChipProperties::linear_alignment,
     .supported = 64,
     .otherwise = 0},
    {.name = "aux_alignment",
     .listed = &korvel::ChipColumns::aux_alignment,
     .property = &korvel::ChipProperties::aux_alignment,
     .supported = 512,
     .otherwise = 0},
    {.name = "small_alignment",
     .listed = &korvel::ChipColumns::small_alignment,
     .property = &korvel::ChipProperties::small_alignment,
     .supported = 16,
     .otherwise = 0},
    {.name = "pixel_alignment",
     .listed = &korvel::ChipColumns::pixel_alignment,
     .property = &korvel::ChipProperties::pixel_alignment,
     .supported = 64,
     .otherwise = 1},
    {.name = "tiled_alignment",
     .listed = &korvel::ChipColumns::tiled_alignment,
     .property = &korvel::ChipProperties::tiled_alignment,
     .supported = 4096,
     .otherwise = 1},
    {.name = "min_level_extent",
     .listed = &korvel::ChipColumns::min_level_extent,
     .property = &korvel::ChipProperties::min_level_extent,
     .supported = 64,
     .otherwise = 0},
    {.name = "level_offset_alignment",
     .listed = &korvel::ChipColumns::level_offset_alignment,
     .property = &korvel::ChipProperties::level_offset_alignment,
     .supported = 4096,
     .otherwise = 0},
    {.name = "level_size_alignment",
     .listed = &korvel::ChipColumns::level_size_alignment,
     .property = &korvel::ChipProperties::level_size_alignment,
     .supported = 4096,
     .otherwise = 0},
};

TEST(ChipProperties, EachFollowsItsOwnColumn) {
  for (const Column& set : kColumns) {
    korvel::ChipColumns columns{};
    columns.*set.listed = true;
    const korvel::ChipProperties properties = korvel::chip_properties(columns);
    for (const Column& column : kColumns) {
      EXPECT_NUMBER_NAMED(column.name, properties.*column.property,
                          column.listed == set.listed ? column.supported : column.otherwise)
          << set.name;
    }
  }
}

TEST(ChipProperties, OfEveryRowFollowItsColumns) {
  for (std::size_t i = 0; i < std::size(korvel::kChipData); ++i) {
    const korvel::ChipRow& row = korvel::kChipRows[korvel::kRowFirstChip + i];
    const korvel::ChipData& chip = korvel::kChipData[i];
    ASSERT_EQ(row.chip_id, chip.chip_id);
    for (const Column& column : kColumns) {
      EXPECT_NUMBER_NAMED(column.name, row.properties.*column.property,
                          chip.columns.*column.listed ? column.supported : column.otherwise)
          << "chip " << chip.chip_id;
    }
    EXPECT_EQ(row.properties.holds_minimum_tiling_width, chip.columns.wide_enough_for_tiling);
  }
}

// This program has an identity of its own, which each chip finds untouched.
class SupportedChip : public testing::Test {
 protected:
  SupportedChip() {
    hxl_sim_reset();
    hxl_sim_set_capture(1);
  }
  static bool supported(uint32_t chip_id) {
    korvel::gpu_identity.chip_id.store(korvel::kChipIdNotIdentified);
    korvel::gpu_identity.row.store(korvel::kRowNotIdentified);
    hxl_sim_set_chip(chip_id);
    return korvel::is_supported_chip();
  }
};

TEST_F(SupportedChip, IsEveryChipOfTheList) {
  for (const harness::ChipData& chip : korvel::kChipData) {
    EXPECT_EQ(supported(chip.chip_id), chip.supported) << chip.chip_id;
  }
}

TEST_F(SupportedChip, IsNoUnknownChip) {
  EXPECT_FALSE(supported(harness::kUnknownChip));
  EXPECT_FALSE(supported(0));
  EXPECT_FALSE(supported(0xFFFFFFFF));
}

TEST_F(SupportedChip, IdentifiesTheGpuOnce) {
  hxl_sim_clear_calls();
  EXPECT_TRUE(supported(harness::full_chip(5).chip_id));
  EXPECT_TRUE(korvel::is_supported_chip());
  EXPECT_NUMBER(hxl_sim_call_count(HXL_SIM_LIBRARY_OPEN), 1);
  EXPECT_NUMBER(hxl_sim_call_count(HXL_SIM_DEVICE_GETINFO), 1);
}

TEST_F(SupportedChip, IsNoneAfterAFailedQuery) {
  hxl_sim_set_failures(HXL_SIM_FAIL_GETINFO);
  EXPECT_FALSE(supported(harness::full_chip(5).chip_id));
  hxl_sim_set_failures(0);
  EXPECT_FALSE(korvel::is_supported_chip());
}

}  // namespace
