// Layouts against the reference, blob by blob, on every chip.

#include <gtest/gtest.h>

#include <cstring>

#include "tests/harness/chips.h"
#include "tests/reference/comparison.h"
#include "tests/reference/difference.h"
#include "tests/reference/layout_call.h"
#include "tests/reference/rules.h"

using comparison::Arguments;
using comparison::difference;
using comparison::expect_equal_blobs;
using comparison::LayoutCall;
using comparison::Pair;

namespace {

LayoutCall random_call(Arguments& a) {
  const bool wild = a.one_in(4);
  LayoutCall c = {wild ? a.size() : a.likely_size(),
                  wild ? a.size() : a.likely_size(),
                  a.depth(),
                  a.format(),
                  wild ? a.samples() : a.layout_samples(),
                  a.tiling_mode(),
                  a.layout_flags(),
                  a.one_in(30) ? a.below(6) : 1 + a.below(3)};
  if (wild && a.one_in(2)) {
    c.height = a.size_at_block_wrap(reference::format_block_dims(c.format).height);
  }
  return c;
}

// A blob of arbitrary old content: what a layout leaves alone must stay.
void fill(Arguments& a, LayoutMetadata& blob) {
  auto* bytes = reinterpret_cast<unsigned char*>(&blob);
  const auto canary = static_cast<int>(a.below(256));
  std::memset(bytes, canary, sizeof blob);
}

// Faults cost a process each: most tests leave the calls out that end in one.
enum class Faults { skipped, compared };

void compare_init(Pair& pair, Arguments& a, const LayoutCall& c, Faults faults = Faults::skipped) {
  LayoutMetadata actual, expected;
  fill(a, actual);
  expected = actual;
  uint32_t status = 0;
  if (!comparison::reference_answers([&] {
        status = reference::korvel_init_memory_layout(pair.process, &expected, c.width, c.height,
                                                      c.depth, c.format, c.samples, c.tiling_mode,
                                                      c.flags, c.planes);
      })) {
    pair.process.messages.clear();
    if (faults == Faults::compared) {
      pair.expect_fault([&] {
        pair.gpu->korvel_init_memory_layout(&actual, c.width, c.height, c.depth, c.format,
                                            c.samples, c.tiling_mode, c.flags, c.planes);
      });
    }
    return;
  }
  const uint32_t actual_status = pair.gpu->korvel_init_memory_layout(
      &actual, c.width, c.height, c.depth, c.format, c.samples, c.tiling_mode, c.flags, c.planes);
  EXPECT_EQ(actual_status, status) << "korvel_init_memory_layout(" << c << ")";
  expect_equal_blobs("korvel_init_memory_layout", c, actual, expected);
  const uint64_t expected_bytes = reference::korvel_get_aligned_gpu_buffer_size(
      pair.process, status == 0 ? &expected : nullptr);
  const uint64_t bytes =
      pair.gpu->korvel_get_aligned_gpu_buffer_size(status == 0 ? &actual : nullptr);
  EXPECT_EQ(bytes, expected_bytes) << "korvel_get_aligned_gpu_buffer_size after (" << c
                                   << "): " << difference(bytes, expected_bytes);
}

// The two surface entries, on a record whose header words are anything.
void compare_surfaces(Pair& pair, Arguments& a, LayoutCall c) {
  LayoutMetadata blob;
  fill(a, blob);
  blob.layout.levels = a.one_in(30) ? a.below(20) : 1 + a.below(15);
  c.levels = blob.layout.levels;
  blob.layout.size = a.one_in(5) ? static_cast<uint32_t>(a.any()) : 5512;
  blob.layout.alignment = a.one_in(5) ? a.below(10000) : 4096;

  for (const bool multi : {false, true}) {
    LayoutMetadata actual = blob, expected = blob;
    const auto width = static_cast<uint32_t>(c.width);
    const auto height = static_cast<uint32_t>(c.height);
    if (!comparison::reference_answers([&] {
          if (multi) {
            reference::korvel_init_multi_level_surface(pair.process, &expected.layout, width,
                                                       height, c.depth, c.format, c.samples,
                                                       c.tiling_mode, c.flags, c.planes);
          } else {
            reference::korvel_init_single_level_surface(pair.process, &expected.layout, c.width,
                                                        c.height, c.depth, c.format, c.samples,
                                                        c.tiling_mode, c.flags, c.planes);
          }
        })) {
      // What the reference said before its fault has no counterpart.
      pair.process.messages.clear();
      continue;
    }
    if (multi) {
      pair.gpu->korvel_init_multi_level_surface(&actual.layout, width, height, c.depth, c.format,
                                                c.samples, c.tiling_mode, c.flags, c.planes);
    } else {
      pair.gpu->korvel_init_single_level_surface(&actual.layout, c.width, c.height, c.depth,
                                                 c.format, c.samples, c.tiling_mode, c.flags,
                                                 c.planes);
    }
    expect_equal_blobs(
        multi ? "korvel_init_multi_level_surface" : "korvel_init_single_level_surface", c, actual,
        expected);
    pair.expect_equal_reports();
  }
}

void compare_random_cases(Pair& pair, uint64_t seed, uint32_t cases) {
  Arguments arguments(seed);
  EXPECT_EQ(pair.gpu->get_gpu_pixel_alignment(), reference::get_gpu_pixel_alignment(pair.process));
  pair.expect_equal_reports();
  for (uint32_t i = 0; i < cases; ++i) {
    compare_init(pair, arguments, random_call(arguments));
    pair.expect_equal_reports();
    compare_surfaces(pair, arguments, random_call(arguments));
    if (testing::Test::HasFailure()) return;
  }
}

}  // namespace

