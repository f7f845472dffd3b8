// Heights: whole tiles when tiled; as they are when linear, but for one format; and what becomes of
// both where they wrap.
#include <vector>

#include "tests/align/align_calls.h"
#include "tests/harness/block_edges.h"

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

// Heights on families 6 and 7 where 32 bits end. All of it is signed: rows of blocks times the rows
// of a block are texel rows; they go up to whole tiles, or to one where they are not above 0; and
// come back as rows of blocks by a division that truncates toward 0. What is negative by then is a
// huge number to the caller.
struct WrapRow {
  uint32_t rows;  // of blocks, extra rows among them
  uint32_t expected;
};

struct WrapTable {
  uint32_t format;
  uint32_t block_height;
  std::vector<WrapRow> rows;
};

// Beside each row, as far as a step changes the number: its texel rows, of which 32 bits keep what
// is added to a multiple of 2^32; -> these in whole tiles; -> that as a signed number; -> rows of
// blocks.
// clang-format off
const WrapTable kTiledWraps[] = {
    // a tile is 32 rows, 2^31 = 67108864 x 32
    {.format = 61,
     .block_height = 1,
     .rows = {
      {0x7FFFFFE0, 0x7FFFFFE0},  // 2147483616: whole
      {0x7FFFFFE1, 0x80000000},  // 2147483617 -> 2147483648 -> -2147483648
      {0x7FFFFFFF, 0x80000000},  // 2147483647 -> 2147483648 -> -2147483648
      {0x80000000, 32},  // 2147483648: negative, one tile
     }},
    // a tile is 16 rows, 2^31 = 134217728 x 16
    {.format = 28,
     .block_height = 1,
     .rows = {
      {0x7FFFFFF0, 0x7FFFFFF0},  // 2147483632: whole
      {0x7FFFFFF1, 0x80000000},  // 2147483633 -> 2147483648 -> -2147483648
      {0x7FFFFFFF, 0x80000000},  // 2147483647 -> 2147483648 -> -2147483648
      {0x80000000, 16},  // 2147483648: negative, one tile
     }},
    // a tile is 48 texel rows, 2^31 = 44739242 x 48 + 32
    {.format = 626,
     .block_height = 3,
     .rows = {
      {0x2AAAAAA0, 0x2AAAAAA0},  // 2147483616 -> 715827872
      {0x2AAAAAA1, 0xD555555B},  // 2147483619 -> 2147483664 -> -2147483632 -> -715827877
      {0x2AAAAAAA, 0xD555555B},  // 2147483646 -> 2147483664 -> -2147483632 -> -715827877
      {0x2AAAAAAB, 16},  // 2147483649: negative, one tile
      {0x55555555, 16},  // 4294967295: negative, one tile
      {0x55555556, 16},  // 2^32 + 2 -> 48 -> 16
      {0x55555566, 32},  // 2^32 + 50 -> 96 -> 32
      {0x7FFFFFFF, 0xD555555B},  // 2^32 + 2147483645 -> 2147483664 -> -2147483632 -> -715827877
      {0x80000000, 16},  // 2^32 + 2147483648: negative, one tile
     }},
    // a tile is 64 texel rows, 2^31 = 33554432 x 64
    {.format = 71,
     .block_height = 4,
     .rows = {
      {0x1FFFFFF0, 0x1FFFFFF0},  // 2147483584 -> 536870896
      {0x1FFFFFF1, 0xE0000000},  // 2147483588 -> 2147483648 -> -2147483648 -> -536870912
      {0x1FFFFFFF, 0xE0000000},  // 2147483644 -> 2147483648 -> -2147483648 -> -536870912
      {0x20000000, 16},  // 2147483648: negative, one tile
      {0x3FFFFFFF, 16},  // 4294967292: negative, one tile
      {0x40000000, 16},  // 2^32 + 0: nothing, one tile
      {0x40000001, 16},  // 2^32 + 4 -> 64 -> 16
      {0x40000011, 32},  // 2^32 + 68 -> 128 -> 32
      {0x5FFFFFFF, 0xE0000000},  // 2^32 + 2147483644 -> 2147483648 -> -2147483648 -> -536870912
      {0x7FFFFFFF, 16},  // 2^32 + 4294967292: negative, one tile
      {0x80000000, 16},  // 2 x 2^32 + 0: nothing, one tile
     }},
    // a tile is 80 texel rows, 2^31 = 26843545 x 80 + 48
    {.format = 142,
     .block_height = 5,
     .rows = {
      {0x19999990, 0x19999990},  // 2147483600 -> 429496720
      {0x19999991, 0xE666666D},  // 2147483605 -> 2147483680 -> -2147483616 -> -429496723
      {0x19999999, 0xE666666D},  // 2147483645 -> 2147483680 -> -2147483616 -> -429496723
      {0x1999999A, 16},  // 2147483650: negative, one tile
      {0x33333333, 16},  // 4294967295: negative, one tile
      {0x33333334, 16},  // 2^32 + 4 -> 80 -> 16
      {0x33333344, 32},  // 2^32 + 84 -> 160 -> 32
      {0x4CCCCCCC, 0xE666666D},  // 2^32 + 2147483644 -> 2147483680 -> -2147483616 -> -429496723
      {0x7FFFFFFF, 0xE666666D},  // 2 x 2^32 + 2147483643 -> 2147483680 -> -2147483616 -> -429496723
      {0x80000000, 16},  // 2 x 2^32 + 2147483648: negative, one tile
     }},
    // a tile is 96 texel rows, 2^31 = 22369621 x 96 + 32
    {.format = 150,
     .block_height = 6,
     .rows = {
      {0x15555550, 0x15555550},  // 2147483616 -> 357913936
      {0x15555551, 0xEAAAAAB6},  // 2147483622 -> 2147483712 -> -2147483584 -> -357913930
      {0x15555555, 0xEAAAAAB6},  // 2147483646 -> 2147483712 -> -2147483584 -> -357913930
      {0x15555556, 16},  // 2147483652: negative, one tile
      {0x2AAAAAAA, 16},  // 4294967292: negative, one tile
      {0x2AAAAAAB, 16},  // 2^32 + 2 -> 96 -> 16
      {0x2AAAAABB, 32},  // 2^32 + 98 -> 192 -> 32
      {0x3FFFFFFF, 0xEAAAAAB6},  // 2^32 + 2147483642 -> 2147483712 -> -2147483584 -> -357913930
      {0x7FFFFFFF, 16},  // 2 x 2^32 + 4294967290: negative, one tile
      {0x80000000, 16},  // 3 x 2^32 + 0: nothing, one tile
     }},
    // a tile is 128 texel rows, 2^31 = 16777216 x 128
    {.format = 162,
     .block_height = 8,
     .rows = {
      {0x0FFFFFF0, 0x0FFFFFF0},  // 2147483520 -> 268435440
      {0x0FFFFFF1, 0xF0000000},  // 2147483528 -> 2147483648 -> -2147483648 -> -268435456
      {0x0FFFFFFF, 0xF0000000},  // 2147483640 -> 2147483648 -> -2147483648 -> -268435456
      {0x10000000, 16},  // 2147483648: negative, one tile
      {0x1FFFFFFF, 16},  // 4294967288: negative, one tile
      {0x20000000, 16},  // 2^32 + 0: nothing, one tile
      {0x20000001, 16},  // 2^32 + 8 -> 128 -> 16
      {0x20000011, 32},  // 2^32 + 136 -> 256 -> 32
      {0x2FFFFFFF, 0xF0000000},  // 2^32 + 2147483640 -> 2147483648 -> -2147483648 -> -268435456
      {0x7FFFFFFF, 16},  // 3 x 2^32 + 4294967288: negative, one tile
      {0x80000000, 16},  // 4 x 2^32 + 0: nothing, one tile
     }},
    // a tile is 160 texel rows, 2^31 = 13421772 x 160 + 128
    {.format = 178,
     .block_height = 10,
     .rows = {
      {0x0CCCCCC0, 0x0CCCCCC0},  // 2147483520 -> 214748352
      {0x0CCCCCC1, 0xF3333337},  // 2147483530 -> 2147483680 -> -2147483616 -> -214748361
      {0x0CCCCCCC, 0xF3333337},  // 2147483640 -> 2147483680 -> -2147483616 -> -214748361
      {0x0CCCCCCD, 16},  // 2147483650: negative, one tile
      {0x19999999, 16},  // 4294967290: negative, one tile
      {0x1999999A, 16},  // 2^32 + 4 -> 160 -> 16
      {0x199999AA, 32},  // 2^32 + 164 -> 320 -> 32
      {0x26666666, 0xF3333337},  // 2^32 + 2147483644 -> 2147483680 -> -2147483616 -> -214748361
      {0x7FFFFFFF, 16},  // 4 x 2^32 + 4294967286: negative, one tile
      {0x80000000, 16},  // 5 x 2^32 + 0: nothing, one tile
     }},
    // a tile is 192 texel rows, 2^31 = 11184810 x 192 + 128
    {.format = 186,
     .block_height = 12,
     .rows = {
      {0x0AAAAAA0, 0x0AAAAAA0},  // 2147483520 -> 178956960
      {0x0AAAAAA1, 0xF555555B},  // 2147483532 -> 2147483712 -> -2147483584 -> -178956965
      {0x0AAAAAAA, 0xF555555B},  // 2147483640 -> 2147483712 -> -2147483584 -> -178956965
      {0x0AAAAAAB, 16},  // 2147483652: negative, one tile
      {0x15555555, 16},  // 4294967292: negative, one tile
      {0x15555556, 16},  // 2^32 + 8 -> 192 -> 16
      {0x15555566, 32},  // 2^32 + 200 -> 384 -> 32
      {0x1FFFFFFF, 0xF555555B},  // 2^32 + 2147483636 -> 2147483712 -> -2147483584 -> -178956965
      {0x7FFFFFFF, 16},  // 5 x 2^32 + 4294967284: negative, one tile
      {0x80000000, 16},  // 6 x 2^32 + 0: nothing, one tile
     }},
};

