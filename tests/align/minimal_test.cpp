// The smallest size that the hardware takes.
#include "tests/align/align_calls.h"

namespace align_test {
namespace {

struct TiledRow {
  uint32_t format;
  uint32_t samples;
  int32_t width;
  uint32_t expected;
};

// Family 5, tiled: rows of 256 bytes (512 for 64-byte elements) and no multiple of 64 beyond that.
constexpr TiledRow kFamily5Tiled[] = {
    {kBytes8, 1, 1, 32},     // the full alignment makes it 64
    {kBytes8, 1, 32, 32},    //
    {kBytes8, 1, 33, 64},    //
    {kBytes8, 1, 65, 96},    // full: 128
    {kBytes8, 1, 0, 0},      // full: 64
    {kBytes4, 1, 1, 64},     //
    {kBytes4, 1, 0, 0},      //
    {kBytes4, 1, 65, 128},   //
    {kBytes16, 1, 1, 16},    //
    {kBytes16, 1, 17, 32},   //
    {kBytes8, 4, 1, 8},      // 32-byte elements
    {kBytes8, 4, 9, 16},     //
    {kBytes8, 8, 1, 8},      // 64-byte elements, 512 bytes
    {kBytes16, 4, 9, 16},    //
    {kBytes16, 8, 9, 9},     // 128-byte elements: as it is
    {kBytes12, 1, 9, 9},     //
    {kBytes6, 1, 100, 100},  //
    {kBytes1, 5, 9, 9},      // 5-byte elements
    {kBc1, 1, 25, 32},       //
    {654, 1, 65, 128},       //
    // Below 4 bytes the row is made of 64 elements first.
    {kBytes1, 1, 0, 128},
    {kBytes1, 1, 1, 128},
    {kBytes1, 1, 129, 256},
    {kBytes2, 1, 1, 128},
    {kBytes2Tall, 1, 1, 64},
    {kBytes2Tall, 1, 65, 128},
    {kBytes3, 1, 1, 64},
    {kBytes3, 1, 65, 128},
    {660, 1, 1, 256},
    {661, 1, 257, 512},
    {kFourCC, 1, 1, 128},
};

TEST(Minimal, TiledRowsOfFamily5) {
  const harness::Gpu gpu(harness::full_chip(5).chip_id);
  for (const TiledRow& row : kFamily5Tiled) {
    for (const uint32_t allowed : {0u, 1u}) {
      // The divisor is not looked at, not even one of 0.
      const Request r{.width = row.width,
                      .format = row.format,
                      .samples = row.samples,
                      .divisor = 0,
                      .want_extra = 1,
                      .tiling_allowed = allowed};
      EXPECT_EQ(minimal(gpu, r).width, row.expected) << describe(r);
    }
  }
  EXPECT_EQ(full(gpu, {.format = kBytes8}).width, 64u);
  EXPECT_EQ(full(gpu, {.width = 65, .format = kBytes8}).width, 128u);
  // Heights are those of the full alignment.
  EXPECT_EQ(minimal(gpu, {.height = 17, .format = kBytes8}).height, 32u);
  EXPECT_EQ(minimal(gpu, {.height = 17, .format = kBytes1}).height, 32u);
  EXPECT_EQ(minimal(gpu, {.height = 33, .format = kBytes2Tall}).height, 64u);
  EXPECT_EQ(minimal(gpu, {.height = 17, .format = 660}).height, 32u);
  EXPECT_EQ(minimal(gpu, {.height = 0, .format = kBytes4}).height, 0u);
}

TEST(Minimal, TiledSurfacesOfFamilies6And7AreFullyAligned) {
  for (const uint32_t family : {6u, 7u}) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t allowed : {0u, 1u, 2u}) {
      const auto tiled = [&](uint32_t format, int32_t width, int32_t height) {
        return minimal(gpu, {.width = width,
                             .height = height,
                             .format = format,
                             .divisor = 0,
                             .tiling_allowed = allowed});
      };
      EXPECT_EQ(tiled(kBytes8, 1, 1), (Size{32, 16}));
      EXPECT_EQ(tiled(kBytes8, 65, 17), (Size{96, 32}));
      EXPECT_EQ(tiled(kBytes1, 129, 33), (Size{256, 64}));
      EXPECT_EQ(tiled(kBc1, 33, 17), (Size{64, 32}));
      EXPECT_EQ(tiled(kBytes4, 0, 0), (Size{64, 16}));
    }
  }
}

