// What the alignment entries do with negative sizes and with chips that no rules are known for.
#include "tests/align/align_calls.h"

namespace align_test {
namespace {

using harness::message;
using testing::ElementsAre;
using testing::IsEmpty;

struct Entry {
  const char* name;
  Size (*call)(const harness::Gpu&, const Request&);
};

constexpr Entry kEntries[] = {
    {"compute_fmt_aligned_width_and_height", full},
    {"compute_fmt_aligned_width_and_height_fdm", fdm},
    {"compute_fmt_minimal_aligned_width_and_height", minimal},
};

// Runs the identification, so that what follows logs only what is its own.
void identify(harness::Gpu& gpu) {
  (void)gpu->get_gpu_pixel_alignment();
  (void)gpu.take_messages();
}

TEST(Failures, NegativeSizesAreLoggedAndGiveOneByOne) {
  struct Row {
    int32_t width;
    int32_t height;
    const char* text;
  };
  constexpr Row kRows[] = {
      {-1, 1, "Invalid width or height: W = -1, H = 1"},
      {1, -1, "Invalid width or height: W = 1, H = -1"},
      {-7, -9, "Invalid width or height: W = -7, H = -9"},
      {INT_MIN, 0, "Invalid width or height: W = -2147483648, H = 0"},
      {0, INT_MIN, "Invalid width or height: W = 0, H = -2147483648"},
  };
  // A chip of each family, one without rules and one without a row: the size is looked at first.
  for (const uint32_t chip :
       {harness::full_chip(5).chip_id, harness::full_chip(6).chip_id, harness::full_chip(7).chip_id,
        unsupported_chip().chip_id, harness::kUnknownChip}) {
    harness::Gpu gpu(chip);
    identify(gpu);
    for (const Entry& entry : kEntries) {
      for (const Row& row : kRows) {
        for (const uint32_t mode : {kLinear, kTiled}) {
          // Arguments that would divide by 0 in the rules: no rule is reached.
          const Request r{.width = row.width,
                          .height = row.height,
                          .plane = 7,
                          .samples = 0,
                          .mode = mode,
                          .divisor = 0};
          EXPECT_EQ(entry.call(gpu, r), (Size{1, 1})) << entry.name << ": " << describe(r);
          EXPECT_THAT(gpu.take_messages(), ElementsAre(message(entry.name, row.text)));
        }
      }
    }
  }
}

TEST(Failures, SizesOf0AreNone) {
  for (const uint32_t family : kFamilies) {
    harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const Entry& entry : kEntries) {
      entry.call(gpu, {.width = 0, .height = 0});
      entry.call(gpu, {.width = 0, .height = 0, .mode = kLinear});
    }
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

struct UnknownChip {
  uint32_t chip_id;
  uint32_t failures;
  std::string text;
};

std::vector<UnknownChip> chips_without_rules() {
  std::vector<UnknownChip> chips{
      {harness::kUnknownChip, 0, "Unknown Chip ID 305419896"},
      {0xFFFFFFF0, 0, "Unknown Chip ID -16"},  // printed signed
      {harness::full_chip(6).chip_id, HXL_SIM_FAIL_DEVICE_OPEN, "Unknown Chip ID 0"},
      {harness::full_chip(6).chip_id, HXL_SIM_FAIL_GETINFO, "Unknown Chip ID 0"},
  };
  for (const harness::ChipData& chip : korvel::kChipData) {
    if (!chip.supported) {
      chips.push_back({chip.chip_id, 0, "Unknown Chip ID " + std::to_string(chip.chip_id)});
    }
  }
  return chips;
}

TEST(Failures, ChipsWithoutRulesAreLoggedAndKeepTheSize) {
  for (const UnknownChip& chip : chips_without_rules()) {
    harness::Gpu gpu(chip.chip_id, chip.failures);
    identify(gpu);
    for (const Entry& entry : kEntries) {
      for (const uint32_t mode : {kLinear, kTiled, 2u}) {
        for (const uint32_t format : {kBytes4, kBytes3, kBc1, 103u, 670u, 722u, kFourCC}) {
          const Request r{.width = 101,
                          .height = 7,
                          .plane = 1,
                          .format = format,
                          .samples = 0,
                          .mode = mode,
                          .min_padded = kAlwaysPad,
                          .divisor = 0,
                          .want_extra = 1,
                          .tiling_allowed = 1};
          EXPECT_EQ(entry.call(gpu, r), (Size{101, 7})) << entry.name << ": " << describe(r);
          EXPECT_THAT(gpu.take_messages(), ElementsAre(message(entry.name, chip.text)));
        }
      }
      EXPECT_EQ(entry.call(gpu, {.width = 0, .height = INT_MAX}), (Size{0, 0x7FFFFFFF}));
      EXPECT_THAT(gpu.take_messages(), ElementsAre(message(entry.name, chip.text)));
    }
  }
}

TEST(Failures, AnUnknownChipIsIdentifiedBeforeItIsReported) {
  for (const Entry& entry : kEntries) {
    harness::Gpu gpu(harness::kUnknownChip);
    EXPECT_EQ(entry.call(gpu, {.width = 100, .height = 7}), (Size{100, 7}));
    std::vector<harness::Message> expected = harness::unknown_chip_messages(harness::kUnknownChip);
    expected.push_back(message(entry.name, "Unknown Chip ID 305419896"));
    EXPECT_EQ(gpu.take_messages(), expected) << entry.name;
    EXPECT_EQ(gpu.take_calls().size(), 5u) << entry.name;

    EXPECT_EQ(entry.call(gpu, {.width = 100, .height = 7}), (Size{100, 7}));
    EXPECT_THAT(gpu.take_messages(), ElementsAre(message(entry.name, "Unknown Chip ID 305419896")));
    EXPECT_THAT(gpu.take_calls(), IsEmpty()) << entry.name;
  }
}

TEST(Failures, WithoutTheServicesLibraryEveryCallAsksAgain) {
  for (const Entry& entry : kEntries) {
    harness::Gpu gpu(harness::full_chip(6).chip_id, HXL_SIM_FAIL_LIBRARY_OPEN);
    std::vector<harness::Message> expected{
        message("ReadGpuID_from_khxl", "Failed to open HXL Library!!!!")};
    for (const harness::Message& m : harness::unknown_chip_messages(0xFFFFFFFF)) {
      expected.push_back(m);
    }
    expected.push_back(message(entry.name, "Unknown Chip ID -1"));
    for (int i = 0; i < 2; ++i) {
      EXPECT_EQ(entry.call(gpu, {.width = 100, .height = 7}), (Size{100, 7}));
      EXPECT_EQ(gpu.take_messages(), expected) << entry.name;
    }
    // Once it opens, the chip is known for good.
    hxl_sim_set_failures(0);
    EXPECT_EQ(entry.call(gpu, {.width = 100, .height = 7}), (Size{128, 16}));
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

TEST(Failures, EverySupportedChipHasRules) {
  for (const harness::ChipData& chip : korvel::kChipData) {
    if (!chip.supported) continue;
    harness::Gpu gpu(chip.chip_id);
    // 8-byte elements tell the families apart: 64 wide on 5, tiles of 32 on 6 and 7.
    const Size expected{chip.family_id == 5 ? 64u : 32u, 16};
    EXPECT_EQ(full(gpu, {.format = kBytes8}), expected) << chip.chip_id;
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

}  // namespace
}  // namespace align_test
