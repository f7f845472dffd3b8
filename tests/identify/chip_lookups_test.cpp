// Answers about the chip that no export gives.

#include <gtest/gtest.h>

#include <climits>

#include "align/is_supported_chip.h"
#include "identify/chip_properties.h"
#include "identify/gpu_identity.h"
#include "simulator/hxl_sim.h"
#include "tests/harness/chips.h"

namespace {

bool wide_enough(bool in_column, int32_t width, uint32_t bytes_per_pixel) {
  korvel::ChipColumns columns{};
  columns.wide_enough_for_tiling = in_column;
  return korvel::wide_enough_for_tiling(korvel::chip_properties(columns), width, bytes_per_pixel);
}

TEST(WideEnoughForTiling, HoldsFrom16TimesTheBytesOfAPixelOn) {
  for (const int32_t bytes : {1, 2, 4, 8, 16, 3}) {
    EXPECT_FALSE(wide_enough(true, 16 * bytes - 1, static_cast<uint32_t>(bytes)));
    EXPECT_TRUE(wide_enough(true, 16 * bytes, static_cast<uint32_t>(bytes)));
    EXPECT_TRUE(wide_enough(true, INT_MAX, static_cast<uint32_t>(bytes)));
    EXPECT_FALSE(wide_enough(true, -1, static_cast<uint32_t>(bytes)));
  }
}

TEST(WideEnoughForTiling, ComparesSigned32BitNumbers) {
  EXPECT_TRUE(wide_enough(true, 0, 0));
  EXPECT_FALSE(wide_enough(true, -1, 0));
  // 16 * 0x08000000 is the smallest negative number.
  EXPECT_TRUE(wide_enough(true, INT_MIN, 0x08000000));
  EXPECT_TRUE(wide_enough(true, 0, 0x08000000));
  // 16 * 0x07FFFFFF is just below 2^31.
  EXPECT_FALSE(wide_enough(true, 0x7FFFFFEF, 0x07FFFFFF));
  EXPECT_TRUE(wide_enough(true, 0x7FFFFFF0, 0x07FFFFFF));
  // 16 * 0x10000000 is 0 in 32 bits.
  EXPECT_TRUE(wide_enough(true, 0, 0x10000000));
  EXPECT_FALSE(wide_enough(true, -1, 0x10000000));
  // 16 * 0xFFFFFFFF is -16.
  EXPECT_TRUE(wide_enough(true, -16, 0xFFFFFFFF));
  EXPECT_FALSE(wide_enough(true, -17, 0xFFFFFFFF));
}

TEST(WideEnoughForTiling, HoldsForAnyWidthOutsideTheColumn) {
  for (const int32_t width : {INT_MIN, -1, 0, 1, 63, INT_MAX}) {
    for (const uint32_t bytes : {0U, 4U, 16U, 0xFFFFFFFFU}) {
      EXPECT_TRUE(wide_enough(false, width, bytes));
    }
  }
}

TEST(WideEnoughForTiling, HoldsForAnyWidthOnAnUnknownChip) {
  EXPECT_TRUE(korvel::wide_enough_for_tiling(korvel::kDefaultProperties, 0, 4));
  EXPECT_TRUE(korvel::wide_enough_for_tiling(korvel::kDefaultProperties, -5, 16));
}

struct Column {
  bool korvel::ChipColumns::*listed;
  uint16_t korvel::ChipProperties::*property;
  uint32_t supported;
  uint32_t default_value;
};

constexpr Column kColumns[] = {
    {&korvel::ChipColumns::base_alignment, &korvel::ChipProperties::base_alignment, 4096, 0},
    {&korvel::ChipColumns::linear_alignment, &korvel::ChipProperties::linear_alignment, 64, 0},
    {&korvel::ChipColumns::aux_alignment, &korvel::ChipProperties::aux_alignment, 512, 0},
    {&korvel::ChipColumns::small_alignment, &korvel::ChipProperties::small_alignment, 16, 0},
    {&korvel::ChipColumns::pixel_alignment, &korvel::ChipProperties::pixel_alignment, 64, 1},
    {&korvel::ChipColumns::tiled_alignment, &korvel::ChipProperties::tiled_alignment, 4096, 1},
    {&korvel::ChipColumns::min_level_extent, &korvel::ChipProperties::min_level_extent, 64, 0},
    {&korvel::ChipColumns::level_offset_alignment, &korvel::ChipProperties::level_offset_alignment,
     4096, 0},
    {&korvel::ChipColumns::level_size_alignment, &korvel::ChipProperties::level_size_alignment,
     4096, 0},
};

TEST(ChipProperties, EachFollowsItsOwnColumn) {
  for (const Column& set : kColumns) {
    korvel::ChipColumns columns{};
    columns.*set.listed = true;
    const korvel::ChipProperties properties = korvel::chip_properties(columns);
    for (const Column& column : kColumns) {
      EXPECT_EQ(properties.*column.property,
                column.listed == set.listed ? column.supported : column.default_value);
    }
  }
}

TEST(ChipProperties, OfEveryRowFollowItsColumns) {
  for (std::size_t i = 0; i < std::size(korvel::kChipData); ++i) {
    const korvel::ChipRow& row = korvel::kChipRows[korvel::kRowFirstChip + i];
    const korvel::ChipData& chip = korvel::kChipData[i];
    ASSERT_EQ(row.chip_id, chip.chip_id);
    for (const Column& column : kColumns) {
      EXPECT_EQ(row.properties.*column.property,
                chip.columns.*column.listed ? column.supported : column.default_value);
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
  EXPECT_EQ(hxl_sim_call_count(HXL_SIM_LIBRARY_OPEN), 1U);
  EXPECT_EQ(hxl_sim_call_count(HXL_SIM_DEVICE_GETINFO), 1U);
}

TEST_F(SupportedChip, IsNoneAfterAFailedQuery) {
  hxl_sim_set_failures(HXL_SIM_FAIL_GETINFO);
  EXPECT_FALSE(supported(harness::full_chip(5).chip_id));
  hxl_sim_set_failures(0);
  EXPECT_FALSE(korvel::is_supported_chip());
}

}  // namespace