struct LinearRow {
  uint32_t format;
  uint32_t samples;
  uint32_t of5_linear;  // the alignment of widths when tiling is not allowed
  uint32_t of5_tiled;   // and when it is
  uint32_t of67_linear;
  uint32_t of67_tiled;
};

// The alignments in bytes, which a divisor of 1 takes as elements: element bytes x a x samples up
// to 64 with a = 64 / gcd(64, k) or, allowed, the tile width for k.
constexpr LinearRow kLinearRows[] = {
    {kBytes1, 1, 64, 128, 64, 128},
    {kBytes2, 1, 64, 256, 64, 256},
    {kBytes2Tall, 1, 64, 128, 64, 128},
    {48, 1, 64, 256, 64, 128},  // tall on families 6 and 7 only
    {kBytes4, 1, 64, 256, 64, 256},
    {kBytes8, 1, 64, 256, 64, 256},
    {kBytes16, 1, 64, 256, 64, 256},
    {kBytes4, 2, 64, 256, 64, 256},       // 4 x 32 x 2
    {kBytes4, 8, 64, 256, 64, 256},       // 4 x 8 x 8
    {kBytes16, 4, 64, 512, 64, 512},      // 16 x 8 x 4
    {kBytes16, 8, 128, 8192, 128, 8192},  // k = 128: 16 x 64 x 8
    {506, 2, 64, 128, 64, 256},           // two bytes are tall on family 5: 64 x 2; else 128 x 2
    {103, 1, 64, 128, 64, 128},
    {660, 1, 64, 256, 64, 256},
    {661, 1, 64, 256, 64, 256},
    {kFourCC, 1, 64, 128, 64, 128},
    {722, 1, 64, 128, 64, 128},
    {kBc1, 1, 64, 256, 64, 256},  // 8 bytes x 32 blocks
    {kBc7, 1, 64, 256, 64, 256},  // 16 bytes x 16 blocks
    {186, 1, 64, 256, 64, 256},   // the block width cancels out
    {kBc1, 8, 8, 64, 8, 64},      // 8 x 1; k = 64: 8 x 8
    {kBc7, 2, 32, 128, 32, 128},  // 16 x 2; k = 32: 16 x 8
    {107, 1, 64, 256, 64, 256},   // 2 bytes x 32; x 128
    {107, 8, 8, 32, 8, 32},       // 2 x 4; k = 16: 2 x 16
    {654, 1, 64, 256, 64, 256},   // 4 bytes x 16; x 64
    {656, 1, 64, 256, 64, 256},   // 8 bytes x 8; x 32
    // The pair formats that family 5 treats as ordinary: x samples, up to 64.
    {68, 8, 64, 256, 8, 32},  // 2 x 4 x 8, 2 x 16 x 8; 2 x 4, 2 x 16
    {617, 8, 64, 256, 8, 32},
};

// (w + q - 1) & -q for q a power of two.
uint32_t up(uint32_t width, uint32_t q) {
  return (width + q - 1) / q * q;
}

