// The two entries that ask without a format.
#include "tests/align/align_calls.h"

namespace align_test {
namespace {

using harness::message;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kEntry[] = "compute_aligned_width_and_height";

Size basic(const harness::Gpu& gpu, int32_t width, int32_t height) {
  Size out;
  gpu->compute_aligned_width_and_height(width, height, 1, 2, 3, 4, &out.width, &out.height);
  return out;
}

TEST(Basic, ASupportedChipLeavesTheOutputsAlone) {
  for (const harness::ChipData& chip : korvel::kChipData) {
    if (!chip.supported) continue;
    harness::Gpu gpu(chip.chip_id);
    for (const int32_t size : {0, 1, 100, INT_MAX}) {
      EXPECT_EQ(basic(gpu, size, size), (Size{kCanary, kCanary}));
      EXPECT_EQ(gpu->compute_surface_padding(size, 4, 1, 5, 6), 0u);
      EXPECT_EQ(gpu->compute_surface_padding(size, 4, 0, 5, 6), 0u);
    }
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

TEST(Basic, NegativeSizesGiveOneByOneOnAnyChip) {
  for (const uint32_t chip :
       {harness::full_chip(5).chip_id, unsupported_chip().chip_id, harness::kUnknownChip}) {
    harness::Gpu gpu(chip);
    (void)gpu->get_gpu_pixel_alignment();
    (void)gpu.take_messages();
    EXPECT_EQ(basic(gpu, -1, 5), (Size{1, 1}));
    EXPECT_EQ(basic(gpu, 5, -1), (Size{1, 1}));
    EXPECT_EQ(basic(gpu, INT_MIN, INT_MIN), (Size{1, 1}));
    EXPECT_EQ(gpu->compute_surface_padding(-5, 0, 1, 0, 0), 1u);
    EXPECT_EQ(gpu->compute_surface_padding(INT_MIN, 0, 0, 0, 0), 1u);
    EXPECT_THAT(
        gpu.take_messages(),
        ElementsAre(message(kEntry, "Invalid width or height: W = -1, H = 5"),
                    message(kEntry, "Invalid width or height: W = 5, H = -1"),
                    message(kEntry, "Invalid width or height: W = -2147483648, H = -2147483648"),
                    message(kEntry, "Invalid width or height: W = -5, H = 1"),
                    message(kEntry, "Invalid width or height: W = -2147483648, H = 1")));
  }
}

TEST(Basic, ChipsWithoutRulesHandTheSizeBack) {
  for (const uint32_t chip : {unsupported_chip().chip_id, harness::kUnknownChip, 0xFFFFFFF0u}) {
    harness::Gpu gpu(chip);
    (void)gpu->get_gpu_pixel_alignment();
    (void)gpu.take_messages();
    EXPECT_EQ(basic(gpu, 100, 7), (Size{100, 7}));
    EXPECT_EQ(basic(gpu, 0, 0), (Size{0, 0}));
    for (const int32_t mode : {0, 1, 2, -1}) {
      EXPECT_EQ(gpu->compute_surface_padding(INT_MAX, 1, mode, 2, 3), 0x7FFFFFFFu);
    }
    const std::string text = "Unknown Chip ID " + std::to_string(static_cast<int32_t>(chip));
    EXPECT_EQ(gpu.take_messages(), std::vector<harness::Message>(6, message(kEntry, text)));
  }
}

TEST(Basic, TheFirstCallIdentifiesTheChip) {
  for (const bool by_padding : {false, true}) {
    harness::Gpu gpu(harness::kUnknownChip);
    if (by_padding) {
      EXPECT_EQ(gpu->compute_surface_padding(-1, 0, 1, 0, 0), 1u);
    } else {
      EXPECT_EQ(basic(gpu, -1, 1), (Size{1, 1}));
    }
    std::vector<harness::Message> expected = harness::unknown_chip_messages(harness::kUnknownChip);
    expected.push_back(message(kEntry, "Invalid width or height: W = -1, H = 1"));
    EXPECT_EQ(gpu.take_messages(), expected);
  }
}

TEST(Basic, AFailedDeviceQueryIsChip0) {
  harness::Gpu gpu(harness::full_chip(7).chip_id, HXL_SIM_FAIL_DEVICE_OPEN);
  EXPECT_EQ(basic(gpu, 100, 7), (Size{100, 7}));
  std::vector<harness::Message> expected = harness::unknown_chip_messages(0);
  expected.push_back(message(kEntry, "Unknown Chip ID 0"));
  EXPECT_EQ(gpu.take_messages(), expected);
}

}  // namespace
}  // namespace align_test
