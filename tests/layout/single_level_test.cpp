// The surface initialiser called directly, on records whose head somebody else has filled.
#include <gmock/gmock.h>

#include <climits>

#include "tests/layout/expected_layouts.h"

namespace layout_test {
namespace {

using harness::message;

// The three words that are read of a record.
struct Head {
  uint32_t levels = 1;
  uint32_t alignment_bytes = 4096;
  uint32_t record_bytes = kRecordBytes;
};

// All other words are the canary's.
MemoryLayout record_of(const Head& head) {
  auto record = canary<MemoryLayout>();
  record.levels = head.levels;
  record.alignment = head.alignment_bytes;
  record.size = head.record_bytes;
  return record;
}

void expect_surface(const harness::Gpu& gpu, const Head& head, const Request& request,
                    const Expected& expected, const std::string& what) {
  MemoryLayout record = record_of(head);
  init_single_level(gpu, record, request);
  MemoryLayout expected_record = record_of(head);
  put_surface(expected_record, request, expected);
  expect_same_record(record, expected_record, what);
}

TEST(SingleLevel, OnlyTheLayoutIsWrittenAndTheHeadIsReadFromTheRecord) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    // The image has 32768 bytes. The surface is rounded up to the record's own alignment, and the
    // total adds the record's own size.
    struct Row {
      Head head;
      uint64_t surface_bytes;
    };
    for (const Row& row :
         {Row{.head = {}, .surface_bytes = 32768},
          Row{.head = {.alignment_bytes = 64, .record_bytes = 5472}, .surface_bytes = 32768},
          Row{.head = {.alignment_bytes = 0x10000, .record_bytes = 1}, .surface_bytes = 0x10000},
          Row{.head = {.alignment_bytes = 0}, .surface_bytes = 0},  // a multiple of 0
          Row{.head = {.alignment_bytes = 1, .record_bytes = 0xFFFFFFFF},
          .surface_bytes = 32768}}) {
      expect_surface(gpu, row.head, {},
                     {.levels = {{.size_bytes = 32768, .planes = {{.image = kTiled100x50}}}},
                      .surface_bytes = row.surface_bytes},
                     "alignment " + std::to_string(row.head.alignment_bytes));
    }
  }
}

TEST(SingleLevel, RecordsWithoutLevelsHaveOnlyTheExtraBuffer) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  expect_surface(gpu, {.levels = 0}, {.flags = kExtended}, {}, "nothing");
  expect_surface(gpu, {.levels = 0}, {.depth = 2, .flags = kExtra | kExtended},
                 {.extra = Extra{.size_bytes = 2 * 8224, .extended = 1},
                  .surface_bytes = 5 * 4096},  // 16448 to pages
                 "extra");
}

TEST(SingleLevel, SeveralLevelsFollowEachOther) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    // 100 x 50, 50 x 25, 25 x 12 in tiles of 64 x 16: 128 x 64, 64 x 32, 64 x 16.
    constexpr Image kLevel1 = {.offset_bytes = 32768,
                               .size_bytes = 256 * 32,
                               .pitch_bytes = 64 * 4,
                               .slice_pitch_bytes = 256 * 32,
                               .element_bytes = 4,
                               .width_el = 64,
                               .height_rows = 32};
    constexpr Image kLevel2 = {.offset_bytes = 32768 + 8192,
                               .size_bytes = 256 * 16,
                               .pitch_bytes = 64 * 4,
                               .slice_pitch_bytes = 256 * 16,
                               .element_bytes = 4,
                               .width_el = 64,
                               .height_rows = 16};
    expect_surface(gpu, {.levels = 3}, {.depth = 2},
                   {.levels = {{.size_bytes = 2 * 32768, .planes = {{.image = kTiled100x50}}},
                               {.size_bytes = 2 * 8192, .planes = {{.image = kLevel1}}},
                               {.size_bytes = 2 * 4096, .planes = {{.image = kLevel2}}}},
                    .surface_bytes = 2 * (32768 + 8192 + 4096)},
                   "three levels");
  }
}

