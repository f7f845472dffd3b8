// Tiled surfaces: widths and heights in whole tiles.
#include "tests/align/align_calls.h"

namespace align_test {
namespace {

// What a 1 x 1 surface becomes: one tile, on family 5 widened to its own minimum.
struct Tile {
  uint32_t width;
  uint32_t height;
};

struct TileRow {
  uint32_t format;
  uint32_t plane;
  uint32_t samples;
  Tile family5;
  Tile family67;
};

// One row of tiles for each size k = element bytes x samples.
//   families 6, 7: k  1: 128 x 32   2: 128 x 16, tall 64 x 32   4: 64 x 16   8: 32 x 16
//                    16: 16 x 16   32, 64: 8 x 16               any other: 64 x 16
//   family 5: the row is a multiple of 128 (k = 1), 256 or, tall, 128 (k = 2), 256 (4 to 32) or
//   512 bytes (64), then of 64 elements; other k: 64 elements. Rows: 32 for k <= 1 and tall k = 2,
//   else 16.
constexpr TileRow kBySize[] = {
    {kBytes1, 0, 1, {128, 32}, {128, 32}},
    {kBytes1, 0, 2, {128, 16}, {128, 16}},
    {kBytes1, 0, 4, {64, 16}, {64, 16}},
    {kBytes1, 0, 8, {64, 16}, {32, 16}},
    {kBytes2, 0, 1, {128, 16}, {128, 16}},
    {kBytes2, 0, 2, {64, 16}, {64, 16}},
    {kBytes2, 0, 4, {64, 16}, {32, 16}},
    {kBytes2, 0, 8, {64, 16}, {16, 16}},
    {kBytes2Tall, 0, 1, {64, 32}, {64, 32}},
    {kBytes2Tall, 0, 2, {64, 16}, {64, 16}},  // the format is tall, 4 bytes are not
    {kBytes2Tall, 0, 8, {64, 16}, {16, 16}},
    {kBytes3, 0, 1, {64, 16}, {64, 16}},
    {kBytes3, 0, 2, {64, 16}, {64, 16}},  // k = 6
    {kBytes3, 0, 8, {64, 16}, {64, 16}},  // k = 24
    {kBytes4, 0, 1, {64, 16}, {64, 16}},
    {kBytes4, 0, 2, {64, 16}, {32, 16}},
    {kBytes4, 0, 4, {64, 16}, {16, 16}},
    {kBytes4, 0, 8, {64, 16}, {8, 16}},
    {kBytes6, 0, 1, {64, 16}, {64, 16}},
    {kBytes6, 0, 8, {64, 16}, {64, 16}},  // k = 48
    {kBytes8, 0, 1, {64, 16}, {32, 16}},
    {kBytes8, 0, 2, {64, 16}, {16, 16}},
    {kBytes8, 0, 4, {64, 16}, {8, 16}},
    {kBytes8, 0, 8, {64, 16}, {8, 16}},
    {kBytes12, 0, 1, {64, 16}, {64, 16}},
    {kBytes12, 0, 4, {64, 16}, {64, 16}},  // k = 48
    {kBytes16, 0, 1, {64, 16}, {16, 16}},
    {kBytes16, 0, 2, {64, 16}, {8, 16}},
    {kBytes16, 0, 4, {64, 16}, {8, 16}},
    {kBytes16, 0, 8, {64, 16}, {64, 16}},  // k = 128
    // Sample counts that no hardware has.
    {kBytes1, 0, 3, {64, 16}, {64, 16}},   // k = 3
    {kBytes1, 0, 5, {64, 16}, {64, 16}},   // k = 5
    {kBytes1, 0, 16, {64, 16}, {16, 16}},  // k = 16
    {kBytes4, 0, 3, {64, 16}, {64, 16}},   // k = 12
    {kBytes4, 0, 5, {64, 16}, {64, 16}},   // k = 20
    {kBytes4, 0, 16, {64, 16}, {8, 16}},   // k = 64
};

// The tall 2-byte tiles: each family set names its own formats.
constexpr TileRow kTall[] = {
    {48, 0, 1, {128, 16}, {64, 32}},
    {49, 0, 1, {64, 32}, {64, 32}},
    {50, 0, 1, {64, 32}, {64, 32}},
    {51, 0, 1, {64, 32}, {64, 32}},
    {52, 0, 1, {64, 32}, {64, 32}},
    {53, 0, 1, {128, 16}, {128, 16}},
    {511, 0, 1, {64, 32}, {64, 32}},
    {514, 0, 1, {64, 32}, {64, 32}},
    {517, 0, 1, {64, 32}, {64, 32}},
    {518, 0, 1, {128, 16}, {128, 16}},
    {658, 0, 1, {128, 16}, {64, 32}},
    {659, 0, 1, {128, 16}, {128, 16}},
    {666, 0, 1, {128, 16}, {64, 32}},
    {667, 0, 1, {128, 16}, {128, 16}},
    {678, 0, 1, {64, 32}, {64, 32}},
    // One-byte formats of the sets become tall when two samples make them two bytes.
    {103, 0, 2, {64, 32}, {128, 16}},  // family 5 by 103, the others by its plane's format 657
    {506, 0, 2, {64, 32}, {128, 16}},
    {619, 0, 2, {64, 32}, {128, 16}},
    {647, 0, 2, {64, 32}, {128, 16}},
};

// Planes. Families 6 and 7 take the tile of the format that describes the plane, family 5 that of
// the plane's element size under the surface's own format.
constexpr TileRow kPlanes[] = {
    {103, 0, 1, {128, 32}, {128, 32}},  // 1 byte; as 657
    {103, 1, 1, {64, 32}, {64, 32}},    // 2 bytes, 103 is tall on 5; as 658, tall on 6 and 7
    {506, 0, 1, {128, 32}, {128, 32}},
    {506, 1, 1, {64, 32}, {64, 32}},
    {619, 0, 1, {128, 32}, {128, 32}},
    {619, 1, 1, {64, 32}, {128, 16}},  // as 659, not tall
    {647, 1, 1, {64, 32}, {128, 16}},
    {104, 0, 1, {128, 16}, {128, 16}},  // 2 bytes; as 663
    {104, 1, 1, {64, 16}, {64, 16}},    // 4 bytes; as 664
    {105, 0, 1, {128, 16}, {128, 16}},  // 715
    {105, 1, 1, {64, 16}, {64, 16}},    // 716
    {709, 0, 1, {128, 16}, {128, 16}},  // 710
    {709, 1, 1, {64, 16}, {64, 16}},    // 711
    {712, 0, 1, {128, 16}, {128, 16}},  // 713
    {712, 1, 1, {64, 16}, {64, 16}},    // 714
    {717, 0, 1, {128, 16}, {128, 16}},  // 718
    {717, 1, 1, {64, 16}, {64, 16}},    // 719
    {615, 0, 1, {128, 32}, {128, 32}},  // 625, 1 byte
    {615, 1, 1, {128, 32}, {128, 32}},
    {615, 2, 1, {128, 32}, {128, 32}},
    {616, 2, 1, {128, 32}, {128, 32}},
    {20, 0, 1, {64, 16}, {64, 16}},    // 40, 4 bytes
    {20, 1, 1, {128, 32}, {128, 32}},  // 552, 1 byte
    {551, 0, 1, {64, 16}, {64, 16}},
    {551, 1, 1, {128, 32}, {128, 32}},
    {660, 0, 1, {256, 16}, {256, 16}},  // 661, 1 byte with a tile of its own
    {660, 1, 1, {128, 16}, {128, 16}},  // 662, 2 bytes
    {661, 0, 1, {256, 16}, {256, 16}},
    {661, 0, 2, {128, 16}, {128, 16}},  // the own tile is for one byte only
    {661, 0, 4, {64, 16}, {64, 16}},
    // No format describes these planes: the surface's own, 1 byte, does on families 6 and 7.
    {106, 0, 1, {128, 32}, {128, 32}},
    {106, 1, 1, {128, 16}, {128, 32}},
    {110, 1, 1, {128, 16}, {128, 32}},
    {504, 1, 1, {128, 16}, {128, 32}},
    {505, 1, 1, {128, 16}, {128, 32}},
};

// Block-compressed formats are counted in blocks, packed 4:2:2 formats in elements.
constexpr TileRow kBlocks[] = {
    {kBc1, 0, 1, {64, 16}, {32, 16}},  // k = 8
    {kBc1, 0, 2, {64, 16}, {16, 16}},  {kBc1, 0, 8, {64, 16}, {8, 16}},
    {kBc7, 0, 1, {64, 16}, {16, 16}},  // k = 16
    {kBc7, 0, 8, {64, 16}, {64, 16}},  // k = 128
    {138, 0, 1, {64, 16}, {16, 16}},   // 5 x 4
    {142, 0, 1, {64, 16}, {16, 16}},   // 5 x 5
    {146, 0, 1, {64, 16}, {16, 16}},   // 6 x 5
    {158, 0, 1, {64, 16}, {16, 16}},   // 8 x 6
    {174, 0, 1, {64, 16}, {16, 16}},   // 10 x 8
    {186, 0, 1, {64, 16}, {16, 16}},   // 12 x 12
    {626, 0, 1, {64, 16}, {16, 16}},   // 3 x 3
    {627, 0, 1, {64, 16}, {16, 16}},   // 4 x 3
    {681, 0, 1, {64, 16}, {32, 16}},   // 4 x 4, 8 bytes
    {68, 0, 1, {128, 16}, {128, 16}},  // 2 bytes
    {107, 0, 1, {128, 16}, {128, 16}}, {614, 0, 1, {128, 16}, {128, 16}},
    {654, 0, 1, {64, 16}, {64, 16}},  // 4 bytes, 3 x 1
    {654, 1, 1, {64, 16}, {32, 16}},  // 8 bytes; as 656
    {655, 0, 1, {64, 16}, {64, 16}},   {656, 0, 1, {64, 16}, {32, 16}},
};

// Numbers without a record count as 1 byte.
constexpr TileRow kUnknown[] = {
    {0, 0, 1, {128, 32}, {128, 32}},          {119, 0, 1, {128, 32}, {128, 32}},
    {670, 0, 1, {128, 32}, {128, 32}},        {721, 0, 1, {64, 16}, {64, 16}},
    {722, 0, 1, {128, 32}, {128, 32}},        {722, 0, 2, {128, 16}, {128, 16}},
    {kFourCC, 0, 1, {128, 32}, {128, 32}},    {kFourCC, 0, 8, {64, 16}, {32, 16}},
    {0xFFFFFFFF, 0, 1, {128, 32}, {128, 32}},
};

template <std::size_t N>
void check_tiles(const TileRow (&rows)[N]) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const TileRow& row : rows) {
      const Tile tile = family == 5 ? row.family5 : row.family67;
      const auto width = static_cast<int32_t>(tile.width);
      const auto height = static_cast<int32_t>(tile.height);
      Request r{.plane = row.plane, .format = row.format, .samples = row.samples};
      EXPECT_EQ(full(gpu, r), (Size{tile.width, tile.height})) << family << ": " << describe(r);
      r.width = width;
      r.height = height;
      EXPECT_EQ(full(gpu, r), (Size{tile.width, tile.height})) << family << ": " << describe(r);
      r.width = width + 1;
      r.height = height + 1;
      EXPECT_EQ(full(gpu, r), (Size{2 * tile.width, 2 * tile.height}))
          << family << ": " << describe(r);
    }
  }
}

