// Mip chains.
#include "tests/layout/layout_records.h"

namespace layout_test {
namespace {

using harness::message;
using Columns = korvel::ChipColumns;

constexpr uint64_t kUbwc = LAYOUT_FLAG_UBWC;
constexpr uint64_t kExtra = LAYOUT_FLAG_EXTRA;

struct Surface {
  uint32_t width = 100;
  uint32_t height = 100;
  int32_t depth = 1;
  uint32_t format = 28;
  uint32_t samples = 1;
  uint32_t mode = kTiled;
  uint64_t flags = 0;
  uint32_t planes = 1;
};

void init(const harness::Gpu& gpu, MemoryLayout& record, const Surface& s) {
  gpu->korvel_init_multi_level_surface(&record, s.width, s.height, s.depth, s.format, s.samples,
                                       s.mode, s.flags, s.planes);
}

// The words that are read, the flag sizes among them; all others are the canary's.
MemoryLayout record_of(uint32_t levels, uint32_t alignment = 4096, uint32_t size = 5512) {
  auto record = canary<MemoryLayout>();
  record.levels = levels;
  record.alignment = alignment;
  record.size = size;
  for (LevelLayout& level : record.level) level.plane[0].flag_size = 0;
  return record;
}

// One level of a plane's chain; flags: a size of 0 says that there are none.
struct Step {
  uint64_t level_size;
  uint64_t offset;
  uint64_t size;
  uint32_t pitch;
  uint32_t width;
  uint32_t height;
  uint64_t flag_offset = 0;
  uint64_t flag_size = 0;
  uint32_t flag_pitch = 0;
};

struct Chain {
  uint32_t element_size;
  uint64_t slice_pitch;
  uint64_t flag_slice_pitch;
  std::vector<Step> steps;
};

void put_chain(MemoryLayout& record, uint32_t slices, uint32_t mode, uint32_t planes, uint32_t p,
               const Chain& chain) {
  for (std::size_t l = 0; l < chain.steps.size(); ++l) {
    const Step& step = chain.steps[l];
    LevelLayout& level = record.level[l];
    put_level(level, slices, mode, step.level_size, planes);
    put_image(level.plane[p], {step.offset, step.size, step.pitch, chain.slice_pitch,
                               chain.element_size, step.width, step.height});
    if (step.flag_size != 0) {
      put_flags(level.plane[p],
                {step.flag_offset, step.flag_size, step.flag_pitch, chain.flag_slice_pitch});
    } else if (mode == kTiled && planes == 1) {
      // These two words are stored whether or not the level has a flag buffer.
      level.plane[p].flag_offset = step.flag_offset;
      level.plane[p].flag_slice_pitch = chain.flag_slice_pitch;
    }
  }
}

// 28, 100 x 100 as 128 x 100: tiles of 64 x 16.
const Chain kTiledChain{4,
                        98304,
                        0,
                        {{57344, 0, 57344, 512, 128, 112},
                         {16384, 57344, 16384, 256, 64, 64},
                         {8192, 73728, 8192, 256, 64, 32},
                         {4096, 81920, 4096, 256, 64, 16},    // 16 x 12
                         {4096, 86016, 4096, 256, 64, 16},    // 8 x 6
                         {4096, 90112, 4096, 256, 64, 16},    // 4 x 3
                         {4096, 94208, 4096, 256, 64, 16}}};  // 2 x 1

TEST(MultiLevel, ATiledChain) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    MemoryLayout record = record_of(7);
    MemoryLayout expected = record;
    put_chain(expected, 1, 1, 1, 0, kTiledChain);
    put_no_extra(expected);
    expected.total_size = 5512 + 98304;
    init(gpu, record, {});
    expect_same_bytes(record, expected, "family " + std::to_string(family));
  }
}