TEST(Minimal, LinearWidthsMayLeaveRoomForTiling) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    const bool five = family == 5;
    for (const LinearRow& row : kLinearRows) {
      const uint32_t linear = five ? row.of5_linear : row.of67_linear;
      const uint32_t tiled = five ? row.of5_tiled : row.of67_tiled;
      for (const int32_t width : {0, 1, 33, 65, 129, 300}) {
        const auto w = static_cast<uint32_t>(width);
        Request r{.width = width,
                  .height = 5,
                  .format = row.format,
                  .samples = row.samples,
                  .mode = kLinear,
                  .min_padded = kNeverPad,
                  .tiling_allowed = 0};
        EXPECT_EQ(minimal(gpu, r), (Size{up(w, linear), 5})) << family << ": " << describe(r);
        r.tiling_allowed = 1;
        EXPECT_EQ(minimal(gpu, r), (Size{up(w, tiled), 5})) << family << ": " << describe(r);
        // Any other value means yes to family 5 and no to the others.
        r.tiling_allowed = 2;
        EXPECT_EQ(minimal(gpu, r), (Size{up(w, five ? tiled : linear), 5}))
            << family << ": " << describe(r);
        r.mode = 2;
        EXPECT_EQ(minimal(gpu, r), (Size{up(w, five ? tiled : linear), 5}))
            << family << ": " << describe(r);
      }
    }
  }
}

struct DivisorRow {
  uint32_t format;
  uint32_t allowed;
  uint32_t divisor;
  int32_t width;
  uint32_t expected;
};

constexpr DivisorRow kDivisors[] = {
    {kBytes4, 0, 4, 1, 16},     // 64 / 4
    {kBytes4, 0, 4, 17, 32},    //
    {kBytes4, 1, 4, 1, 64},     // 256 / 4
    {kBytes4, 1, 4, 65, 128},   //
    {kBytes4, 0, 64, 17, 17},   // 1
    {kBytes4, 0, 65, 17, 17},   // 0: as it is
    {kBytes4, 1, 257, 17, 17},  //
    {kBytes4, 1, 256, 17, 17},  //
    {kBytes4, 1, 0x80000000, 17, 17},
    {kBytes4, 0, 3, 100, 104},  // 21; -21 = ...EB: 0x78 & 0xEB
    {kBc1, 0, 8, 1, 8},         //
    {kBc1, 1, 8, 1, 32},        //
    {kBytes16, 0, 16, 5, 8},    //
    {kBytes16, 1, 16, 5, 16},   //
    {654, 0, 4, 17, 32},        //
    {654, 1, 4, 17, 64},        //
    {kFourCC, 0, 1, 65, 128},   //
};

TEST(Minimal, TheDivisorDividesTheLinearAlignment) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const DivisorRow& row : kDivisors) {
      const Request r{.width = row.width,
                      .format = row.format,
                      .mode = kLinear,
                      .min_padded = kNeverPad,
                      .divisor = row.divisor,
                      .tiling_allowed = row.allowed};
      EXPECT_EQ(minimal(gpu, r).width, row.expected) << family << ": " << describe(r);
    }
  }
}

TEST(Minimal, LinearRowsArePaddedAsTheFullOnesAre) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    const auto width_of = [&](uint32_t format, int32_t width, uint32_t divisor, int32_t limit,
                              uint32_t allowed = 0) {
      return minimal(gpu, {.width = width,
                           .format = format,
                           .mode = kLinear,
                           .min_padded = limit,
                           .divisor = divisor,
                           .tiling_allowed = allowed})
          .width;
    };
    EXPECT_EQ(width_of(kBytes4, 500, 4, 0), 768u) << family;     // 512 elements
    EXPECT_EQ(width_of(kBytes4, 500, 4, 2048), 512u) << family;  // 2048 bytes at most
    EXPECT_EQ(width_of(kBytes4, 500, 4, 2047), 768u) << family;
    EXPECT_EQ(width_of(kBytes4, 257, 1, 0, 1), 768u) << family;    // to 512 by the tile
    EXPECT_EQ(width_of(kBytes4, 1, 4, 0), 64u) << family;          // 16, the entry for 64
    EXPECT_EQ(width_of(kBytes4, 0, 1, 0), 0u) << family;           // 0 bytes, at most 0
    EXPECT_EQ(width_of(kBytes4, 0, 1, kAlwaysPad), 0u) << family;  // the entry for 0
    EXPECT_EQ(width_of(kBytes4, 20000, 4, 0), 16384u) << family;   // cut
    EXPECT_EQ(width_of(kBytes4, 20000, 4, kNeverPad), 20000u) << family;
    // 3-byte elements: 4-byte ones' alignment, 64 / 3 = 21 elements: 100 to 104 (a mask), then
    // whole rows of 768 bytes. No limit and no table after it.
    EXPECT_EQ(width_of(kBytes3, 100, 3, kNeverPad), 256u) << family;
    EXPECT_EQ(width_of(kBytes3, 2048, 1, 0), 2048u) << family;
    EXPECT_EQ(width_of(kBytes12, 1025, 16, 0), 2048u) << family;
    for (const uint32_t format : {103u, 107u, 654u, 660u, kBc1, kFourCC}) {
      EXPECT_EQ(width_of(format, 2048, 1, kAlwaysPad), 2048u) << family << ": " << format;
    }
    EXPECT_EQ(width_of(68, 1024, 1, 0), 1536u) << family;
    EXPECT_EQ(width_of(722, 2048, 1, 0), 3072u) << family;
  }
  const harness::Gpu gpu(chip_without_pitch_limit().chip_id);
  EXPECT_EQ(minimal(gpu, {.mode = kLinear}).width, 0u);
}

