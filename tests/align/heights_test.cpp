// Heights: whole tiles when tiled; as they are when linear, but for one format.
#include "tests/align/align_calls.h"

namespace align_test {
namespace {

struct HeightRow {
  int32_t height;
  uint32_t of32;
  uint32_t of16;
};

constexpr HeightRow kTiledHeights[] = {
    {1, 32, 16},           {15, 32, 16},       {16, 32, 16},       {17, 32, 32},
    {31, 32, 32},          {32, 32, 32},       {33, 64, 48},       {1080, 1088, 1088},
    {2047, 2048, 2048},    {2048, 2048, 2048}, {2049, 2080, 2064}, {16384, 16384, 16384},
    {16385, 16416, 16400},
};

TEST(Heights, TiledHeightsAreWholeTiles) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const HeightRow& row : kTiledHeights) {
      const auto height_of = [&](uint32_t format) {
        return full(gpu, {.height_rows = row.height, .format = format}).height_rows;
      };
      EXPECT_EQ(height_of(kBytes1), row.of32) << family << ": " << row.height;
      EXPECT_EQ(height_of(kBytes2Tall), row.of32) << family << ": " << row.height;
      for (const uint32_t format : {kBytes2, kBytes3, kBytes4, kBytes6, kBytes8, kBytes12, kBytes16,
                                    660u, 661u, kBc1, 186u, 654u}) {
        EXPECT_EQ(height_of(format), row.of16) << family << ": " << format << ", " << row.height;
      }
    }
  }
}

TEST(Heights, TiledHeightZeroIsNoTileOnFamily5AndOneOnTheOthers) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    const bool five = family == 5;
    EXPECT_EQ(full(gpu, {.height_rows = 0, .format = kBytes1}).height_rows, five ? 0u : 32u);
    EXPECT_EQ(full(gpu, {.height_rows = 0, .format = kBytes4}).height_rows, five ? 0u : 16u);
    // 16 rows of 4 x 4 blocks are 64 rows of texels, a tile; counted in blocks again: 16.
    EXPECT_EQ(full(gpu, {.height_rows = 0, .format = kBc1}).height_rows, five ? 0u : 16u);
  }
}

TEST(Heights, LinearHeightsStay) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t mode : {0u, 2u, 0xFFFFFFFFu}) {
      for (const uint32_t format :
           {kBytes1, kBytes3, kBytes4, kBc1, 186u, 107u, 654u, 669u, 671u, 722u, kFourCC}) {
        for (const int32_t height : {1, 2, 15, 16, 17, 63, 64, 65, 1080, 16385}) {
          const Request r{.height_rows = height, .format = format, .tiling_mode = mode};
          EXPECT_EQ(full(gpu, r).height_rows, static_cast<uint32_t>(height))
              << family << ": " << describe(r);
        }
      }
      EXPECT_EQ(full(gpu, {.height_rows = INT_MAX, .tiling_mode = mode}).height_rows, 0x7FFFFFFFu);
    }
  }
}

TEST(Heights, LinearHeightZeroIsARowOnFamilies6And7) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t format : {kBytes1, kBytes4, kBc1, 186u, 654u, kFourCC}) {
      const Request r{.height_rows = 0, .format = format, .tiling_mode = kLinear};
      EXPECT_EQ(full(gpu, r).height_rows, family == 5 ? 0u : 1u) << describe(r);
    }
  }
}

TEST(Heights, Format670IsSixtyFourRowsWhenLinear) {
  struct Row {
    int32_t height;
    uint32_t expected;
  };
  constexpr Row kRows[] = {{0, 0}, {1, 64}, {63, 64}, {64, 64}, {65, 128}, {1080, 1088}};
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t mode : {0u, 2u}) {
      for (const Row& row : kRows) {
        const Request r{.height_rows = row.height, .format = 670, .tiling_mode = mode};
        EXPECT_EQ(full(gpu, r).height_rows, row.expected) << family << ": " << describe(r);
        EXPECT_EQ(fdm(gpu, r).height_rows, row.expected) << family << ": " << describe(r);
        EXPECT_EQ(minimal(gpu, r).height_rows, row.expected) << family << ": " << describe(r);
      }
    }
    EXPECT_EQ(full(gpu, {.height_rows = 33, .format = 670}).height_rows,
              64u);  // tiled, one byte: 32s
    EXPECT_EQ(full(gpu, {.height_rows = 65, .format = 670}).height_rows, 96u);
  }
}

}  // namespace
}  // namespace align_test