TEST(LayoutComparison, RandomSurfacesOnEveryChip) {
  for (const korvel::ChipData& chip : korvel::kChipData) {
    Pair pair(chip);
    compare_random_cases(pair, chip.chip_id, 120 * comparison::factor());
    if (HasFailure()) FAIL() << "chip 0x" << std::hex << chip.chip_id;
  }
}

TEST(LayoutComparison, RandomSurfacesOnAnUnknownChip) {
  Pair pair(comparison::facts_of_unknown_chip(harness::kUnknownChip));
  compare_random_cases(pair, 1, 500 * comparison::factor());
}

TEST(LayoutComparison, FaultsAreTheSame) {
  for (const uint32_t family_id : {5U, 6U, 7U}) {
    Pair pair(harness::full_chip(family_id));
    Arguments arguments(family_id);
    for (uint32_t i = 0; i < 400; ++i) {
      compare_init(pair, arguments, random_call(arguments), Faults::compared);
      hxl_sim_clear_messages();
      pair.process.messages.clear();
    }
  }
}

// Every format with every sample count and plane count, tiled and linear, with flag buffers.
class LayoutSweep : public testing::TestWithParam<uint32_t> {};

TEST_P(LayoutSweep, AgreesForEveryFormat) {
  Pair pair(harness::full_chip(GetParam()));
  Arguments arguments(GetParam());
  for (uint32_t format = 0; format <= 723; ++format) {
    for (const uint32_t samples : {1U, 2U, 4U, 8U}) {
      for (const uint32_t tiling_mode : {0U, 1U, 2U}) {
        for (uint32_t planes = 0; planes <= 3; ++planes) {
          compare_init(
              pair, arguments,
              {1 + static_cast<int32_t>((format * 37 + samples) % 3000),
               1 + static_cast<int32_t>((format * 11 + planes) % 700), 2, format, samples,
               tiling_mode, LAYOUT_FLAG_UBWC | LAYOUT_FLAG_EXTRA | LAYOUT_FLAG_EXTENDED, planes});
        }
      }
    }
    pair.process.messages.clear();
    pair.process.service_calls.clear();
    hxl_sim_clear_messages();
    if (HasFailure()) return;
  }
}

INSTANTIATE_TEST_SUITE_P(Families, LayoutSweep, testing::Values(5U, 6U, 7U),
                         [](const auto& family) {
                           return "Family" + std::to_string(family.param);
                         });
