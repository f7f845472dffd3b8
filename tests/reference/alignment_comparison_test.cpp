// Every alignment entry against the reference, on every chip.

#include <gtest/gtest.h>

#include "tests/harness/chips.h"
#include "tests/reference/comparison.h"

using comparison::Arguments;
using comparison::Pair;

namespace {

constexpr uint32_t kPreset = 0xCCCCCCCC;

// The two outputs of an alignment entry, from a preset that nothing computes.
struct Outputs {
  uint32_t width = kPreset;
  uint32_t height = kPreset;
  bool operator==(const Outputs&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outputs& outputs) {
  return out << outputs.width << " x " << outputs.height;
}

// The arguments of the widest entry; the others take some of them.
struct Case {
  int32_t width, height;
  uint32_t plane, format, samples, tiling_mode, tiling_allowed, selector;
  int32_t threshold;
  uint32_t divisor, padding;
};

std::ostream& operator<<(std::ostream& out, const Case& c) {
  return out << "size " << c.width << " x " << c.height << " plane " << c.plane << " format "
             << c.format << " samples " << c.samples << " tiling " << c.tiling_mode << " allowed "
             << c.tiling_allowed << " selector " << c.selector << " threshold " << c.threshold
             << " divisor " << c.divisor << " padding " << c.padding;
}

Case random_case(Arguments& a) {
  return {a.size(),        a.size(),     a.plane(),     a.format(),  a.samples(), a.tiling_mode(),
          a.tiling_mode(), a.selector(), a.threshold(), a.divisor(), a.below(2)};
}

void compare_full(Pair& pair, const Case& c) {
  Outputs expected, actual;
  if (!comparison::reference_answers([&] {
        reference::compute_fmt_aligned_width_and_height(
            pair.process, c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode,
            c.selector, c.threshold, &expected.width, &expected.height);
      })) {
    return;
  }
  pair.gpu->compute_fmt_aligned_width_and_height(c.width, c.height, c.plane, c.format, c.samples,
                                                 c.tiling_mode, c.selector, c.threshold,
                                                 &actual.width, &actual.height);
  EXPECT_EQ(actual, expected) << c;
}

void compare_fdm(Pair& pair, const Case& c) {
  Outputs expected, actual;
  if (!comparison::reference_answers([&] {
        reference::compute_fmt_aligned_width_and_height_fdm(
            pair.process, c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode,
            c.selector, c.threshold, c.divisor, c.padding, &expected.width, &expected.height);
      })) {
    return;
  }
  pair.gpu->compute_fmt_aligned_width_and_height_fdm(
      c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode, c.selector, c.threshold,
      c.divisor, c.padding, &actual.width, &actual.height);
  EXPECT_EQ(actual, expected) << c;
}

void compare_minimal(Pair& pair, const Case& c) {
  Outputs expected, actual;
  if (!comparison::reference_answers([&] {
        reference::compute_fmt_minimal_aligned_width_and_height(
            pair.process, c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode,
            c.tiling_allowed, c.selector, c.threshold, c.divisor, c.padding, &expected.width,
            &expected.height);
      })) {
    return;
  }
  pair.gpu->compute_fmt_minimal_aligned_width_and_height(
      c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode, c.tiling_allowed, c.selector,
      c.threshold, c.divisor, c.padding, &actual.width, &actual.height);
  EXPECT_EQ(actual, expected) << c;
}

struct BytesOutputs {
  uint32_t aligned = kPreset, minimal = kPreset, height = kPreset, tiling_mode = 0;
  bool operator==(const BytesOutputs&) const = default;
};

std::ostream& operator<<(std::ostream& out, const BytesOutputs& outputs) {
  return out << outputs.aligned << " " << outputs.minimal << " bytes, " << outputs.height
             << " rows, mode " << outputs.tiling_mode;
}

void compare_in_bytes(Pair& pair, const Case& c) {
  const auto run = [&c](BytesOutputs& outputs, auto call) {
    outputs.tiling_mode = c.tiling_mode;
    const AlignInBytesParams params = {c.width,   c.height,   c.plane,     c.format,
                                       c.samples, c.selector, c.threshold, &outputs.tiling_mode};
    const AlignInBytesResult result = {&outputs.aligned, &outputs.minimal, &outputs.height};
    call(&params, &result);
  };
  BytesOutputs expected, actual;
  if (!comparison::reference_answers([&] {
        run(expected, [&](auto* params, auto* result) {
          reference::compute_fmt_aligned_width_and_height_in_bytes(pair.process, params, result);
        });
      })) {
    return;
  }
  run(actual, pair.gpu->compute_fmt_aligned_width_and_height_in_bytes);
  EXPECT_EQ(actual, expected) << c;
}

void compare_basic(Pair& pair, const Case& c) {
  Outputs expected, actual;
  reference::compute_aligned_width_and_height(pair.process, c.width, c.height, c.plane, c.format,
                                              c.samples, c.selector, &expected.width,
                                              &expected.height);
  pair.gpu->compute_aligned_width_and_height(c.width, c.height, c.plane, c.format, c.samples,
                                             c.selector, &actual.width, &actual.height);
  EXPECT_EQ(actual, expected) << c;
  const auto mode = static_cast<int32_t>(c.tiling_mode);
  EXPECT_EQ(
      pair.gpu->compute_surface_padding(c.width, c.plane, mode, c.format, c.samples),
      reference::compute_surface_padding(pair.process, c.width, c.plane, mode, c.format, c.samples))
      << c;
}

void compare_compressed(Pair& pair, const Case& c) {
  uint32_t expected[3] = {kPreset, kPreset, kPreset};
  uint32_t actual[3] = {kPreset, kPreset, kPreset};
  reference::compute_compressedfmt_aligned_width_and_height(
      pair.process, c.width, c.height, c.format, 1, 2, 3, &expected[0], &expected[1], &expected[2]);
  pair.gpu->compute_compressedfmt_aligned_width_and_height(c.width, c.height, c.format, 1, 2, 3,
                                                           &actual[0], &actual[1], &actual[2]);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(actual[i], expected[i]) << c;
}

void compare_all_entries(Pair& pair, const Case& c) {
  compare_full(pair, c);
  compare_fdm(pair, c);
  compare_minimal(pair, c);
  compare_in_bytes(pair, c);
  compare_basic(pair, c);
  compare_compressed(pair, c);
}

// Calls that end in a fault on the reference's side have logged nothing by then, and the
// identification that they began is the pair's first call in any case.
void identify(Pair& pair) {
  EXPECT_EQ(pair.gpu->get_gpu_pixel_alignment(), reference::get_gpu_pixel_alignment(pair.process));
  pair.expect_equal_reports();
}

void compare_random_cases(Pair& pair, uint64_t seed, uint32_t cases) {
  identify(pair);
  Arguments arguments(seed);
  for (uint32_t i = 0; i < cases; ++i) {
    compare_all_entries(pair, random_case(arguments));
    if (i % 64 == 63) pair.expect_equal_reports();
    if (testing::Test::HasFailure()) return;
  }
}

}  // namespace

TEST(AlignmentComparison, RandomArgumentsOnEveryChip) {
  for (const korvel::ChipData& chip : korvel::kChipData) {
    Pair pair(chip);
    compare_random_cases(pair, chip.chip_id, 400 * comparison::factor());
    if (HasFailure()) {
      FAIL() << "chip 0x" << std::hex << chip.chip_id;
    }
  }
}

TEST(AlignmentComparison, FaultsAreTheSame) {
  for (const uint32_t family_id : {5U, 6U, 7U}) {
    Pair pair(harness::full_chip(family_id));
    Arguments arguments(family_id);
    uint32_t faults = 0;
    for (uint32_t i = 0; i < 30000 && faults < 40; ++i) {
      const Case c = random_case(arguments);
      Outputs outputs;
      const bool answers = comparison::reference_answers([&] {
        reference::compute_fmt_minimal_aligned_width_and_height(
            pair.process, c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode,
            c.tiling_allowed, c.selector, c.threshold, c.divisor, c.padding, &outputs.width,
            &outputs.height);
      });
      if (answers) continue;
      ++faults;
      pair.expect_fault([&] {
        pair.gpu->compute_fmt_minimal_aligned_width_and_height(
            c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode, c.tiling_allowed,
            c.selector, c.threshold, c.divisor, c.padding, &outputs.width, &outputs.height);
      });
      if (HasFailure()) FAIL() << c;
    }
    EXPECT_GT(faults, 10U);
  }
}

TEST(AlignmentComparison, RandomArgumentsOnAnUnknownChip) {
  Pair pair(comparison::facts_of_unknown_chip(harness::kUnknownChip));
  compare_random_cases(pair, 1, 2000 * comparison::factor());
}

// Formats x samples x modes x planes at the widths where rules change, on a full chip of each
// family.
class AlignmentSweep : public testing::TestWithParam<uint32_t> {};

TEST_P(AlignmentSweep, AgreesForEveryFormat) {
  Pair pair(harness::full_chip(GetParam()));
  identify(pair);
  constexpr int32_t kWidths[] = {0,   1,    15,   16,   17,   64,    65,   255,
                                 257, 1920, 2048, 2049, 4096, 16384, 16385};
  for (uint32_t format = 0; format <= 723; ++format) {
    for (const uint32_t samples : {0U, 1U, 2U, 3U, 4U, 8U, 9U}) {
      for (const uint32_t tiling_mode : {0U, 1U, 2U}) {
        for (const uint32_t plane : {0U, 1U, 2U, 3U}) {
          const int32_t width = kWidths[(format + samples + plane) % std::size(kWidths)];
          const int32_t height = kWidths[(format * 7 + samples + tiling_mode) % std::size(kWidths)];
          compare_full(
              pair, {width, height, plane, format, samples, tiling_mode, 0, plane % 3, 512, 1, 0});
          compare_minimal(pair, {width, height, plane, format, samples, tiling_mode, samples % 3,
                                 plane % 3, 0, 1U << plane, 1});
        }
      }
    }
    if (HasFailure()) return;
  }
  pair.expect_equal_reports();
}

INSTANTIATE_TEST_SUITE_P(Families, AlignmentSweep, testing::Values(5U, 6U, 7U),
                         [](const auto& family) {
                           return "Family" + std::to_string(family.param);
                         });
