// Tiled surfaces: widths and heights in whole tiles.
//
// The tile goes by k, the bytes of an element times the samples:
//   families 6, 7   k = 1: 128 x 32    2: 128 x 16, tall 64 x 32    4: 64 x 16    8: 32 x 16
//                   16: 16 x 16        32 and 64: 8 x 16            any other: 64 x 16
//   family 5        makes the row whole units of bytes and then, for k of 4 and more, of 64
//                   elements; k below 4 counts 64 elements first:
//                   k = 1: 128 bytes = 128 elements
//                   k = 2: 256 bytes = 128 elements, tall 128 bytes = 64
//                   k = 4, 8, 16, 32: 256 bytes = 64, 32, 16, 8 elements, so 64 for all of them
//                   k = 64: 512 bytes = 8 elements, so 64
//                   any other k: 64
//                   and 32 rows for k = 0, 1 and tall 2, 16 for any other.
// Formats 660 and 661 have a tile of 256 x 16 of their own for k = 1.
#include "tests/align/align_calls.h"

namespace align_test {
namespace {

struct TileRow {
  uint32_t format;
  uint32_t plane = 0;
  uint32_t samples = 1;
  ByFamily<Size> tile;
};

constexpr ByFamily<Size> by_family(Size on_5, Size on_6_and_7) {
  return {on_5, on_6_and_7};
}

constexpr TileRow kBySize[] = {
    {.format = kBytes1, .samples = 1, .tile = on_all({128, 32})},                  // k = 1
    {.format = kBytes1, .samples = 2, .tile = on_all({128, 16})},                  // k = 2
    {.format = kBytes1, .samples = 4, .tile = on_all({64, 16})},                   // k = 4
    {.format = kBytes1, .samples = 8, .tile = by_family({64, 16}, {32, 16})},      // k = 8
    {.format = kBytes2, .samples = 1, .tile = on_all({128, 16})},                  // k = 2
    {.format = kBytes2, .samples = 2, .tile = on_all({64, 16})},                   // k = 4
    {.format = kBytes2, .samples = 4, .tile = by_family({64, 16}, {32, 16})},      // k = 8
    {.format = kBytes2, .samples = 8, .tile = by_family({64, 16}, {16, 16})},      // k = 16
    {.format = kBytes2Tall, .samples = 1, .tile = on_all({64, 32})},               // tall k = 2
    {.format = kBytes2Tall, .samples = 2, .tile = on_all({64, 16})},               // 4 is not tall
    {.format = kBytes2Tall, .samples = 8, .tile = by_family({64, 16}, {16, 16})},  // k = 16
    {.format = kBytes3, .samples = 1, .tile = on_all({64, 16})},                   // k = 3: other
    {.format = kBytes3, .samples = 2, .tile = on_all({64, 16})},                   // k = 6: other
    {.format = kBytes3, .samples = 8, .tile = on_all({64, 16})},                   // k = 24: other
    {.format = kBytes4, .samples = 1, .tile = on_all({64, 16})},                   // k = 4
    {.format = kBytes4, .samples = 2, .tile = by_family({64, 16}, {32, 16})},      // k = 8
    {.format = kBytes4, .samples = 4, .tile = by_family({64, 16}, {16, 16})},      // k = 16
    {.format = kBytes4, .samples = 8, .tile = by_family({64, 16}, {8, 16})},       // k = 32
    {.format = kBytes6, .samples = 1, .tile = on_all({64, 16})},                   // k = 6: other
    {.format = kBytes6, .samples = 8, .tile = on_all({64, 16})},                   // k = 48: other
    {.format = kBytes8, .samples = 1, .tile = by_family({64, 16}, {32, 16})},      // k = 8
    {.format = kBytes8, .samples = 2, .tile = by_family({64, 16}, {16, 16})},      // k = 16
    {.format = kBytes8, .samples = 4, .tile = by_family({64, 16}, {8, 16})},       // k = 32
    {.format = kBytes8, .samples = 8, .tile = by_family({64, 16}, {8, 16})},       // k = 64
    {.format = kBytes12, .samples = 1, .tile = on_all({64, 16})},                  // k = 12: other
    {.format = kBytes12, .samples = 4, .tile = on_all({64, 16})},                  // k = 48: other
    {.format = kBytes16, .samples = 1, .tile = by_family({64, 16}, {16, 16})},     // k = 16
    {.format = kBytes16, .samples = 2, .tile = by_family({64, 16}, {8, 16})},      // k = 32
    {.format = kBytes16, .samples = 4, .tile = by_family({64, 16}, {8, 16})},      // k = 64
    {.format = kBytes16, .samples = 8, .tile = on_all({64, 16})},                  // k = 128: other
    // Sample counts that no hardware has.
    {.format = kBytes1, .samples = 3, .tile = on_all({64, 16})},                // k = 3: other
    {.format = kBytes1, .samples = 5, .tile = on_all({64, 16})},                // k = 5: other
    {.format = kBytes1, .samples = 16, .tile = by_family({64, 16}, {16, 16})},  // k = 16
    {.format = kBytes4, .samples = 3, .tile = on_all({64, 16})},                // k = 12: other
    {.format = kBytes4, .samples = 5, .tile = on_all({64, 16})},                // k = 20: other
    {.format = kBytes4, .samples = 16, .tile = by_family({64, 16}, {8, 16})},   // k = 64
};

// The 2-byte tiles of one sample: tall is 64 x 32, any other 128 x 16.
constexpr Size kTall = {64, 32};
constexpr Size kNotTall = {128, 16};

// Each family set names its own tall formats: 49-52, 511, 514, 517 and 678 are in both.
constexpr TileRow kTallSets[] = {
    {.format = 48, .tile = by_family(kNotTall, kTall)},
    {.format = 49, .tile = on_all(kTall)},
    {.format = 50, .tile = on_all(kTall)},
    {.format = 51, .tile = on_all(kTall)},
    {.format = 52, .tile = on_all(kTall)},
    {.format = 53, .tile = on_all(kNotTall)},
    {.format = 511, .tile = on_all(kTall)},
    {.format = 514, .tile = on_all(kTall)},
    {.format = 517, .tile = on_all(kTall)},
    {.format = 518, .tile = on_all(kNotTall)},
    {.format = 658, .tile = by_family(kNotTall, kTall)},
    {.format = 659, .tile = on_all(kNotTall)},
    {.format = 666, .tile = by_family(kNotTall, kTall)},
    {.format = 667, .tile = on_all(kNotTall)},
    {.format = 678, .tile = on_all(kTall)},
    // Formats of 1 byte that family 5 names: two samples make 2 bytes of them. Families 6 and 7
    // look at the format of plane 0, 657, which their set does not name.
    {.format = 103, .samples = 2, .tile = by_family(kTall, kNotTall)},
    {.format = 506, .samples = 2, .tile = by_family(kTall, kNotTall)},
    {.format = 619, .samples = 2, .tile = by_family(kTall, kNotTall)},
    {.format = 647, .samples = 2, .tile = by_family(kTall, kNotTall)},
};

// Families 6 and 7 take the tile of the format that describes the plane (in the comments), family 5
// that of the plane's element size under the surface's own format.
constexpr TileRow kPlanes[] = {
    {.format = 103, .plane = 0, .tile = on_all({128, 32})},  // 657: 1 byte
    // 2 bytes. Family 5: 103 is tall; families 6 and 7: 658 is.
    {.format = 103, .plane = 1, .tile = on_all(kTall)},
    {.format = 506, .plane = 0, .tile = on_all({128, 32})},  // 657: 1 byte
    {.format = 506, .plane = 1, .tile = on_all(kTall)},      // 658, as above
    {.format = 619, .plane = 0, .tile = on_all({128, 32})},  // 657: 1 byte
    // 2 bytes. Family 5: 619 is tall; families 6 and 7: 659 is not.
    {.format = 619, .plane = 1, .tile = by_family(kTall, kNotTall)},
    {.format = 647, .plane = 1, .tile = by_family(kTall, kNotTall)},
    {.format = 104, .plane = 0, .tile = on_all(kNotTall)},   // 663: 2 bytes
    {.format = 104, .plane = 1, .tile = on_all({64, 16})},   // 664: 4 bytes
    {.format = 105, .plane = 0, .tile = on_all(kNotTall)},   // 715: 2 bytes
    {.format = 105, .plane = 1, .tile = on_all({64, 16})},   // 716: 4 bytes
    {.format = 709, .plane = 0, .tile = on_all(kNotTall)},   // 710: 2 bytes
    {.format = 709, .plane = 1, .tile = on_all({64, 16})},   // 711: 4 bytes
    {.format = 712, .plane = 0, .tile = on_all(kNotTall)},   // 713: 2 bytes
    {.format = 712, .plane = 1, .tile = on_all({64, 16})},   // 714: 4 bytes
    {.format = 717, .plane = 0, .tile = on_all(kNotTall)},   // 718: 2 bytes
    {.format = 717, .plane = 1, .tile = on_all({64, 16})},   // 719: 4 bytes
    {.format = 615, .plane = 0, .tile = on_all({128, 32})},  // 625: 1 byte
    {.format = 615, .plane = 1, .tile = on_all({128, 32})},  // 625
    {.format = 615, .plane = 2, .tile = on_all({128, 32})},  // 625
    {.format = 616, .plane = 2, .tile = on_all({128, 32})},  // 625
    {.format = 20, .plane = 0, .tile = on_all({64, 16})},    // 40: 4 bytes
    {.format = 20, .plane = 1, .tile = on_all({128, 32})},   // 552: 1 byte
    {.format = 551, .plane = 0, .tile = on_all({64, 16})},   // 40: 4 bytes
    {.format = 551, .plane = 1, .tile = on_all({128, 32})},  // 552: 1 byte
    {.format = 660, .plane = 0, .tile = on_all({256, 16})},  // 661: 1 byte, its own tile
    {.format = 660, .plane = 1, .tile = on_all(kNotTall)},   // 662: 2 bytes
    {.format = 661, .tile = on_all({256, 16})},
    {.format = 661, .samples = 2, .tile = on_all(kNotTall)},  // k = 2: the own tile is for k = 1
    {.format = 661, .samples = 4, .tile = on_all({64, 16})},  // k = 4
    {.format = 106, .plane = 0, .tile = on_all({128, 32})},   // 1 byte
    // No format describes these second planes of 2 bytes: families 6 and 7 go by the surface's own,
    // of 1 byte. None is in the tall set of family 5.
    {.format = 106, .plane = 1, .tile = by_family(kNotTall, {128, 32})},
    {.format = 110, .plane = 1, .tile = by_family(kNotTall, {128, 32})},
    {.format = 504, .plane = 1, .tile = by_family(kNotTall, {128, 32})},
    {.format = 505, .plane = 1, .tile = by_family(kNotTall, {128, 32})},
};

// Sizes of block-compressed formats are in blocks, those of packed formats in elements: the tile is
// that of the block's bytes times the block's size, and is counted in blocks again.
constexpr TileRow kBlocks[] = {
    {.format = kBc1, .samples = 1, .tile = by_family({64, 16}, {32, 16})},  // k = 8
    {.format = kBc1, .samples = 2, .tile = by_family({64, 16}, {16, 16})},  // k = 16
    {.format = kBc1, .samples = 8, .tile = by_family({64, 16}, {8, 16})},   // k = 64
    {.format = kBc7, .samples = 1, .tile = by_family({64, 16}, {16, 16})},  // k = 16
    {.format = kBc7, .samples = 8, .tile = on_all({64, 16})},               // k = 128: other
    // Blocks of 16 bytes and many sizes.
    {.format = 138, .tile = by_family({64, 16}, {16, 16})},  // 5 x 4
    {.format = 142, .tile = by_family({64, 16}, {16, 16})},  // 5 x 5
    {.format = 146, .tile = by_family({64, 16}, {16, 16})},  // 6 x 5
    {.format = 158, .tile = by_family({64, 16}, {16, 16})},  // 8 x 6
    {.format = 174, .tile = by_family({64, 16}, {16, 16})},  // 10 x 8
    {.format = 186, .tile = by_family({64, 16}, {16, 16})},  // 12 x 12
    {.format = 626, .tile = by_family({64, 16}, {16, 16})},  // 3 x 3
    {.format = 627, .tile = by_family({64, 16}, {16, 16})},  // 4 x 3
    {.format = 681, .tile = by_family({64, 16}, {32, 16})},  // 4 x 4 of 8 bytes
    // Packed: 2 bytes, not tall.
    {.format = 68, .tile = on_all(kNotTall)},
    {.format = 107, .tile = on_all(kNotTall)},
    {.format = 614, .tile = on_all(kNotTall)},
    // Packed, 3 x 1.
    {.format = 654, .plane = 0, .tile = on_all({64, 16})},               // 655: 4 bytes
    {.format = 654, .plane = 1, .tile = by_family({64, 16}, {32, 16})},  // 656: 8 bytes
    {.format = 655, .tile = on_all({64, 16})},                           // 4 bytes
    {.format = 656, .tile = by_family({64, 16}, {32, 16})},              // 8 bytes
};

// Numbers without a record count as 1 byte.
constexpr TileRow kWithoutRecord[] = {
    {.format = 0, .tile = on_all({128, 32})},
    {.format = 119, .tile = on_all({128, 32})},
    {.format = 670, .tile = on_all({128, 32})},
    {.format = 721, .tile = on_all({64, 16})},  // the last record: 4 bytes
    {.format = kNoRecord, .samples = 1, .tile = on_all({128, 32})},
    {.format = kNoRecord, .samples = 2, .tile = on_all({128, 16})},  // k = 2
    {.format = kFourCC, .samples = 1, .tile = on_all({128, 32})},
    {.format = kFourCC, .samples = 8, .tile = by_family({64, 16}, {32, 16})},  // k = 8
    {.format = 0xFFFFFFFF, .tile = on_all({128, 32})},
};

// One element becomes one tile, a whole tile stays, and one more column and row become two tiles
// each way.
template <std::size_t N>
void expect_tiles(const TileRow (&rows)[N]) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const TileRow& row : rows) {
      const Size tile = row.tile.of(family);
      Request r{.plane = row.plane, .format = row.format, .samples = row.samples};
      EXPECT_NUMBERS(full(gpu, r), tile) << describe(family, r);
      r.width_el = static_cast<int32_t>(tile.width_el);
      r.height_rows = static_cast<int32_t>(tile.height_rows);
      EXPECT_NUMBERS(full(gpu, r), tile) << describe(family, r);
      ++r.width_el;
      ++r.height_rows;
      EXPECT_NUMBERS(full(gpu, r), (Size{2 * tile.width_el, 2 * tile.height_rows}))
          << describe(family, r);
    }
  }
}