TEST(SingleLevel, FifteenLevelsEndAtOneByOne) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  // Linear one-byte elements, 100 x 50: 128 x 50 = 6400 bytes are two pages, all other levels (64
  // wide, as 50 is rounded to 64) one page each. The width is 1 from level 6 on (100 >> 6) and the
  // height from level 5 on (50 >> 5); both stay there when the shift gives 0.
  constexpr uint32_t kHeights[] = {50, 25, 12, 6, 3, 1};
  Expected expected = {.surface_bytes = 16 * 4096};  // 2 pages and 14 times 1
  uint64_t offset_bytes = 0;
  for (uint32_t l = 0; l < 15; ++l) {
    const uint64_t size_bytes = l == 0 ? 8192 : 4096;
    const uint32_t width_el = l == 0 ? 128 : 64;
    expected.levels.push_back({.size_bytes = size_bytes,
                               .planes = {{.image = {.offset_bytes = offset_bytes,
                                                     .size_bytes = size_bytes,
                                                     .pitch_bytes = width_el,
                                                     .slice_pitch_bytes = size_bytes,
                                                     .element_bytes = 1,
                                                     .width_el = width_el,
                                                     .height_rows = kHeights[l < 5 ? l : 5]}}}});
    offset_bytes += size_bytes;
  }
  expect_surface(gpu, {.levels = 15, .alignment_bytes = 64}, {.format = 61, .tiling_mode = kLinear},
                 expected, "fifteen levels");
}

TEST(SingleLevel, SizesBelowOneCountAsOne) {
  // One tile of 64 x 16 elements of 4 bytes.
  constexpr Image kOneTile = {.size_bytes = 256 * 16,
                              .pitch_bytes = 64 * 4,
                              .slice_pitch_bytes = 256 * 16,
                              .element_bytes = 4,
                              .width_el = 64,
                              .height_rows = 16};
  for (const uint32_t family : kFamilies) {
    harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const int32_t size_px : {0, -1, INT_MIN}) {
      expect_surface(gpu, {}, {.width_px = size_px, .height_px = size_px},
                     {.levels = {{.size_bytes = 4096, .planes = {{.image = kOneTile}}}},
                      .surface_bytes = 4096},
                     std::to_string(size_px));

      // One block, in rows of 64 by the pixel alignment.
      MemoryLayout record = record_of({});
      init_single_level(
          gpu, record,
          {.width_px = size_px, .height_px = size_px, .format = 71, .tiling_mode = kLinear});
      EXPECT_NUMBER(record.level[0].plane[0].image_width, 64);
      EXPECT_NUMBER(record.level[0].plane[0].image_height, 1);
    }
    EXPECT_TRUE(gpu.take_messages().empty());
  }
}

TEST(SingleLevel, DepthIsSigned) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  struct Row {
    int32_t depth;
    int64_t level_bytes;    // depth x 32768
    int64_t surface_bytes;  // and depth x 8224, up to 4096
  };
  for (const Row& row :
       {Row{.depth = 0, .level_bytes = 0, .surface_bytes = 0},
        // -32768 - 8224 = -40992, between -11 and -10 pages
        Row{.depth = -1, .level_bytes = -32768, .surface_bytes = -10 * 4096},
        // -2^31 x 2^15 and -2^31 x (0x8000 + 0x2020)
        Row{.depth = INT_MIN, .level_bytes = -0x400000000000, .surface_bytes = -0x501000000000}}) {
    const auto level_bytes = static_cast<uint64_t>(row.level_bytes);
    expect_surface(gpu, {}, {.depth = row.depth, .flags = kExtra},
                   {.levels = {{.size_bytes = level_bytes, .planes = {{.image = kTiled100x50}}}},
                    .extra = Extra{.offset_bytes = level_bytes,
                                   .size_bytes = static_cast<uint64_t>(int64_t{row.depth} * 8224)},
                    .surface_bytes = static_cast<uint64_t>(row.surface_bytes)},
                   "depth " + std::to_string(row.depth));
  }
}

