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

TEST(Failures, NegativeSizesAreLoggedAndGiveOneByOne) {
  struct Row {
    int32_t width_el;
    int32_t height_rows;
    const char* text;
  };
  constexpr Row kRows[] = {
      {.width_el = -1, .height_rows = 1, .text = "Invalid width or height: W = -1, H = 1"},
      {.width_el = 1, .height_rows = -1, .text = "Invalid width or height: W = 1, H = -1"},
      {.width_el = -7, .height_rows = -9, .text = "Invalid width or height: W = -7, H = -9"},
      {.width_el = INT_MIN,
       .height_rows = 0,
       .text = "Invalid width or height: W = -2147483648, H = 0"},
      {.width_el = 0,
       .height_rows = INT_MIN,
       .text = "Invalid width or height: W = 0, H = -2147483648"},
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
          const Request r{.width_el = row.width_el,
                          .height_rows = row.height_rows,
                          .plane = 7,
                          .samples = 0,
                          .tiling_mode = mode,
                          .divisor = 0};
          EXPECT_NUMBERS(entry.call(gpu, r), kOneByOne) << entry.name << ": " << describe(r);
          EXPECT_THAT(gpu.take_messages(), ElementsAre(message(entry.name, row.text)));
        }
      }
    }
  }
}

TEST(Failures, SizesOf0AreNotReported) {
  for (const uint32_t family : kFamilies) {
    harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const Entry& entry : kEntries) {
      entry.call(gpu, {.width_el = 0, .height_rows = 0});
      entry.call(gpu, {.width_el = 0, .height_rows = 0, .tiling_mode = kLinear});
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
        for (const uint32_t format : {kBytes4, kBytes3, kBc1, 103u, 670u, kNoRecord, kFourCC}) {
          const Request r{.width_el = 101,
                          .height_rows = 7,
                          .plane = 1,
                          .format = format,
                          .samples = 0,
                          .tiling_mode = mode,
                          .min_padded_row_bytes = kAlwaysPad,
                          .divisor = 0,
                          .want_extra_padding = 1,
                          .tiling_allowed = 1};
          EXPECT_NUMBERS(entry.call(gpu, r), (Size{101, 7})) << entry.name << ": " << describe(r);
          EXPECT_THAT(gpu.take_messages(), ElementsAre(message(entry.name, chip.text)));
        }
      }
      EXPECT_NUMBERS(entry.call(gpu, {.width_el = 0, .height_rows = INT_MAX}),
                     (Size{0, 0x7FFFFFFF}));
      EXPECT_THAT(gpu.take_messages(), ElementsAre(message(entry.name, chip.text)));
    }
  }
}

TEST(Failures, AnUnknownChipIsIdentifiedBeforeItIsReported) {
  for (const Entry& entry : kEntries) {
    harness::Gpu gpu(harness::kUnknownChip);
    EXPECT_NUMBERS(entry.call(gpu, {.width_el = 100, .height_rows = 7}), (Size{100, 7}));
    std::vector<harness::Message> expected = harness::unknown_chip_messages(harness::kUnknownChip);
    expected.push_back(message(entry.name, "Unknown Chip ID 305419896"));
    EXPECT_EQ(gpu.take_messages(), expected) << entry.name;
    EXPECT_EQ(gpu.take_calls().size(), 5u) << entry.name;

    EXPECT_NUMBERS(entry.call(gpu, {.width_el = 100, .height_rows = 7}), (Size{100, 7}));
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
      EXPECT_NUMBERS(entry.call(gpu, {.width_el = 100, .height_rows = 7}), (Size{100, 7}));
      EXPECT_EQ(gpu.take_messages(), expected) << entry.name;
    }
    // Once it opens, the chip is known for good: tiles of 64 x 16, so 2 x 64 and 1 x 16.
    hxl_sim_set_failures(0);
    EXPECT_NUMBERS(entry.call(gpu, {.width_el = 100, .height_rows = 7}), (Size{128, 16}));
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

TEST(Failures, EverySupportedChipHasRules) {
  for (const harness::ChipData& chip : korvel::kChipData) {
    if (!chip.supported) continue;
    harness::Gpu gpu(chip.chip_id);
    // 8-byte elements tell the families apart: 64 wide on 5, tiles of 32 on 6 and 7.
    const Size expected{chip.family_id == 5 ? 64u : 32u, 16};
    EXPECT_NUMBERS(full(gpu, {.format = kBytes8}), expected) << chip.chip_id;
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

}  // namespace
}  // namespace align_test