const WrapTable kLinearWraps[] = {
    // a row is a row
    {.format = 28,
     .block_height = 1,
     .rows = {
      {0x7FFFFFFF, 0x7FFFFFFF},  // 2147483647: whole
      {0x80000000, 1},  // 2147483648: negative, one block
     }},
    // a block is 3 texel rows, 2^31 = 715827882 x 3 + 2
    {.format = 626,
     .block_height = 3,
     .rows = {
      {0x2AAAAAAA, 0x2AAAAAAA},  // 2147483646 -> 715827882
      {0x2AAAAAAB, 1},  // 2147483649: negative, one block
      {0x55555555, 1},  // 4294967295: negative, one block
      {0x55555556, 1},  // 2^32 + 2 -> 3 -> 1
      {0x55555557, 2},  // 2^32 + 5 -> 6 -> 2
      {0x7FFFFFFF, 0x2AAAAAAA},  // 2^32 + 2147483645 -> 2147483646 -> 715827882
      {0x80000000, 1},  // 2^32 + 2147483648: negative, one block
     }},
    // a block is 4 texel rows, 2^31 = 536870912 x 4
    {.format = 71,
     .block_height = 4,
     .rows = {
      {0x1FFFFFFF, 0x1FFFFFFF},  // 2147483644 -> 536870911
      {0x20000000, 1},  // 2147483648: negative, one block
      {0x3FFFFFFF, 1},  // 4294967292: negative, one block
      {0x40000000, 1},  // 2^32 + 0: nothing, one block
      {0x40000001, 1},  // 2^32 + 4 -> 1
      {0x40000002, 2},  // 2^32 + 8 -> 2
      {0x5FFFFFFF, 0x1FFFFFFF},  // 2^32 + 2147483644 -> 536870911
      {0x7FFFFFFF, 1},  // 2^32 + 4294967292: negative, one block
      {0x80000000, 1},  // 2 x 2^32 + 0: nothing, one block
     }},
    // a block is 5 texel rows, 2^31 = 429496729 x 5 + 3
    {.format = 142,
     .block_height = 5,
     .rows = {
      {0x19999999, 0x19999999},  // 2147483645 -> 429496729
      {0x1999999A, 1},  // 2147483650: negative, one block
      {0x33333333, 1},  // 4294967295: negative, one block
      {0x33333334, 1},  // 2^32 + 4 -> 5 -> 1
      {0x33333335, 2},  // 2^32 + 9 -> 10 -> 2
      {0x4CCCCCCC, 0x19999999},  // 2^32 + 2147483644 -> 2147483645 -> 429496729
      {0x7FFFFFFF, 0x19999999},  // 2 x 2^32 + 2147483643 -> 2147483645 -> 429496729
      {0x80000000, 1},  // 2 x 2^32 + 2147483648: negative, one block
     }},
    // a block is 6 texel rows, 2^31 = 357913941 x 6 + 2
    {.format = 150,
     .block_height = 6,
     .rows = {
      {0x15555555, 0x15555555},  // 2147483646 -> 357913941
      {0x15555556, 1},  // 2147483652: negative, one block
      {0x2AAAAAAA, 1},  // 4294967292: negative, one block
      {0x2AAAAAAB, 1},  // 2^32 + 2 -> 6 -> 1
      {0x2AAAAAAC, 2},  // 2^32 + 8 -> 12 -> 2
      {0x3FFFFFFF, 0x15555555},  // 2^32 + 2147483642 -> 2147483646 -> 357913941
      {0x7FFFFFFF, 1},  // 2 x 2^32 + 4294967290: negative, one block
      {0x80000000, 1},  // 3 x 2^32 + 0: nothing, one block
     }},
    // a block is 8 texel rows, 2^31 = 268435456 x 8
    {.format = 162,
     .block_height = 8,
     .rows = {
      {0x0FFFFFFF, 0x0FFFFFFF},  // 2147483640 -> 268435455
      {0x10000000, 1},  // 2147483648: negative, one block
      {0x1FFFFFFF, 1},  // 4294967288: negative, one block
      {0x20000000, 1},  // 2^32 + 0: nothing, one block
      {0x20000001, 1},  // 2^32 + 8 -> 1
      {0x20000002, 2},  // 2^32 + 16 -> 2
      {0x2FFFFFFF, 0x0FFFFFFF},  // 2^32 + 2147483640 -> 268435455
      {0x7FFFFFFF, 1},  // 3 x 2^32 + 4294967288: negative, one block
      {0x80000000, 1},  // 4 x 2^32 + 0: nothing, one block
     }},
    // a block is 10 texel rows, 2^31 = 214748364 x 10 + 8
    {.format = 178,
     .block_height = 10,
     .rows = {
      {0x0CCCCCCC, 0x0CCCCCCC},  // 2147483640 -> 214748364
      {0x0CCCCCCD, 1},  // 2147483650: negative, one block
      {0x19999999, 1},  // 4294967290: negative, one block
      {0x1999999A, 1},  // 2^32 + 4 -> 10 -> 1
      {0x1999999B, 2},  // 2^32 + 14 -> 20 -> 2
      {0x26666666, 0xF3333334},  // 2^32 + 2147483644 -> 2147483650 -> -2147483646 -> -214748364
      {0x7FFFFFFF, 1},  // 4 x 2^32 + 4294967286: negative, one block
      {0x80000000, 1},  // 5 x 2^32 + 0: nothing, one block
     }},
    // a block is 12 texel rows, 2^31 = 178956970 x 12 + 8
    {.format = 186,
     .block_height = 12,
     .rows = {
      {0x0AAAAAAA, 0x0AAAAAAA},  // 2147483640 -> 178956970
      {0x0AAAAAAB, 1},  // 2147483652: negative, one block
      {0x15555555, 1},  // 4294967292: negative, one block
      {0x15555556, 1},  // 2^32 + 8 -> 12 -> 1
      {0x15555557, 2},  // 2^32 + 20 -> 24 -> 2
      {0x1FFFFFFF, 0x0AAAAAAA},  // 2^32 + 2147483636 -> 2147483640 -> 178956970
      {0x35555555, 0xF5555556},  // 2 x 2^32 + 2147483644 -> 2147483652 -> -2147483644 -> -178956970
      {0x7FFFFFFF, 1},  // 5 x 2^32 + 4294967284: negative, one block
      {0x80000000, 1},  // 6 x 2^32 + 0: nothing, one block
     }},
};
// clang-format on