TEST(Tiled, TilesGoByElementSizeAndSamples) {
  expect_tiles(kBySize);
}
TEST(Tiled, TallTilesAreEachFamilysOwn) {
  expect_tiles(kTallSets);
}
TEST(Tiled, PlanesHaveTheirOwnTiles) {
  expect_tiles(kPlanes);
}
TEST(Tiled, BlocksAndPackedElementsAreCountedWhole) {
  expect_tiles(kBlocks);
}
TEST(Tiled, NumbersWithoutARecordAreOneByte) {
  expect_tiles(kWithoutRecord);
}

// The next multiple of each tile width at or above a width, and one tile for a width of 0.
struct WidthRow {
  int32_t width_el;
  uint32_t to_64;
  uint32_t to_128;
  uint32_t to_32;
  uint32_t to_16;
};

constexpr WidthRow kWidths[] = {
    {.width_el = 0, .to_64 = 64, .to_128 = 128, .to_32 = 32, .to_16 = 16},
    {.width_el = 1, .to_64 = 64, .to_128 = 128, .to_32 = 32, .to_16 = 16},
    {.width_el = 16, .to_64 = 64, .to_128 = 128, .to_32 = 32, .to_16 = 16},
    {.width_el = 17, .to_64 = 64, .to_128 = 128, .to_32 = 32, .to_16 = 32},
    {.width_el = 32, .to_64 = 64, .to_128 = 128, .to_32 = 32, .to_16 = 32},
    {.width_el = 33, .to_64 = 64, .to_128 = 128, .to_32 = 64, .to_16 = 48},
    {.width_el = 63, .to_64 = 64, .to_128 = 128, .to_32 = 64, .to_16 = 64},
    {.width_el = 64, .to_64 = 64, .to_128 = 128, .to_32 = 64, .to_16 = 64},
    {.width_el = 65, .to_64 = 128, .to_128 = 128, .to_32 = 96, .to_16 = 80},
    {.width_el = 127, .to_64 = 128, .to_128 = 128, .to_32 = 128, .to_16 = 128},
    {.width_el = 128, .to_64 = 128, .to_128 = 128, .to_32 = 128, .to_16 = 128},
    {.width_el = 129, .to_64 = 192, .to_128 = 256, .to_32 = 160, .to_16 = 144},
    {.width_el = 2047, .to_64 = 2048, .to_128 = 2048, .to_32 = 2048, .to_16 = 2048},
    {.width_el = 2048, .to_64 = 2048, .to_128 = 2048, .to_32 = 2048, .to_16 = 2048},
    {.width_el = 2049, .to_64 = 2112, .to_128 = 2176, .to_32 = 2080, .to_16 = 2064},
    {.width_el = 4095, .to_64 = 4096, .to_128 = 4096, .to_32 = 4096, .to_16 = 4096},
    {.width_el = 4096, .to_64 = 4096, .to_128 = 4096, .to_32 = 4096, .to_16 = 4096},
    {.width_el = 4097, .to_64 = 4160, .to_128 = 4224, .to_32 = 4128, .to_16 = 4112},
    {.width_el = 16384, .to_64 = 16384, .to_128 = 16384, .to_32 = 16384, .to_16 = 16384},
    // Tiled rows know no limit.
    {.width_el = 16385, .to_64 = 16448, .to_128 = 16512, .to_32 = 16416, .to_16 = 16400},
};