TEST(MultiLevel, SlicesAreWholeChains) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    // 3 levels: 57344 + 16384 + 8192 = 81920, 20 pages. 6 slices and their extra buffer: 491520 +
    // 49344 = 540864 -> 133 pages.
    MemoryLayout record = record_of(3);
    MemoryLayout expected = record;
    put_chain(expected, 6, 1, 1, 0,
              {4,
               81920,
               0,
               {{344064, 0, 57344, 512, 128, 112},
                {98304, 57344, 16384, 256, 64, 64},
                {49152, 73728, 8192, 256, 64, 32}}});
    put_extra(expected, 491520, 49344, 0);
    expected.total_size = 5512 + 544768;
    init(gpu, record, {.depth = 6, .flags = kExtra});
    expect_same_bytes(record, expected, "family " + std::to_string(family));
  }
}

TEST(MultiLevel, ALinearChain) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    MemoryLayout record = record_of(7, 64);
    MemoryLayout expected = record;
    if (family == 5) {
      // 64 elements at least; no page a level, the chain as a whole: 76032 -> 19 pages.
      put_chain(expected, 1, 0, 1, 0,
                {4,
                 77824,
                 0,
                 {{51200, 0, 51200, 512, 128, 100},
                  {12800, 51200, 12800, 256, 64, 50},
                  {6400, 64000, 6400, 256, 64, 25},
                  {3072, 70400, 3072, 256, 64, 12},
                  {1536, 73472, 1536, 256, 64, 6},
                  {768, 75008, 768, 256, 64, 3},
                  {256, 75776, 256, 256, 64, 1}}});
      expected.total_size = 5512 + 77824;
    } else {
      // 64 bytes / 4 = 16 elements at least: 68608 -> 17 pages.
      put_chain(expected, 1, 0, 1, 0,
                {4,
                 69632,
                 0,
                 {{51200, 0, 51200, 512, 128, 100},
                  {12800, 51200, 12800, 256, 64, 50},
                  {3200, 64000, 3200, 128, 32, 25},
                  {768, 67200, 768, 64, 16, 12},
                  {384, 67968, 384, 64, 16, 6},
                  {192, 68352, 192, 64, 16, 3},
                  {64, 68544, 64, 64, 16, 1}}});
      expected.total_size = 5512 + 69632;
    }
    put_no_extra(expected);
    init(gpu, record, {.mode = kLinear});
    expect_same_bytes(record, expected, "family " + std::to_string(family));
  }
}

TEST(MultiLevel, LinearRowsOfAChainAreNeverPadded) {
  // 512 elements of 4 bytes: 768 in a single-level surface.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    MemoryLayout record = record_of(1, 64);
    MemoryLayout expected = record;
    put_chain(expected, 1, 0, 1, 0, {4, 20480, 0, {{20480, 0, 20480, 2048, 512, 10}}});
    put_no_extra(expected);
    expected.total_size = 5512 + 20480;
    init(gpu, record, {.width = 500, .height = 10, .mode = kLinear});
    expect_same_bytes(record, expected, "family " + std::to_string(family));
  }
}

TEST(MultiLevel, FlagBuffersOfATiledChainStandInFront) {
  // 28, flags for 16 x 4 texels of 128 x 128: 8 x 32, 4 x 16, 2 x 8, each raised to 64 x 64 bytes.
  // Two slices of 12288 bytes of flags; two chains of 81920 behind them.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    MemoryLayout record = record_of(3);
    MemoryLayout expected = record;
    put_chain(expected, 2, 1, 1, 0,
              {4,
               81920,
               12288,
               {{114688, 24576, 57344, 512, 128, 112, 0, 4096, 64},
                {32768, 81920, 16384, 256, 64, 64, 4096, 4096, 64},
                {16384, 98304, 8192, 256, 64, 32, 8192, 4096, 64}}});
    put_no_extra(expected);
    expected.total_size = 5512 + 188416;
    init(gpu, record, {.depth = 2, .flags = kUbwc});
    expect_same_bytes(record, expected, "family " + std::to_string(family));
  }
}

