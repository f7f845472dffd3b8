// The two alignments that callers ask for by name, on every chip by the columns it stands in.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "tests/harness/chips.h"
#include "tests/harness/faults.h"
#include "tests/harness/gpu.h"
#include "tests/harness/off_by.h"

namespace {

using harness::ChipData;
using harness::Gpu;
using korvel::ChipColumns;

// Every tiling mode that is not 1 is linear.
constexpr uint32_t kLinearModes[] = {0, 2, 0x80000001, 0xFFFFFFFF};

// lcm(4096, 4096) and lcm(1, 4096) are both 4096: the tiled column does not show. Without the base
// column the product is 0 and the divisor is not.
uint32_t tiled_slice_pitch(const ChipColumns& columns) {
  return columns.base_alignment ? 4096 : 0;
}

// lcm(64, 4096), or a product of 0 divided by the one value that is there.
uint32_t linear_slice_pitch(const ChipColumns& columns) {
  return columns.base_alignment && columns.linear_alignment ? 4096 : 0;
}

bool linear_slice_pitch_faults(const ChipColumns& columns) {
  return !columns.base_alignment && !columns.linear_alignment;
}

[[noreturn]] void ask_linear_slice_pitch(uint32_t chip_id, uint32_t failures, uint32_t mode) {
  Gpu gpu(chip_id, failures);
  const uint32_t never_known = gpu->get_slice_pitch_alignment(mode);
  std::fprintf(stderr, "returned %u\n", never_known);
  std::_Exit(0);
}

TEST(PixelAlignment, Is64OnTheChipsOfItsColumnAnd1OnAllOthers) {
  for (const ChipData& chip : korvel::kChipData) {
    SCOPED_TRACE(chip.chip_id);
    Gpu gpu(chip.chip_id);
    EXPECT_NUMBER(gpu->get_gpu_pixel_alignment(), chip.columns.pixel_alignment ? 64 : 1);
    EXPECT_NUMBER(gpu->get_gpu_pixel_alignment(), chip.columns.pixel_alignment ? 64 : 1);
    EXPECT_TRUE(gpu.take_messages().empty());
  }
}

TEST(PixelAlignment, Is1OnAChipWithoutARow) {
  Gpu gpu(harness::kUnknownChip);
  EXPECT_NUMBER(gpu->get_gpu_pixel_alignment(), 1);
}

TEST(PixelAlignment, Is1AfterAFailedQuery) {
  Gpu gpu(harness::full_chip(5).chip_id, HXL_SIM_FAIL_GETINFO);
  EXPECT_NUMBER(gpu->get_gpu_pixel_alignment(), 1);
}

TEST(SlicePitchAlignment, OfTiledSurfacesFollowsTheColumns) {
  for (const ChipData& chip : korvel::kChipData) {
    SCOPED_TRACE(chip.chip_id);
    Gpu gpu(chip.chip_id);
    EXPECT_EQ(gpu->get_slice_pitch_alignment(1), tiled_slice_pitch(chip.columns));
    EXPECT_TRUE(gpu.take_messages().empty());
  }
}

TEST(SlicePitchAlignment, OfLinearSurfacesFollowsTheColumns) {
  for (const ChipData& chip : korvel::kChipData) {
    if (linear_slice_pitch_faults(chip.columns)) continue;
    SCOPED_TRACE(chip.chip_id);
    Gpu gpu(chip.chip_id);
    for (const uint32_t mode : kLinearModes) {
      EXPECT_EQ(gpu->get_slice_pitch_alignment(mode), linear_slice_pitch(chip.columns));
    }
  }
}

TEST(SlicePitchAlignment, OfTiledSurfacesIs0OnAChipWithoutARow) {
  Gpu gpu(harness::kUnknownChip);
  EXPECT_EQ(gpu->get_slice_pitch_alignment(1), 0U);
}

TEST(SlicePitchAlignment, OfTiledSurfacesIs0AfterAFailedQuery) {
  Gpu gpu(harness::full_chip(7).chip_id, HXL_SIM_FAIL_DEVICE_OPEN);
  EXPECT_EQ(gpu->get_slice_pitch_alignment(1), 0U);
}

TEST(SlicePitchAlignmentDeathTest, OfLinearSurfacesFaultsOnAChipWithoutARow) {
  for (const uint32_t mode : kLinearModes) {
    EXPECT_DIVISION_FAULT(ask_linear_slice_pitch(harness::kUnknownChip, 0, mode));
  }
}

TEST(SlicePitchAlignmentDeathTest, OfLinearSurfacesFaultsWhenTheGpuIsNotKnown) {
  const uint32_t chip_id = harness::full_chip(6).chip_id;
  EXPECT_DIVISION_FAULT(ask_linear_slice_pitch(chip_id, HXL_SIM_FAIL_DEVICE_OPEN, 0));
  EXPECT_DIVISION_FAULT(ask_linear_slice_pitch(chip_id, HXL_SIM_FAIL_GETINFO, 0));
  EXPECT_DIVISION_FAULT(ask_linear_slice_pitch(chip_id, HXL_SIM_FAIL_LIBRARY_OPEN, 0));
}

TEST(SlicePitchAlignmentDeathTest, OfLinearSurfacesFaultsOnChipsInNeitherColumn) {
  int tried = 0;
  for (const ChipData& chip : korvel::kChipData) {
    if (!linear_slice_pitch_faults(chip.columns)) continue;
    if (++tried > 4) break;  // each try is a process
    EXPECT_DIVISION_FAULT(ask_linear_slice_pitch(chip.chip_id, 0, 0));
  }
  EXPECT_GT(tried, 0);
}

}  // namespace