// Of the entry that answers in bytes.
uint32_t height_beside_row_bytes(const harness::Gpu& gpu, const Request& r) {
  uint32_t mode = r.tiling_mode;
  uint32_t aligned_row_bytes = kCanary;
  uint32_t minimal_row_bytes = kCanary;
  uint32_t height = kCanary;
  const AlignInBytesParams params{r.width_el, r.height_rows,          r.plane, r.format, r.samples,
                                  r.selector, r.min_padded_row_bytes, &mode};
  const AlignInBytesResult result{&aligned_row_bytes, &minimal_row_bytes, &height};
  gpu->compute_fmt_aligned_width_and_height_in_bytes(&params, &result);
  EXPECT_EQ(mode, r.tiling_mode) << "too narrow to be tiled: " << describe(r);
  return height;
}

std::string off_by(uint32_t actual, uint32_t expected) {
  return "off by " + std::to_string(int64_t{actual} - int64_t{expected});
}

constexpr uint32_t kExtraRows = 32;

// A chip of the family whose extra padding is 2 units: 32 rows.
const harness::ChipData& chip_with_32_extra_rows(uint32_t family_id) {
  return harness::chip_where("supported and pads by 32 rows", [family_id](const auto& chip) {
    const uint32_t family_factor = family_id == 7 ? 2 : 1;
    return chip.family_id == family_id && chip.supported &&
           family_factor * harness::model_of(chip).extra_padding_factor == 2;
  });
}