TEST(MultiLevel, FlagBuffersCoverThePowersOfTwoAbove) {
  // 1000 x 300 as 1024 x 300; the flags as 1024 x 512: 64 x 128, then 32 -> 64 x 64 and 64 x 64.
  // Flags 16384 a slice, 3 slices; images 4096 x 304, 2048 x 160, 1024 x 80: 404 pages a slice.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    MemoryLayout record = record_of(3);
    MemoryLayout expected = record;
    put_chain(expected, 3, 1, 1, 0,
              {4,
               1654784,
               16384,
               {{3735552, 49152, 1245184, 4096, 1024, 304, 0, 8192, 64},
                {983040, 1294336, 327680, 2048, 512, 160, 8192, 4096, 64},
                {245760, 1622016, 81920, 1024, 256, 80, 12288, 4096, 64}}});
    put_extra(expected, 5013504, 24672, 0);
    expected.total_size = 5512 + 5042176;  // 5038176 to pages
    init(gpu, record, {.width = 1000, .height = 300, .depth = 3, .flags = kUbwc | kExtra});
    expect_same_bytes(record, expected, "family " + std::to_string(family));
  }
}

TEST(MultiLevel, FlagBuffersAboveTheMinimumShrinkByTheLevel) {
  // 16384 x 4096: 1024 x 1024, 512 x 512, 256 x 256, 128 x 128, 64 x 64 and 64 x 64 (32) bytes.
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  MemoryLayout record = record_of(6);
  init(gpu, record, {.width = 16384, .height = 4096, .flags = kUbwc});
  constexpr uint32_t kPitches[] = {1024, 512, 256, 128, 64, 64};
  constexpr uint64_t kOffsets[] = {0, 0x100000, 0x140000, 0x150000, 0x154000, 0x155000};
  for (std::size_t l = 0; l < 6; ++l) {
    const PlaneLayout& plane = record.level[l].plane[0];
    EXPECT_EQ(plane.flag_pitch, kPitches[l]) << l;
    EXPECT_EQ(plane.flag_size, uint64_t{kPitches[l]} * kPitches[l]) << l;
    EXPECT_EQ(plane.flag_offset, kOffsets[l]) << l;
    EXPECT_EQ(plane.flag_slice_pitch, 0x156000u) << l;
  }
  EXPECT_EQ(record.level[0].plane[0].image_offset, 0x156000u);
}

TEST(MultiLevel, StoredFlagSizesOfLevelsWithoutFlagBuffersAreSummed) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  MemoryLayout record = record_of(3);
  record.level[0].plane[0].flag_size = 100;
  record.level[1].plane[0].flag_size = 0x100000000;
  record.level[2].plane[0].flag_size = 7;
  MemoryLayout expected = record;
  // 0x10000006B up to 4096: the images start at 0x100001000.
  constexpr uint64_t kStart = 0x100001000;
  put_chain(expected, 1, 1, 1, 0,
            {4,
             81920,
             kStart,
             {{57344, kStart, 57344, 512, 128, 112, 0},
              {16384, kStart + 57344, 16384, 256, 64, 64, 100},
              {8192, kStart + 73728, 8192, 256, 64, 32, 0x100000064}}});
  put_no_extra(expected);
  expected.total_size = 5512 + kStart + 81920;
  init(gpu, record, {});
  expect_same_bytes(record, expected, "stored flag sizes");
}

TEST(MultiLevel, FlagBuffersOfALinearPlaneHaveNoPlace) {
  // They are counted and described, but their offset and slice pitch stay as they were, and no
  // bytes are set aside.
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  MemoryLayout record = record_of(2, 64);
  MemoryLayout expected = record;
  put_chain(expected, 1, 0, 1, 0,
            {4, 65536, 0, {{51200, 0, 51200, 512, 128, 100}, {12800, 51200, 12800, 256, 64, 50}}});
  for (std::size_t l = 0; l < 2; ++l) {
    PlaneLayout& plane = expected.level[l].plane[0];
    plane.flag_valid = 1;
    plane.flag_size = 4096;
    plane.flag_pitch = 64;
  }
  put_no_extra(expected);
  expected.total_size = 5512 + 65536;
  init(gpu, record, {.mode = kLinear, .flags = kUbwc});
  expect_same_bytes(record, expected, "linear, flags");
}

