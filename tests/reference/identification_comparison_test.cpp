// First calls in every state of the device against the reference: answers, messages, services
// calls.

#include <gtest/gtest.h>

#include "tests/harness/chips.h"
#include "tests/reference/comparison.h"
#include "tests/reference/layout_call.h"

using comparison::Pair;

namespace {

void call_everything_once(Pair& pair) {
  EXPECT_EQ(pair.gpu->get_gpu_pixel_alignment(), reference::get_gpu_pixel_alignment(pair.process));
  pair.expect_equal_reports();
  EXPECT_EQ(pair.gpu->get_slice_pitch_alignment(1),
            reference::get_slice_pitch_alignment(pair.process, 1));
  pair.expect_equal_reports();
  EXPECT_EQ(pair.gpu->isFormatRenderableByGpu(28, 0),
            reference::isFormatRenderableByGpu(pair.process, 28, 0));
  pair.expect_equal_reports();
  EXPECT_EQ(pair.gpu->isUBWCSupportedByGpu(28), reference::isUBWCSupportedByGpu(pair.process, 28));
  pair.expect_equal_reports();
  LayoutMetadata actual{}, expected{};
  EXPECT_EQ(pair.gpu->korvel_init_memory_layout(&actual, 100, 50, 2, 28, 1, 1, LAYOUT_FLAG_UBWC, 1),
            reference::korvel_init_memory_layout(pair.process, &expected, 100, 50, 2, 28, 1, 1,
                                                 LAYOUT_FLAG_UBWC, 1));
  comparison::expect_equal_blobs("korvel_init_memory_layout",
                                 {100, 50, 2, 28, 1, 1, LAYOUT_FLAG_UBWC, 1}, actual, expected);
  pair.expect_equal_reports();
  EXPECT_EQ(pair.gpu->isSecureContextSupportedByGpu(),
            reference::isSecureContextSupportedByGpu(pair.process));
  pair.expect_equal_reports();
}

}  // namespace

TEST(IdentificationComparison, WorkingDevice) {
  Pair pair(harness::full_chip(6));
  call_everything_once(pair);
}

TEST(IdentificationComparison, UnknownChip) {
  Pair pair(comparison::facts_of_unknown_chip(harness::kUnknownChip));
  call_everything_once(pair);
}

TEST(IdentificationComparison, LibraryDoesNotOpenAtFirst) {
  Pair pair(harness::full_chip(7));
  hxl_sim_set_failures(HXL_SIM_FAIL_LIBRARY_OPEN);
  pair.process.device.library_open_result = HXL_SIM_FAILED;
  call_everything_once(pair);
  hxl_sim_set_failures(0);
  pair.process.device.library_open_result = 0;
  call_everything_once(pair);
}

// That chip id means "not identified yet": every question asks the device anew.
TEST(IdentificationComparison, DeviceReportsTheUnidentifiedChipId) {
  Pair pair(comparison::facts_of_unknown_chip(0xFFFFFFFF));
  call_everything_once(pair);
  call_everything_once(pair);
}

TEST(IdentificationComparison, DeviceDoesNotOpen) {
  Pair pair(harness::full_chip(5));
  hxl_sim_set_failures(HXL_SIM_FAIL_DEVICE_OPEN);
  pair.process.device.handle = 0;
  call_everything_once(pair);
}

TEST(IdentificationComparison, QueryFails) {
  Pair pair(harness::full_chip(5));
  hxl_sim_set_failures(HXL_SIM_FAIL_GETINFO);
  pair.process.device.getinfo_result = HXL_SIM_FAILED;
  call_everything_once(pair);
}