// Every entry, on both families; the entries that add rows also with 32 rows less, and those added.
void expect_wraps(const WrapTable& table, uint32_t mode) {
  for (const uint32_t family_id : {6u, 7u}) {
    const harness::Gpu gpu(chip_with_32_extra_rows(family_id).chip_id);
    for (const WrapRow& row : table.rows) {
      Request r{.width_el = 4096,
                .format = table.format,
                .tiling_mode = mode,
                .min_padded_row_bytes = kNeverPad};
      const auto expect = [&](const char* entry, uint32_t height) {
        EXPECT_EQ(height, row.expected)
            << entry << ", family " << family_id << ", block height " << table.block_height << ": "
            << describe(r) << ": height " << off_by(height, row.expected);
      };
      if (row.rows <= INT_MAX) {
        r.height_rows = static_cast<int32_t>(row.rows);
        expect("full", full(gpu, r).height_rows);
        expect("fdm", fdm(gpu, r).height_rows);
        expect("minimal", minimal(gpu, r).height_rows);
        expect("in bytes", height_beside_row_bytes(gpu, r));
      }
      ASSERT_GE(row.rows, kExtraRows);
      r.height_rows = static_cast<int32_t>(row.rows - kExtraRows);
      r.want_extra_padding = 1;
      expect("fdm with extra rows", fdm(gpu, r).height_rows);
      expect("minimal with extra rows", minimal(gpu, r).height_rows);
    }
  }
}

