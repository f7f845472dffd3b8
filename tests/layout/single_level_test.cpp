// The surface initialiser called directly, on records whose head somebody else has filled.
#include "tests/layout/layout_records.h"

namespace layout_test {
namespace {

using harness::message;

struct Surface {
  int32_t width = 100;
  int32_t height = 50;
  int32_t depth = 1;
  uint32_t format = 28;
  uint32_t samples = 1;
  uint32_t mode = kTiled;
  uint64_t flags = 0;
  uint32_t planes = 1;
};

void init(const harness::Gpu& gpu, MemoryLayout& record, const Surface& s) {
  gpu->korvel_init_single_level_surface(&record, s.width, s.height, s.depth, s.format, s.samples,
                                        s.mode, s.flags, s.planes);
}

// Only the three words that are read are set; all others are the canary's.
MemoryLayout record_of(uint32_t levels, uint32_t alignment = 4096, uint32_t size = 5512) {
  auto record = canary<MemoryLayout>();
  record.levels = levels;
  record.alignment = alignment;
  record.size = size;
  return record;
}

TEST(SingleLevel, OnlyTheLayoutIsWrittenAndTheHeadIsReadFromTheRecord) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    // 32768 bytes, rounded up to the record's own alignment, plus the record's own size.
    struct Row {
      uint32_t alignment;
      uint32_t size;
      uint64_t total;
    };
    for (const Row& row : {Row{4096, 5512, 38280}, Row{64, 5472, 38240}, Row{0x10000, 1, 65537},
                           Row{0, 5512, 5512}, Row{1, 0xFFFFFFFF, 0xFFFFFFFF + uint64_t{32768}}}) {
      MemoryLayout record = record_of(1, row.alignment, row.size);
      MemoryLayout expected = record;
      put_level(expected.level[0], 1, 1, 32768, 1);
      put_image(expected.level[0].plane[0], {0, 32768, 512, 32768, 4, 128, 64});
      put_no_extra(expected);
      expected.total_size = row.total;
      init(gpu, record, {});
      expect_same_bytes(record, expected, "alignment " + std::to_string(row.alignment));
    }
  }
}

TEST(SingleLevel, RecordsWithoutLevelsHaveOnlyTheExtraBuffer) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  MemoryLayout record = record_of(0);
  MemoryLayout expected = record;
  put_no_extra(expected);
  expected.total_size = 5512;
  init(gpu, record, {.flags = LAYOUT_FLAG_EXTENDED});
  expect_same_bytes(record, expected, "nothing");

  record = record_of(0);
  expected = record;
  put_extra(expected, 0, 16448, 1);
  expected.total_size = 5512 + 20480;
  init(gpu, record, {.depth = 2, .flags = LAYOUT_FLAG_EXTRA | LAYOUT_FLAG_EXTENDED});
  expect_same_bytes(record, expected, "extra");
}

TEST(SingleLevel, SeveralLevelsFollowEachOther) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    // 100 x 50, 50 x 25, 25 x 12 in tiles of 64 x 16: 128 x 64, 64 x 32, 64 x 16.
    MemoryLayout record = record_of(3);
    MemoryLayout expected = record;
    put_level(expected.level[0], 2, 1, 65536, 1);
    put_image(expected.level[0].plane[0], {0, 32768, 512, 32768, 4, 128, 64});
    put_level(expected.level[1], 2, 1, 16384, 1);
    put_image(expected.level[1].plane[0], {32768, 8192, 256, 8192, 4, 64, 32});
    put_level(expected.level[2], 2, 1, 8192, 1);
    put_image(expected.level[2].plane[0], {40960, 4096, 256, 4096, 4, 64, 16});
    put_no_extra(expected);
    expected.total_size = 5512 + 90112;  // 2 x 45056
    init(gpu, record, {.depth = 2});
    expect_same_bytes(record, expected, "three levels");
  }
}

TEST(SingleLevel, FifteenLevelsEndAtOneByOne) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  // Linear one-byte elements, 100 x 50: a page for each level. The width is 1 from level 6 (100 >>
  // 6) and the height from level 5 on; both stay there when the shift gives 0.
  MemoryLayout record = record_of(15, 64);
  MemoryLayout expected = record;
  constexpr uint32_t kHeights[] = {50, 25, 12, 6, 3, 1};
  uint64_t offset = 0;
  for (uint32_t l = 0; l < 15; ++l) {
    const uint64_t size = l == 0 ? 8192 : 4096;  // 128 x 50 = 6400
    put_level(expected.level[l], 1, 0, size, 1);
    put_image(expected.level[l].plane[0], {offset, size, l == 0 ? 128u : 64u, size, 1,
                                           l == 0 ? 128u : 64u, kHeights[l < 5 ? l : 5]});
    offset += size;
  }
  put_no_extra(expected);
  expected.total_size = 5512 + 16 * 4096;
  init(gpu, record, {.format = 61, .mode = kLinear});
  expect_same_bytes(record, expected, "fifteen levels");
}