TEST(MultiLevel, TwoPlanesWithFlagBuffers) {
  // 103, 100 x 60 as 128 x 60. Plane 0 in 128 x 32 tiles: 128 x 64, 128 x 32. Plane 1 in 64 x 32:
  // 128 x 64, 64 x 32, whose 2048 bytes are a page. Flags of 64 x 64 bytes before each image; the
  // level's size is that of the last plane.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t depth : {1u, 3u}) {
      MemoryLayout record = record_of(2);
      MemoryLayout expected = record;
      put_chain(expected, depth, 1, 2, 0,
                {1,
                 20480,
                 20480,
                 {{0, 4096, 8192, 128, 128, 64, 0, 4096, 64},
                  {0, 16384, 4096, 128, 128, 32, 12288, 4096, 64}}});
      const uint64_t c = depth * 20480;  // plane 1 stands behind all slices of plane 0
      put_chain(expected, depth, 1, 2, 1,
                {1,
                 20480,
                 20480,
                 {{depth * 12288, c + 4096, 8192, 128, 128, 64, c, 4096, 64},
                  {depth * 8192, c + 16384, 4096, 64, 64, 32, c + 12288, 4096, 64}}});
      put_no_extra(expected);
      expected.total_size = 5512 + depth * 40960;
      init(gpu, record,
           {.height = 60,
            .depth = static_cast<int32_t>(depth),
            .format = 103,
            .flags = kUbwc,
            .planes = 2});
      expect_same_bytes(record, expected, "family " + std::to_string(family));
    }
  }
}

TEST(MultiLevel, TwoLinearPlanesWithFlagBuffers) {
  // 128 x 60 bytes in each plane, behind 64 x 64 bytes of flags: 11776 -> 3 pages.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    MemoryLayout record = record_of(1, 64);
    MemoryLayout expected = record;
    for (uint32_t p = 0; p < 2; ++p) {
      const uint64_t start = p * 12288;
      put_chain(expected, 1, 0, 2, p,
                {1, 12288, 12288, {{11776, start + 4096, 7680, 128, 128, 60, start, 4096, 64}}});
    }
    put_no_extra(expected);
    expected.total_size = 5512 + 24576;
    init(gpu, record, {.height = 60, .format = 103, .mode = kLinear, .flags = kUbwc, .planes = 2});
    expect_same_bytes(record, expected, "family " + std::to_string(family));
  }
}

TEST(MultiLevel, ThreePlanesWithoutFlagBuffers) {
  // 615, 100 x 40 as 128 x 40: 128 x 64 and 128 x 32 in each plane. The flag words stay.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    MemoryLayout record = record_of(2);
    MemoryLayout expected = record;
    for (uint32_t p = 0; p < 3; ++p) {
      put_chain(
          expected, 2, 1, 3, p,
          {1,
           12288,
           0,
           {{16384, p * 24576, 8192, 128, 128, 64}, {8192, p * 24576 + 8192, 4096, 128, 128, 32}}});
    }
    put_no_extra(expected);
    expected.total_size = 5512 + 73728;
    init(gpu, record, {.height = 40, .depth = 2, .format = 615, .flags = kUbwc, .planes = 3});
    expect_same_bytes(record, expected, "family " + std::to_string(family));
  }
}

TEST(MultiLevel, BlocksAreCountedAtEveryLevel) {
  // 100 x 100 as 128 x 100 texels: 32 x 25, 16 x 13, 8 x 7 blocks, 64 wide each.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    MemoryLayout record = record_of(3);
    MemoryLayout expected = record;
    put_chain(expected, 1, 1, 1, 0,
              {8,
               32768,
               0,
               {{16384, 0, 16384, 512, 64, 32},
                {8192, 16384, 8192, 512, 64, 16},
                {8192, 24576, 8192, 512, 64, 16}}});
    put_no_extra(expected);
    expected.total_size = 5512 + 32768;
    init(gpu, record, {.format = 71, .flags = kUbwc});
    expect_same_bytes(record, expected, "tiled blocks");

    record = record_of(3, 64);
    expected = record;
    put_chain(expected, 1, 0, 1, 0,
              {8,
               24576,
               0,
               {{12800, 0, 12800, 512, 64, 25},
                {6656, 12800, 6656, 512, 64, 13},
                {3584, 19456, 3584, 512, 64, 7}}});
    put_no_extra(expected);
    expected.total_size = 5512 + 24576;  // 23040 to pages
    init(gpu, record, {.format = 71, .mode = kLinear});
    expect_same_bytes(record, expected, "linear blocks");
  }
}

