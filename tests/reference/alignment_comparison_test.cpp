// Every alignment entry against the reference, on every chip.

#include <gtest/gtest.h>

#include "tests/harness/chips.h"
#include "tests/reference/alignment_call.h"
#include "tests/reference/comparison.h"
#include "tests/reference/difference.h"
#include "tests/reference/rules.h"

using comparison::AlignmentCall;
using comparison::Arguments;
using comparison::difference;
using comparison::Pair;

namespace {

constexpr uint32_t kPreset = 0xCCCCCCCC;

AlignmentCall random_call(Arguments& a) {
  AlignmentCall c = {a.size(),      a.size(),        a.plane(),       a.format(),
                     a.samples(),   a.tiling_mode(), a.tiling_mode(), a.selector(),
                     a.threshold(), a.divisor(),     a.below(2)};
  const reference::Dimensions block = reference::format_block_dims(c.format);
  if (a.one_in(6)) c.width = a.size_at_block_wrap(block.width);
  if (a.one_in(6)) c.height = a.size_at_block_wrap(block.height);
  return c;
}

void compare_basic(Pair& pair, const AlignmentCall& c) {
  uint32_t expected[2] = {kPreset, kPreset};
  uint32_t actual[2] = {kPreset, kPreset};
  reference::compute_aligned_width_and_height(pair.process, c.width, c.height, c.plane, c.format,
                                              c.samples, c.selector, &expected[0], &expected[1]);
  pair.gpu->compute_aligned_width_and_height(c.width, c.height, c.plane, c.format, c.samples,
                                             c.selector, &actual[0], &actual[1]);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(actual[i], expected[i])
        << "compute_aligned_width_and_height(width " << c.width << ", height " << c.height
        << "): " << (i == 0 ? "out_width " : "out_height ") << difference(actual[i], expected[i]);
  }
  const auto mode = static_cast<int32_t>(c.tiling_mode);
  const uint32_t expected_padding =
      reference::compute_surface_padding(pair.process, c.width, c.plane, mode, c.format, c.samples);
  const uint32_t padding =
      pair.gpu->compute_surface_padding(c.width, c.plane, mode, c.format, c.samples);
  EXPECT_EQ(padding, expected_padding)
      << "compute_surface_padding(width " << c.width << ", tiling_mode " << mode
      << "): " << difference(padding, expected_padding);
}

void compare_compressed(Pair& pair, const AlignmentCall& c) {
  uint32_t expected[3] = {kPreset, kPreset, kPreset};
  uint32_t actual[3] = {kPreset, kPreset, kPreset};
  reference::compute_compressedfmt_aligned_width_and_height(
      pair.process, c.width, c.height, c.format, 1, 2, 3, &expected[0], &expected[1], &expected[2]);
  pair.gpu->compute_compressedfmt_aligned_width_and_height(c.width, c.height, c.format, 1, 2, 3,
                                                           &actual[0], &actual[1], &actual[2]);
  constexpr const char* kStored[] = {"aligned_width ", "aligned_height ", "bpp "};
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(actual[i], expected[i])
        << "compute_compressedfmt_aligned_width_and_height(texel_width " << c.width
        << ", texel_height " << c.height << ", format " << c.format << "): " << kStored[i]
        << difference(actual[i], expected[i]);
  }
}

// The entries that align by format, and those that do not.
void compare_all_entries(Pair& pair, harness::FaultTrap& trap, comparison::Counts& counts,
                         const AlignmentCall& c) {
  compare_alignments(pair, trap, c, counts);
  compare_basic(pair, c);
  compare_compressed(pair, c);
}

// Ends what the first call of a process reports.
void identify(Pair& pair) {
  EXPECT_EQ(pair.gpu->get_gpu_pixel_alignment(), reference::get_gpu_pixel_alignment(pair.process));
  pair.expect_equal_reports();
}

void compare_random_cases(Pair& pair, uint64_t seed, uint32_t cases) {
  identify(pair);
  Arguments arguments(seed);
  harness::FaultTrap trap;
  comparison::Counts counts;
  for (uint32_t i = 0; i < cases; ++i) {
    compare_all_entries(pair, trap, counts, random_call(arguments));
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
      const AlignmentCall c = random_call(arguments);
      uint32_t width = kPreset;
      uint32_t height = kPreset;
      const bool answers = comparison::reference_answers([&] {
        reference::compute_fmt_minimal_aligned_width_and_height(
            pair.process, c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode,
            c.tiling_allowed, c.selector, c.min_padded_row_bytes, c.divisor, c.want_extra_padding,
            &width, &height);
      });
      if (answers) continue;
      ++faults;
      pair.expect_fault([&] {
        pair.gpu->compute_fmt_minimal_aligned_width_and_height(
            c.width, c.height, c.plane, c.format, c.samples, c.tiling_mode, c.tiling_allowed,
            c.selector, c.min_padded_row_bytes, c.divisor, c.want_extra_padding, &width, &height);
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
  harness::FaultTrap trap;
  comparison::Counts counts;
  constexpr int32_t kWidths[] = {0,   1,    15,   16,   17,   64,    65,   255,
                                 257, 1920, 2048, 2049, 4096, 16384, 16385};
  for (uint32_t format = 0; format <= 723; ++format) {
    for (const uint32_t samples : {0U, 1U, 2U, 3U, 4U, 8U, 9U}) {
      for (const uint32_t tiling_mode : {0U, 1U, 2U}) {
        for (const uint32_t plane : {0U, 1U, 2U, 3U}) {
          const int32_t width = kWidths[(format + samples + plane) % std::size(kWidths)];
          const int32_t height = kWidths[(format * 7 + samples + tiling_mode) % std::size(kWidths)];
          const int32_t min_padded_row_bytes = (format + plane) % 2 == 0 ? 512 : 0;
          compare_alignments(pair, trap,
                             {width, height, plane, format, samples, tiling_mode, samples % 3,
                              plane % 3, min_padded_row_bytes, 1U << plane, samples % 2},
                             counts);
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