TEST(Minimal, UnalignedWidthsArePaddedByTheEntryAbove) {
  // A divisor of 64 leaves any width: the table has one entry for every 64 elements.
  struct Row {
    int32_t width;
    uint32_t expected;
  };
  constexpr Row kRows[] = {{1, 64},      {63, 64},     {65, 128},    {449, 768},    {511, 768},
                           {513, 576},   {1985, 2304}, {2047, 2304}, {2049, 2112},  {2111, 2112},
                           {2113, 2176}, {4095, 4352}, {4097, 4160}, {16383, 16384}};
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const Row& row : kRows) {
      const Request r{.width = row.width, .mode = kLinear, .divisor = 64};
      EXPECT_EQ(minimal(gpu, r).width, row.expected) << family << ": " << describe(r);
      if (family != 5) {
        EXPECT_EQ(fdm(gpu, r).width, row.expected) << describe(r);
      }
    }
  }
}

TEST(Minimal, NoSamplesLeaveTheLinearWidth) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t allowed : {0u, 1u}) {
      const Request r{.width = 101,
                      .samples = 0,
                      .mode = kLinear,
                      .min_padded = kNeverPad,
                      .tiling_allowed = allowed};
      EXPECT_EQ(minimal(gpu, r).width, 101u) << family << ": " << describe(r);
    }
    // Blocks of no samples, allowed to be tiled: 64 blocks of 8 bytes. (64 / 0 is not asked for.)
    const Request r{
        .width = 101, .format = kBc1, .samples = 0, .mode = kLinear, .tiling_allowed = 1};
    EXPECT_EQ(minimal(gpu, r).width, 512u) << family;
  }
}

TEST(MinimalDeathTest, DivisionsBy0) {
  for (const uint32_t family : kFamilies) {
    const uint32_t chip = harness::full_chip(family).chip_id;
    for (const uint32_t allowed : {0u, 1u}) {
      EXPECT_DIVISION_FAULT({
        const harness::Gpu gpu(chip);
        minimal(gpu, {.mode = kLinear, .divisor = 0, .tiling_allowed = allowed});
      });
    }
    for (const uint32_t format : {kBc1, 107u}) {  // 64 / (bytes x no samples)
      EXPECT_DIVISION_FAULT({
        const harness::Gpu gpu(chip);
        minimal(gpu, {.format = format, .samples = 0, .mode = kLinear});
      });
    }
  }
  const uint32_t chip = harness::full_chip(5).chip_id;
  EXPECT_DIVISION_FAULT({  // tiled elements of 0 bytes
    const harness::Gpu gpu(chip);
    minimal(gpu, {.plane = 1});
  });
}

}  // namespace
}  // namespace align_test