TEST(Tiled, TilesByElementSizeAndSamples) {
  check_tiles(kBySize);
}
TEST(Tiled, TallTilesAreEachFamilysOwn) {
  check_tiles(kTall);
}
TEST(Tiled, PlanesHaveTheirOwnTiles) {
  check_tiles(kPlanes);
}
TEST(Tiled, BlocksAndPackedElements) {
  check_tiles(kBlocks);
}
TEST(Tiled, NumbersWithoutARecordAreOneByte) {
  check_tiles(kUnknown);
}

struct WidthRow {
  int32_t width;
  uint32_t multiple64;
  uint32_t family5_multiple128;  // width to 64 first: the same as 128 at once
  uint32_t multiple32;
  uint32_t multiple16;
};

// 4 bytes: 64 on every family. 1 byte: 128 on every family. 8 bytes: 32, and 16 bytes: 16 on
// families 6 and 7, 64 on family 5.
constexpr WidthRow kWidths[] = {
    {0, 64, 128, 32, 16},
    {1, 64, 128, 32, 16},
    {16, 64, 128, 32, 16},
    {17, 64, 128, 32, 32},
    {32, 64, 128, 32, 32},
    {33, 64, 128, 64, 48},
    {63, 64, 128, 64, 64},
    {64, 64, 128, 64, 64},
    {65, 128, 128, 96, 80},
    {127, 128, 128, 128, 128},
    {128, 128, 128, 128, 128},
    {129, 192, 256, 160, 144},
    {2047, 2048, 2048, 2048, 2048},
    {2048, 2048, 2048, 2048, 2048},
    {2049, 2112, 2176, 2080, 2064},
    {4095, 4096, 4096, 4096, 4096},
    {4096, 4096, 4096, 4096, 4096},
    {4097, 4160, 4224, 4128, 4112},
    {16384, 16384, 16384, 16384, 16384},
    {16385, 16448, 16512, 16416, 16400},  // tiled rows know no limit
};