TEST(MultiLevel, SamplesMultiplyTheElement) {
  // 28 x 4, 16 bytes: tiles of 16 x 16 (64 on family 5). 128 x 48, 64 x 32.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    MemoryLayout record = record_of(2);
    MemoryLayout expected = record;
    // Flags for 4 x 4 texels of 128 x 64: 32 x 16 and 16 x 8, raised to 64 x 64.
    put_chain(expected, 1, 1, 1, 0,
              {16,
               131072,
               8192,
               {{98304, 8192, 98304, 2048, 128, 48, 0, 4096, 64},
                {32768, 106496, 32768, 1024, 64, 32, 4096, 4096, 64}}});
    put_no_extra(expected);
    expected.total_size = 5512 + 139264;
    init(gpu, record, {.height = 40, .samples = 4, .flags = kUbwc});
    expect_same_bytes(record, expected, "family " + std::to_string(family));
  }
}

TEST(MultiLevel, ExtendedPadsEveryLevel) {
  for (const uint32_t family : {6u, 7u}) {
    const harness::ChipData& chip =
        harness::chip_where("padded by n = 2", [family](const harness::ChipData& c) {
          return c.family_id == family && c.supported && harness::in_every_column(c.columns) &&
                 padding_n(c) == 2;
        });
    const harness::Gpu gpu(chip.chip_id);
    // 160 x 132, 96 x 82 -> 192 x 144, 128 x 96: 110592 + 49152 = 159744; + 8224 = 167968 -> 42
    // pages.
    MemoryLayout record = record_of(2);
    MemoryLayout expected = record;
    put_chain(
        expected, 1, 1, 1, 0,
        {4, 159744, 0, {{110592, 0, 110592, 768, 192, 144}, {49152, 110592, 49152, 512, 128, 96}}});
    put_extra(expected, 159744, 8224, 1);
    expected.total_size = 5512 + 172032;
    init(gpu, record, {.flags = kExtra | LAYOUT_FLAG_EXTENDED});
    expect_same_bytes(record, expected, "family " + std::to_string(family));
  }
}

TEST(MultiLevel, NoPlanesLeaveTheLevelWordsAlone) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  for (const uint32_t mode : {kLinear, kTiled}) {
    MemoryLayout record = record_of(3);
    MemoryLayout expected = record;
    for (std::size_t l = 0; l < 3; ++l) {
      expected.level[l].lrz_valid = 0;
      expected.level[l].lrz_fc_valid = 0;
    }
    put_extra(expected, 0, 49344, 1);
    expected.total_size = 5512 + 53248;
    init(gpu, record,
         {.depth = 6, .mode = mode, .flags = kUbwc | kExtra | LAYOUT_FLAG_EXTENDED, .planes = 0});
    expect_same_bytes(record, expected, "no planes");
  }
}

TEST(MultiLevel, NoLevelsLeaveAllLevelsAlone) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  MemoryLayout record = record_of(0, 4096, 5472);
  MemoryLayout expected = record;
  put_no_extra(expected);
  expected.total_size = 5472;
  init(gpu, record, {.flags = kUbwc});
  expect_same_bytes(record, expected, "no levels");
}