TEST(Tiled, WidthsAreWholeTiles) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    const auto expect_width = [&](const WidthRow& row, uint32_t format, uint32_t expected_el) {
      const Request r{.width_el = row.width_el, .format = format};
      EXPECT_NUMBER(full(gpu, r).width_el, expected_el) << describe(family, r);
    };
    for (const WidthRow& row : kWidths) {
      // Family 5 counts 64 elements before 128 bytes: the same as 128 elements at once.
      expect_width(row, kBytes1, row.to_128);
      for (const uint32_t format : {kBytes3, kBytes4, kBytes12}) {
        expect_width(row, format, row.to_64);
      }
      expect_width(row, kBytes8, family == 5 ? row.to_64 : row.to_32);
      expect_width(row, kBytes16, family == 5 ? row.to_64 : row.to_16);
    }
  }
}

struct OddTileRow {
  uint32_t format;
  int32_t width_el;
  uint32_t expected_el;
};

// A tile of 192 texels on families 6 and 7, no power of two: widths in texels are rounded to it by
// a division, not by a mask, and divided by the block width again.
constexpr OddTileRow kOddTiles[] = {
    // 186: blocks of 12 x 12 texels and 16 bytes, so 16 blocks x 12 texels = 192: whole 16 blocks.
    {.format = 186, .width_el = 0, .expected_el = 16},       // none is one tile
    {.format = 186, .width_el = 15, .expected_el = 16},      // 180 texels -> 192
    {.format = 186, .width_el = 16, .expected_el = 16},      // 192 stays
    {.format = 186, .width_el = 17, .expected_el = 32},      // 204 -> 384
    {.format = 186, .width_el = 250, .expected_el = 256},    // 3000 -> 16 x 192 = 3072
    {.format = 186, .width_el = 1000, .expected_el = 1008},  // 12000 -> 63 x 192 = 12096
    {.format = 186, .width_el = 4097, .expected_el = 4112},  // 49164 -> 257 x 192 = 49344
    // 654: elements of 3 x 1 texels and 4 bytes, so 64 x 3 = 192: whole 64 elements.
    {.format = 654, .width_el = 0, .expected_el = 64},       // none is one tile
    {.format = 654, .width_el = 63, .expected_el = 64},      // 189 texels -> 192
    {.format = 654, .width_el = 64, .expected_el = 64},      // 192 stays
    {.format = 654, .width_el = 65, .expected_el = 128},     // 195 -> 384
    {.format = 654, .width_el = 2049, .expected_el = 2112},  // 6147 -> 33 x 192 = 6336
};