TEST(Tiled, WidthsInWholeTiles) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const WidthRow& row : kWidths) {
      const auto width_of = [&](uint32_t format) {
        return full(gpu, {.width = row.width, .format = format}).width;
      };
      EXPECT_EQ(width_of(kBytes4), row.multiple64) << family << ": " << row.width;
      EXPECT_EQ(width_of(kBytes1), row.family5_multiple128) << family << ": " << row.width;
      EXPECT_EQ(width_of(kBytes8), family == 5 ? row.multiple64 : row.multiple32)
          << family << ": " << row.width;
      EXPECT_EQ(width_of(kBytes16), family == 5 ? row.multiple64 : row.multiple16)
          << family << ": " << row.width;
      EXPECT_EQ(width_of(kBytes3), row.multiple64) << family << ": " << row.width;
      EXPECT_EQ(width_of(kBytes12), row.multiple64) << family << ": " << row.width;
    }
  }
}

TEST(Tiled, OddTileWidthsAreExactMultiples) {
  // 12 x 12 blocks of 16 bytes: a tile of 16 x 12 = 192 texels, 16 blocks. 3 x 1 elements of 4
  // bytes: 64 x 3 = 192 texels, 64 elements.
  struct Row {
    uint32_t format;
    int32_t width;
    uint32_t expected;
  };
  constexpr Row kRows[] = {
      {186, 0, 16},    {186, 15, 16},     {186, 16, 16},     {186, 17, 32},
      {186, 250, 256}, {186, 1000, 1008}, {186, 4097, 4112}, {654, 0, 64},
      {654, 63, 64},   {654, 64, 64},     {654, 65, 128},    {654, 2049, 2112},
  };
  for (const uint32_t family : {6u, 7u}) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const Row& row : kRows) {
      const Request r{.width = row.width, .format = row.format};
      EXPECT_EQ(full(gpu, r).width, row.expected) << describe(r);
    }
  }
}