TEST(Heights, TiledHeightsThatWrapOnFamilies6And7) {
  for (const WrapTable& table : kTiledWraps) expect_wraps(table, kTiled);
}

TEST(Heights, LinearHeightsThatWrapOnFamilies6And7) {
  for (const WrapTable& table : kLinearWraps) expect_wraps(table, kLinear);
}

TEST(Heights, EveryBlockHeightIsTriedWhereItWraps) {
  const std::vector<uint32_t> all(std::begin(harness::kBlockHeights),
                                  std::end(harness::kBlockHeights));
  std::vector<uint32_t> linear;
  for (const WrapTable& table : kLinearWraps) linear.push_back(table.block_height);
  EXPECT_EQ(linear, all);
  std::vector<uint32_t> tiled;
  for (const WrapTable& table : kTiledWraps) tiled.push_back(table.block_height);
  tiled.erase(tiled.begin());  // rows without blocks have a table for either tile height
  EXPECT_EQ(tiled, all);
}

// 0x3FFFFFFF x 6 = 2^32 + 0x7FFFFFFA; tiles of 96 texel rows: 22369622 x 96 = 2147483712, which is
// -2147483584 signed; / 6 = -357913930.
TEST(Heights, BlocksOfSixRowsPastTwoToThe31) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  const Request r{.width_el = 4096, .height_rows = 0x3FFFFFFF, .format = 150};
  EXPECT_EQ(full(gpu, r).height_rows, 0xEAAAAAB6u);
}

// 0x7FFFFFFF x 5 = 2 x 2^32 + 0x7FFFFFFB; tiles of 80 texel rows: 26843546 x 80 = 2147483680, which
// is -2147483616 signed; / 5 = -429496723.
TEST(Heights, BlocksOfFiveRowsPastTwoToThe31) {
  const harness::Gpu gpu(harness::full_chip(7).chip_id);
  const Request r{.width_el = 97, .height_rows = 0x7FFFFFFF, .format = 570};
  EXPECT_EQ(minimal(gpu, r).height_rows, 0xE666666Du);
}

// By a mask, whatever the sign: 0x7FFFFFFF + 63, or that with 32 rows more, less the last 6 bits.
TEST(Heights, Format670IsRoundedUnsignedWhenLinear) {
  for (const uint32_t family_id : {6u, 7u}) {
    const harness::Gpu gpu(chip_with_32_extra_rows(family_id).chip_id);
    Request r{.height_rows = INT_MAX, .format = 670, .tiling_mode = kLinear};
    EXPECT_EQ(full(gpu, r).height_rows, 0x80000000u);
    r.want_extra_padding = 1;
    EXPECT_EQ(fdm(gpu, r).height_rows, 0x80000040u);
    EXPECT_EQ(minimal(gpu, r).height_rows, 0x80000040u);
  }
}

}  // namespace
}  // namespace align_test