TEST(Tiled, OddTileWidthsAreExactMultiples) {
  for (const uint32_t family : kFamilies6And7) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const OddTileRow& row : kOddTiles) {
      const Request r{.width_el = row.width_el, .format = row.format};
      EXPECT_NUMBER(full(gpu, r).width_el, row.expected_el) << describe(family, r);
    }
  }
}

TEST(Tiled, WidestSurfacesWrapAt32Bits) {
  // 2147483647 up to a multiple of 16, 32, 64 or 128.
  const Size kTwoToThe31 = {0x80000000, 0x80000000};
  const Request bytes1{.width_el = INT_MAX, .height_rows = INT_MAX, .format = kBytes1};
  const Request bytes2{.width_el = INT_MAX, .height_rows = INT_MAX, .format = kBytes2};
  const Request bytes4{.width_el = INT_MAX, .height_rows = INT_MAX, .format = kBytes4};
  for (const uint32_t family : kFamilies6And7) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    EXPECT_NUMBERS(full(gpu, bytes1), kTwoToThe31) << describe(family, bytes1);
    EXPECT_NUMBERS(full(gpu, bytes2), kTwoToThe31) << describe(family, bytes2);
    EXPECT_NUMBERS(full(gpu, bytes4), kTwoToThe31) << describe(family, bytes4);
  }
  // Family 5 counts the row in bytes.
  const harness::Gpu gpu(harness::full_chip(5).chip_id);
  // 0x80000000 x 1, a multiple of 128.
  EXPECT_NUMBERS(full(gpu, bytes1), kTwoToThe31) << describe(5, bytes1);
  // 0x80000000 x 2 wraps to 0, and there is no minimum for narrow elements.
  EXPECT_NUMBERS(full(gpu, bytes2), (Size{0, 0x80000000})) << describe(5, bytes2);
  // 0x7FFFFFFF x 4 wraps to 0xFFFFFFFC; up to a multiple of 256 it wraps to 0, for which the
  // minimum of 64 stands.
  EXPECT_NUMBERS(full(gpu, bytes4), (Size{64, 0x80000000})) << describe(5, bytes4);
}