TEST(MultiLevel, FifteenLevels) {
  // One-byte tiles of 128 x 32, 16384 x 16384: each level a quarter, down to one tile at level 7
  // (128 x 128 is 4 tiles) and from there on 64 x 64 (2), 32 x 32 (1) ...
  const harness::Gpu gpu(harness::full_chip(7).chip_id);
  MemoryLayout record = record_of(15);
  init(gpu, record, {.width = 16384, .height = 16384, .format = 61});
  constexpr uint64_t kPages[] = {65536, 16384, 4096, 1024, 256, 64, 16, 4, 2, 1, 1, 1, 1, 1, 1};
  uint64_t offset = 0;
  for (std::size_t l = 0; l < 15; ++l) {
    EXPECT_EQ(record.level[l].plane[0].image_offset, offset) << l;
    EXPECT_EQ(record.level[l].plane[0].image_size, kPages[l] * 4096) << l;
    EXPECT_EQ(record.level[l].size, kPages[l] * 4096) << l;
    EXPECT_EQ(record.level[l].lrz_valid, 0u) << l;
    offset += kPages[l] * 4096;
  }
  EXPECT_EQ(record.total_size, 5512 + offset);
}

TEST(MultiLevel, ExtentsBelowOne) {
  // The width is rounded to 64 first: 1 is 64, and 0, as what wraps to 0, is 1 in the end. Linear
  // one-byte elements on family 6: 64 elements for both; 4-byte ones: 16 for 1.
  harness::Gpu gpu(harness::full_chip(6).chip_id);
  struct Row {
    uint32_t width;
    uint32_t height;
    uint32_t expected_width;
    uint32_t expected_height;
  };
  for (const Row& row :
       {Row{1, 1, 64, 1}, Row{0, 0, 16, 1}, Row{0xFFFFFFFF, 0x80000000, 16, 1},
        Row{0xFFFFFFC0, 5, 16, 5}, Row{0x80000000, 0xFFFFFFFF, 16, 1}, Row{65, 2, 128, 2}}) {
    MemoryLayout record = record_of(1, 64);
    init(gpu, record, {.width = row.width, .height = row.height, .mode = kLinear});
    EXPECT_EQ(record.level[0].plane[0].image_width, row.expected_width) << row.width;
    EXPECT_EQ(record.level[0].plane[0].image_height, row.expected_height) << row.height;
  }
  EXPECT_TRUE(gpu.take_messages().empty());
}

TEST(MultiLevel, NegativeDepthWraps) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  MemoryLayout record = record_of(1);
  MemoryLayout expected = record;
  put_chain(expected, 0xFFFFFFFF, 1, 1, 0,
            {4, 57344, 0, {{static_cast<uint64_t>(-57344), 0, 57344, 512, 128, 112}}});
  put_extra(expected, static_cast<uint64_t>(-57344), static_cast<uint64_t>(-8224), 0);
  expected.total_size = 5512 + static_cast<uint64_t>(-65536);  // -65568 to pages
  init(gpu, record, {.depth = -1, .flags = kExtra});
  expect_same_bytes(record, expected, "depth -1");
}

TEST(MultiLevel, TotalsHave64Bits) {
  // 2048 x 2048: 16 MiB and 4 MiB a slice; 2048 slices.
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  MemoryLayout record = record_of(2);
  init(gpu, record, {.width = 2048, .height = 2048, .depth = 2048});
  EXPECT_EQ(record.level[0].size, 0x800000000u);
  EXPECT_EQ(record.level[1].size, 0x200000000u);
  EXPECT_EQ(record.level[0].plane[0].image_slice_pitch, 0x1400000u);
  EXPECT_EQ(record.total_size, 5512u + 0xA00000000);
}

// ---- Chips that lack a property -----------------------------------------------------------------