TEST(SingleLevel, SizesBelowOneCountAsOne) {
  for (const uint32_t family : kFamilies) {
    harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const int32_t size : {0, -1, INT_MIN}) {
      MemoryLayout record = record_of(1);
      MemoryLayout expected = record;
      put_level(expected.level[0], 1, 1, 4096, 1);
      put_image(expected.level[0].plane[0], {0, 4096, 256, 4096, 4, 64, 16});
      put_no_extra(expected);
      expected.total_size = 5512 + 4096;
      init(gpu, record, {.width = size, .height = size});
      expect_same_bytes(record, expected, std::to_string(size));

      record = record_of(1);
      init(gpu, record, {.width = size, .height = size, .format = 71, .mode = kLinear});
      EXPECT_EQ(record.level[0].plane[0].image_width, 64u);
      EXPECT_EQ(record.level[0].plane[0].image_height, 1u);
    }
    EXPECT_TRUE(gpu.take_messages().empty());
  }
}

TEST(SingleLevel, DepthIsSigned) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  struct Row {
    int32_t depth;
    uint64_t level_size;  // depth x 32768
    uint64_t surface;     // and depth x 8224, up to 4096
  };
  for (const Row& row :
       {Row{0, 0, 0},
        Row{-1, static_cast<uint64_t>(-32768), static_cast<uint64_t>(-40960)},  // -40992
        Row{INT_MIN, static_cast<uint64_t>(-0x400000000000),
            static_cast<uint64_t>(-0x501000000000)}}) {
    MemoryLayout record = record_of(1);
    MemoryLayout expected = record;
    put_level(expected.level[0], static_cast<uint32_t>(row.depth), 1, row.level_size, 1);
    put_image(expected.level[0].plane[0], {0, 32768, 512, 32768, 4, 128, 64});
    put_extra(expected, row.level_size, static_cast<uint64_t>(int64_t{row.depth} * 8224), 0);
    expected.total_size = row.surface + 5512;
    init(gpu, record, {.depth = row.depth, .flags = LAYOUT_FLAG_EXTRA});
    expect_same_bytes(record, expected, "depth " + std::to_string(row.depth));
  }
}

TEST(SingleLevel, NumbersWithoutARecordAreOneByte) {
  for (const uint32_t family : kFamilies) {
    harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t format : {0u, 722u, kFourCC, 0xFFFFFFFFu}) {
      MemoryLayout record = record_of(1);
      MemoryLayout expected = record;
      put_level(expected.level[0], 1, 1, 8192, 1);
      put_image(expected.level[0].plane[0], {0, 8192, 128, 8192, 1, 128, 64});
      put_no_extra(expected);
      expected.total_size = 5512 + 8192;
      init(gpu, record, {.format = format, .flags = LAYOUT_FLAG_UBWC});
      expect_same_bytes(record, expected, std::to_string(format));
    }
    EXPECT_TRUE(gpu.take_messages().empty());
  }
}

TEST(SingleLevel, UncheckedModesAndSamples) {
  for (const uint32_t family : {6u, 7u}) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    // Linear depth, 3 samples: element 12 bytes; 4 x 16 x 3 = 192, (100 + 191) & -192 = 256;
    // 1024 bytes a row of one sample, not a multiple of 2048.
    MemoryLayout record = record_of(1);
    MemoryLayout expected = record;
    put_level(expected.level[0], 1, 3, 155648, 1);
    put_image(expected.level[0].plane[0], {0, 155648, 3072, 155648, 12, 256, 50});  // 153600
    put_no_extra(expected);
    expected.total_size = 5512 + 155648;
    init(gpu, record, {.format = 40, .samples = 3, .mode = 3});
    expect_same_bytes(record, expected, "mode 3");

    // No samples: elements of 0 bytes, whose width is not aligned.
    record = record_of(1);
    expected = record;
    put_level(expected.level[0], 1, 0, 0, 1);
    put_image(expected.level[0].plane[0], {0, 0, 0, 0, 0, 100, 50});
    put_no_extra(expected);
    expected.total_size = 5512;
    init(gpu, record, {.samples = 0, .mode = kLinear});
    expect_same_bytes(record, expected, "no samples");
  }
}

TEST(SingleLevel, BlocksOfTheWidestSurfacesWrapToNegativeWidths) {
  // (2147483647 + 3) wraps to -2147483646; / 4 is -536870911, up to 64 -536870848.
  harness::Gpu gpu(harness::full_chip(6).chip_id);
  MemoryLayout record = record_of(1);
  MemoryLayout expected = record;
  put_level(expected.level[0], 1, 1, 4096, 1);
  put_image(expected.level[0].plane[0], {0, 4096, 8, 4096, 8, 1, 1});
  put_no_extra(expected);
  expected.total_size = 5512 + 4096;
  init(gpu, record, {.width = INT_MAX, .format = 71});
  expect_same_bytes(record, expected, "widest");
  EXPECT_EQ(gpu.take_messages(), std::vector<harness::Message>{
                                     message("compute_fmt_aligned_width_and_height_fdm",
                                             "Invalid width or height: W = -536870848, H = 13")});
}

TEST(SingleLevel, AnUnknownChipIsReportedForEachPlane) {
  harness::Gpu gpu(harness::kUnknownChip);
  MemoryLayout record = record_of(2);
  init(gpu, record, {.format = 103, .planes = 2});
  std::vector<harness::Message> expected = harness::unknown_chip_messages(harness::kUnknownChip);
  expected.insert(expected.end(), 4,
                  message("compute_fmt_aligned_width_and_height_fdm", "Unknown Chip ID 305419896"));
  EXPECT_EQ(gpu.take_messages(), expected);
}

}  // namespace
}  // namespace layout_test