TEST(Tiled, PaddingArgumentsHaveNoEffect) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t selector : {0u, 1u, 2u, 3u}) {
      for (const int32_t limit_bytes : {INT_MIN, -1, 0, 1, INT_MAX}) {
        // 512 columns are 8 tiles of 64, 3 rows one of 16. A linear row of 512 is padded to 768.
        const Request r{.width_el = 512,
                        .height_rows = 3,
                        .selector = selector,
                        .min_padded_row_bytes = limit_bytes};
        EXPECT_NUMBERS(full(gpu, r), (Size{512, 16})) << describe(family, r);
      }
    }
  }
}

TEST(Tiled, NoSamplesHaveTheTileOfAnyOtherSize) {
  for (const uint32_t family : kFamilies6And7) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t format : {kBytes4, kBc1}) {
      const Request r{.format = format, .samples = 0};  // k = 0: any other
      EXPECT_NUMBERS(full(gpu, r), (Size{64, 16})) << describe(family, r);
    }
  }
}

// Families 6 and 7 go by the surface's own format where none describes the plane.
constexpr TileRow kMissingPlanes[] = {
    {.format = kBytes4, .plane = 1, .tile = on_all({64, 16})},
    {.format = kBytes4, .plane = 0xFFFFFFFF, .tile = on_all({64, 16})},
    {.format = 103, .plane = 2, .tile = on_all({128, 32})},
    {.format = 103, .plane = 2, .samples = 2, .tile = on_all(kTall)},     // k = 2; 103 is tall
    {.format = 506, .plane = 2, .samples = 2, .tile = on_all(kNotTall)},  // and 506 is not
    {.format = kFourCC, .plane = 1, .tile = on_all({128, 32})},
    {.format = kNoRecord, .plane = 1, .tile = on_all({128, 32})},
};

TEST(Tiled, PlanesThatAFormatLacksHaveItsTileOnFamilies6And7) {
  for (const uint32_t family : kFamilies6And7) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const TileRow& row : kMissingPlanes) {
      const Request r{.plane = row.plane, .format = row.format, .samples = row.samples};
      EXPECT_NUMBERS(full(gpu, r), row.tile.of(family)) << describe(family, r);
    }
  }
}

TEST(TiledDeathTest, ElementsOf0BytesFaultOnFamily5) {
  const uint32_t chip = harness::full_chip(5).chip_id;
  // Planes that the format lacks have elements of 0 bytes, and so has an element of no samples.
  for (const Request& r :
       {Request{.plane = 1, .format = kBytes4}, Request{.plane = 2, .format = 103},
        Request{.plane = 1, .format = kNoRecord}, Request{.plane = 1, .format = kFourCC},
        Request{.format = kBytes4, .samples = 0}, Request{.format = kBc1, .samples = 0}}) {
    EXPECT_DIVISION_FAULT({
      const harness::Gpu gpu(chip);
      full(gpu, r);
    }) << describe(5, r);
  }
}

}  // namespace
}  // namespace align_test