TEST(SingleLevel, NumbersWithoutARecordAreOneByte) {
  // 100 x 50 elements in tiles of 128 x 32.
  constexpr Image kImage = {.size_bytes = 128 * 64,
                            .pitch_bytes = 128,
                            .slice_pitch_bytes = 128 * 64,
                            .element_bytes = 1,
                            .width_el = 128,
                            .height_rows = 64};
  for (const uint32_t family : kFamilies) {
    harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t format : {0u, 722u, kFourCC, 0xFFFFFFFFu}) {
      expect_surface(
          gpu, {}, {.format = format, .flags = kUbwc},
          {.levels = {{.size_bytes = 8192, .planes = {{.image = kImage}}}}, .surface_bytes = 8192},
          std::to_string(format));
    }
    EXPECT_TRUE(gpu.take_messages().empty());
  }
}

TEST(SingleLevel, UncheckedModesAndSamples) {
  for (const uint32_t family : {6u, 7u}) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    // Linear depth, 3 samples: element 12 bytes; 4 x 16 x 3 = 192, (100 + 191) & -192 = 256;
    // 1024 bytes a row of one sample, not a multiple of 2048.
    constexpr Image kThreeSamples = {.size_bytes = 38 * 4096,  // 3072 x 50 = 153600 to pages
                                     .pitch_bytes = 256 * 12,
                                     .slice_pitch_bytes = 38 * 4096,
                                     .element_bytes = 4 * 3,
                                     .width_el = 256,
                                     .height_rows = 50};
    expect_surface(gpu, {}, {.format = 40, .samples = 3, .tiling_mode = 3},
                   {.levels = {{.size_bytes = 38 * 4096, .planes = {{.image = kThreeSamples}}}},
                    .surface_bytes = 38 * 4096},
                   "mode 3");

    // No samples: elements of 0 bytes, whose width is not aligned.
    expect_surface(gpu, {}, {.samples = 0, .tiling_mode = kLinear},
                   {.levels = {{.planes = {{.image = {.width_el = 100, .height_rows = 50}}}}}},
                   "no samples");
  }
}

TEST(SingleLevel, BlocksOfTheWidestSurfacesWrapToNegativeWidths) {
  // (2147483647 + 3) wraps to -2147483646; / 4 is -536870911, up to 64 -536870848. What cannot be
  // aligned is laid out as one block of 8 bytes, in one page.
  constexpr Image kOneBlock = {.size_bytes = 4096,
                               .pitch_bytes = 8,
                               .slice_pitch_bytes = 4096,
                               .element_bytes = 8,
                               .width_el = 1,
                               .height_rows = 1};
  harness::Gpu gpu(harness::full_chip(6).chip_id);
  expect_surface(
      gpu, {}, {.width_px = INT_MAX, .format = 71},
      {.levels = {{.size_bytes = 4096, .planes = {{.image = kOneBlock}}}}, .surface_bytes = 4096},
      "widest");
  // 50 / 4 up: 13 rows of blocks.
  EXPECT_EQ(gpu.take_messages(), std::vector<harness::Message>{
                                     message("compute_fmt_aligned_width_and_height_fdm",
                                             "Invalid width or height: W = -536870848, H = 13")});
}

TEST(SingleLevel, AnUnknownChipIsReportedForEachPlane) {
  harness::Gpu gpu(harness::kUnknownChip);
  MemoryLayout record = record_of({.levels = 2});
  init_single_level(gpu, record, {.format = 103, .planes = 2});
  std::vector<harness::Message> expected = harness::unknown_chip_messages(harness::kUnknownChip);
  expected.insert(expected.end(), 2 * 2,  // levels x planes
                  message("compute_fmt_aligned_width_and_height_fdm", "Unknown Chip ID 305419896"));
  EXPECT_EQ(gpu.take_messages(), expected);
}

}  // namespace
}  // namespace layout_test