TEST(MultiLevel, WithoutAMinimumExtentFlagBuffersAreNotRaised) {
  // 8 x 32, 4 x 16, 2 x 8: 256 + 64 + 16 bytes, a page.
  const harness::Gpu gpu(chip_lacking(&Columns::min_level_extent).chip_id);
  MemoryLayout record = record_of(3);
  MemoryLayout expected = record;
  put_chain(expected, 1, 1, 1, 0,
            {4,
             81920,
             4096,
             {{57344, 4096, 57344, 512, 128, 112, 0, 256, 8},
              {16384, 61440, 16384, 256, 64, 64, 256, 64, 4},
              {8192, 77824, 8192, 256, 64, 32, 320, 16, 2}}});
  put_no_extra(expected);
  expected.total_size = 5512 + 86016;
  init(gpu, record, {.flags = kUbwc});
  expect_same_bytes(record, expected, "no minimum extent");

  // One byte and one row at least: 8 and 32, shifted.
  record = record_of(8);
  init(gpu, record, {.flags = kUbwc});
  constexpr uint32_t kPitches[] = {8, 4, 2, 1, 1, 1, 1, 1};
  constexpr uint64_t kSizes[] = {256, 64, 16, 4, 2, 1, 1, 1};
  for (std::size_t l = 0; l < 8; ++l) {
    EXPECT_EQ(record.level[l].plane[0].flag_pitch, kPitches[l]) << l;
    EXPECT_EQ(record.level[l].plane[0].flag_size, kSizes[l]) << l;
  }
}

TEST(MultiLevel, WithoutALevelOffsetAlignmentImagesStartAtZero) {
  // The chain starts at 0 rounded from what the flag buffers take, over them.
  const harness::Gpu gpu(chip_lacking(&Columns::level_offset_alignment).chip_id);
  MemoryLayout record = record_of(1);
  MemoryLayout expected = record;
  put_chain(expected, 1, 1, 1, 0,
            {4, 57344, 4096, {{57344, 0, 57344, 512, 128, 112, 0, 4096, 64}}});
  put_no_extra(expected);
  expected.total_size = 5512 + 57344;
  init(gpu, record, {.flags = kUbwc});
  expect_same_bytes(record, expected, "no level offset alignment");
}

TEST(MultiLevel, WithoutALevelSizeAlignmentTheFlagAreaIsEmpty) {
  const harness::Gpu gpu(chip_lacking(&Columns::level_size_alignment).chip_id);
  MemoryLayout record = record_of(2);
  MemoryLayout expected = record;
  put_chain(expected, 1, 1, 1, 0,
            {4,
             73728,
             0,
             {{57344, 0, 57344, 512, 128, 112, 0, 4096, 64},
              {16384, 57344, 16384, 256, 64, 64, 4096, 4096, 64}}});
  put_no_extra(expected);
  expected.total_size = 5512 + 73728;
  init(gpu, record, {.flags = kUbwc});
  expect_same_bytes(record, expected, "no level size alignment");
}

TEST(MultiLevel, WithoutABaseAlignmentChainsHaveNoSlicePitch) {
  const harness::Gpu gpu(chip_lacking(&Columns::base_alignment).chip_id);
  MemoryLayout record = record_of(2);
  MemoryLayout expected = record;
  put_chain(expected, 2, 1, 1, 0,
            {4, 0, 0, {{114688, 0, 57344, 512, 128, 112}, {32768, 57344, 16384, 256, 64, 64}}});
  put_no_extra(expected);
  expected.total_size = 5512;
  init(gpu, record, {.depth = 2});
  expect_same_bytes(record, expected, "no base alignment");
}

TEST(MultiLevel, WithoutALinearAlignmentLinearImagesTakeNoBytes) {
  const harness::Gpu gpu(chip_lacking(&Columns::linear_alignment, 6).chip_id);
  MemoryLayout record = record_of(1, 64);
  MemoryLayout expected = record;
  put_chain(expected, 1, 0, 1, 0, {4, 0, 0, {{0, 0, 0, 512, 128, 100}}});
  put_no_extra(expected);
  expected.total_size = 5512;
  init(gpu, record, {.mode = kLinear});
  expect_same_bytes(record, expected, "no linear alignment");
}