TEST(Tiled, WidestSurfacesWrapAt32Bits) {
  const Size kWrapped{0x80000000, 0x80000000};  // 2147483647 up to a multiple of 16, 32, 64, 128
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    EXPECT_EQ(full(gpu, {.width = INT_MAX, .height = INT_MAX, .format = kBytes1}), kWrapped);
    if (family == 5) {
      // Family 5 counts the row in bytes: 2147483647 x 4 wraps to -4, and up to a multiple of 256
      // to 0, for which one minimum of 64 stands. 2 x 0x80000000 wraps to 0 too; there is no
      // minimum for rows of narrow elements.
      EXPECT_EQ(full(gpu, {.width = INT_MAX, .height = INT_MAX}), (Size{64, 0x80000000}));
      EXPECT_EQ(full(gpu, {.width = INT_MAX, .format = kBytes2}).width, 0u);
    } else {
      EXPECT_EQ(full(gpu, {.width = INT_MAX, .height = INT_MAX}), kWrapped);
      EXPECT_EQ(full(gpu, {.width = INT_MAX, .format = kBytes2}).width, 0x80000000u);
    }
  }
}

TEST(Tiled, PaddingArgumentsHaveNoEffect) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t selector : {0u, 1u, 2u, 3u}) {
      for (const int32_t limit : {INT_MIN, -1, 0, 1, INT_MAX}) {
        const Request r{.width = 512, .height = 3, .selector = selector, .min_padded = limit};
        EXPECT_EQ(full(gpu, r), (Size{512, 16})) << family << ": " << describe(r);
      }
    }
  }
}

TEST(Tiled, NoSamplesCountAsElementsOfNoTable) {
  for (const uint32_t family : {6u, 7u}) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    EXPECT_EQ(full(gpu, {.samples = 0}), (Size{64, 16}));  // k = 0
    EXPECT_EQ(full(gpu, {.format = kBc1, .samples = 0}), (Size{64, 16}));
  }
}

TEST(Tiled, PlanesThatAFormatLacks) {
  // Families 6 and 7 describe the plane by the surface's own format: 28 as 4 bytes; 103 as one,
  // tall once two samples make it two, which 506 is not on these families.
  for (const uint32_t family : {6u, 7u}) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    EXPECT_EQ(full(gpu, {.plane = 1}), (Size{64, 16}));
    EXPECT_EQ(full(gpu, {.plane = 0xFFFFFFFF}), (Size{64, 16}));
    EXPECT_EQ(full(gpu, {.plane = 2, .format = 103}), (Size{128, 32}));
    EXPECT_EQ(full(gpu, {.plane = 2, .format = 103, .samples = 2}), (Size{64, 32}));
    EXPECT_EQ(full(gpu, {.plane = 2, .format = 506, .samples = 2}), (Size{128, 16}));
    EXPECT_EQ(full(gpu, {.plane = 1, .format = kFourCC}), (Size{128, 32}));
    EXPECT_EQ(full(gpu, {.plane = 1, .format = 722}), (Size{128, 32}));
  }
}

TEST(TiledDeathTest, Family5DividesByTheElementSize) {
  const uint32_t chip = harness::full_chip(5).chip_id;
  struct Row {
    uint32_t format;
    uint32_t plane;
    uint32_t samples;
  };
  for (const Row& row : {Row{kBytes4, 1, 1}, Row{103, 2, 1}, Row{722, 1, 1}, Row{kFourCC, 1, 1},
                         Row{kBytes4, 0, 0}, Row{kBc1, 0, 0}}) {
    EXPECT_DIVISION_FAULT({
      const harness::Gpu gpu(chip);
      full(gpu, {.plane = row.plane, .format = row.format, .samples = row.samples});
    });
  }
}

}  // namespace
}  // namespace align_test
