// The two entries that ask without a format.
#include "tests/align/align_calls.h"

namespace align_test {
namespace {

using harness::message;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kEntry[] = "compute_aligned_width_and_height";

TEST(Basic, ASupportedChipLeavesTheOutputsAlone) {
  for (const harness::ChipData& chip : korvel::kChipData) {
    if (!chip.supported) continue;
    harness::Gpu gpu(chip.chip_id);
    for (const int32_t px : {0, 1, 100, INT_MAX}) {
      EXPECT_NUMBERS(basic(gpu.library(), {.width_px = px, .height_px = px}), kUntouched);
      // 0 is what the output holds before the call.
      for (const int32_t mode : {0, 1}) {
        EXPECT_NUMBER(surface_padding(gpu.library(), {.width_px = px, .tiling_mode = mode}), 0);
      }
    }
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

TEST(Basic, NegativeSizesGiveOneByOneOnAnyChip) {
  for (const uint32_t chip :
       {harness::full_chip(5).chip_id, unsupported_chip().chip_id, harness::kUnknownChip}) {
    harness::Gpu gpu(chip);
    identify(gpu);
    const harness::Library& library = gpu.library();
    EXPECT_NUMBERS(basic(library, {.width_px = -1, .height_px = 5}), kOneByOne);
    EXPECT_NUMBERS(basic(library, {.width_px = 5, .height_px = -1}), kOneByOne);
    EXPECT_NUMBERS(basic(library, {.width_px = INT_MIN, .height_px = INT_MIN}), kOneByOne);
    EXPECT_NUMBER(surface_padding(library, {.width_px = -5}), 1);
    EXPECT_NUMBER(surface_padding(library, {.width_px = INT_MIN, .tiling_mode = 0}), 1);
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
    identify(gpu);
    const harness::Library& library = gpu.library();
    EXPECT_NUMBERS(basic(library, {.width_px = 100, .height_px = 7}), (Size{100, 7}));
    EXPECT_NUMBERS(basic(library, {.width_px = 0, .height_px = 0}), (Size{0, 0}));
    for (const int32_t mode : {0, 1, 2, -1}) {
      EXPECT_NUMBER(surface_padding(library, {.width_px = INT_MAX, .tiling_mode = mode}), INT_MAX);
    }
    const std::string text = "Unknown Chip ID " + std::to_string(static_cast<int32_t>(chip));
    EXPECT_EQ(gpu.take_messages(), std::vector<harness::Message>(6, message(kEntry, text)));
  }
}

TEST(Basic, TheFirstCallIdentifiesTheChip) {
  for (const bool by_padding : {false, true}) {
    harness::Gpu gpu(harness::kUnknownChip);
    if (by_padding) {
      EXPECT_NUMBER(surface_padding(gpu.library(), {.width_px = -1}), 1);
    } else {
      EXPECT_NUMBERS(basic(gpu.library(), {.width_px = -1}), kOneByOne);
    }
    std::vector<harness::Message> expected = harness::unknown_chip_messages(harness::kUnknownChip);
    expected.push_back(message(kEntry, "Invalid width or height: W = -1, H = 1"));
    EXPECT_EQ(gpu.take_messages(), expected);
  }
}

TEST(Basic, AFailedDeviceQueryIsChip0) {
  harness::Gpu gpu(harness::full_chip(7).chip_id, HXL_SIM_FAIL_DEVICE_OPEN);
  EXPECT_NUMBERS(basic(gpu.library(), {.width_px = 100, .height_px = 7}), (Size{100, 7}));
  std::vector<harness::Message> expected = harness::unknown_chip_messages(0);
  expected.push_back(message(kEntry, "Unknown Chip ID 0"));
  EXPECT_EQ(gpu.take_messages(), expected);
}

}  // namespace
}  // namespace align_test