TEST(MultiLevel, WithoutATiledAlignmentImagesAreNotRounded) {
  // 3-byte elements on family 5: rows of 64 elements, 192 bytes; 16 of them 3072 bytes, no page.
  const harness::Gpu gpu(
      harness::chip_where("of family 5 without tiled alignment", [](const harness::ChipData& c) {
        return c.family_id == 5 && c.supported && !c.columns.tiled_alignment &&
               c.columns.base_alignment && c.columns.level_offset_alignment;
      }).chip_id);
  MemoryLayout record = record_of(2);
  init(gpu, record, {.width = 64, .height = 16, .format = 508});
  EXPECT_EQ(record.level[0].plane[0].image_size, 3072u);
  EXPECT_EQ(record.level[1].plane[0].image_offset, 3072u);
  EXPECT_EQ(record.level[1].plane[0].image_size, 3072u);
  EXPECT_EQ(record.level[0].plane[0].image_slice_pitch, 8192u);
}

TEST(MultiLevel, AnUnknownChipIsReportedForEveryImage) {
  harness::Gpu gpu(harness::kUnknownChip);
  MemoryLayout record = record_of(2);
  MemoryLayout expected = record;
  // Sizes as they are, images rounded to 1, everything else to 0.
  put_chain(expected, 1, 1, 1, 0,
            {4, 0, 0, {{51200, 0, 51200, 512, 128, 100}, {12800, 51200, 12800, 256, 64, 50}}});
  put_no_extra(expected);
  expected.total_size = 5512;
  init(gpu, record, {.flags = kUbwc});
  expect_same_bytes(record, expected, "unknown chip");
  std::vector<harness::Message> messages = harness::unknown_chip_messages(harness::kUnknownChip);
  messages.insert(messages.end(), 2,
                  message("compute_fmt_aligned_width_and_height_fdm", "Unknown Chip ID 305419896"));
  EXPECT_EQ(gpu.take_messages(), messages);
}

TEST(MultiLevel, MessagesComeLevelByLevel) {
  harness::Gpu gpu(harness::kUnknownChip);
  MemoryLayout record = record_of(2);
  // BC1: 2^31 - 1 rows and the rest of a block wrap below 0; level 1 is half as high.
  init(gpu, record, {.width = 64, .height = 0x7FFFFFFF, .format = 71, .planes = 2});
  constexpr const char* kName = "compute_fmt_aligned_width_and_height_fdm";
  const harness::Message wrapped =
      message(kName, "Invalid width or height: W = 16, H = -536870911");
  const harness::Message unknown = message(kName, "Unknown Chip ID 305419896");
  std::vector<harness::Message> messages = harness::unknown_chip_messages(harness::kUnknownChip);
  messages.insert(messages.end(), {wrapped, wrapped, unknown, unknown});
  EXPECT_EQ(gpu.take_messages(), messages);
}

TEST(MultiLevelDeathTest, DivisionsBy0) {
  const uint32_t chip5 = harness::full_chip(5).chip_id;
  const uint32_t chip6 = harness::full_chip(6).chip_id;
  // Linear elements of 0 bytes are the divisor on families 6 and 7 (family 5 takes none).
  EXPECT_DIVISION_FAULT({
    const harness::Gpu gpu(chip6);
    MemoryLayout record = record_of(1);
    init(gpu, record, {.samples = 0, .mode = kLinear});
  });
  {
    const harness::Gpu gpu(chip5);
    MemoryLayout record = record_of(1);
    init(gpu, record, {.samples = 0, .mode = kLinear});
    EXPECT_EQ(record.level[0].plane[0].image_width, 128u);
    EXPECT_EQ(record.level[0].plane[0].image_size, 0u);
  }
  EXPECT_DIVISION_FAULT({  // a tiled plane that the format lacks
    const harness::Gpu gpu(chip5);
    MemoryLayout record = record_of(1);
    init(gpu, record, {.planes = 2});
  });
  EXPECT_DIVISION_FAULT({  // a flag buffer without a sample tile
    const harness::Gpu gpu(chip6);
    MemoryLayout record = record_of(1);
    init(gpu, record, {.format = 619, .flags = kUbwc, .planes = 2});
  });
}

}  // namespace
}  // namespace layout_test
