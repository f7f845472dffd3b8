// Linear surfaces: the width before padding, odd element sizes, the padding limit.
#include "tests/align/align_calls.h"

namespace align_test {
namespace {

uint32_t linear_width(const harness::Gpu& gpu, uint32_t format, int32_t width, uint32_t samples = 1,
                      int32_t limit = kNeverPad, uint32_t plane = 0) {
  return full(gpu, {.width = width,
                    .plane = plane,
                    .format = format,
                    .samples = samples,
                    .mode = kLinear,
                    .min_padded = limit})
      .width;
}

struct WidthRow {
  int32_t width;
  uint32_t family5;   // up to 64, 64 for 0
  uint32_t family67;  // up to 64, 0 for 0
};

constexpr WidthRow kWidths[] = {
    {0, 64, 0},
    {1, 64, 64},
    {63, 64, 64},
    {64, 64, 64},
    {65, 128, 128},
    {2047, 2048, 2048},
    {2048, 2048, 2048},
    {2049, 2112, 2112},
    {4095, 4096, 4096},
    {4096, 4096, 4096},
    {4097, 4160, 4160},
    {16384, 16384, 16384},
    {16385, 16448, 16448},  // beyond the pitch limit: only padded widths are cut
    {INT_MAX, 0x80000000, 0x80000000},
};

TEST(Linear, UnpaddedWidthsAreMultiplesOf64) {
  // One sample: an alignment of 64 / gcd(64, bytes) elements is 64 bytes, and 64 counts as
  // elements.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const WidthRow& row : kWidths) {
      for (const uint32_t format : {kBytes1, kBytes2, kBytes2Tall, kBytes4, kBytes8, kBytes16, 68u,
                                    103u, 107u, 654u, 660u, kBc1, kBc7, 186u, 20u, 722u, kFourCC}) {
        EXPECT_EQ(linear_width(gpu, format, row.width), family == 5 ? row.family5 : row.family67)
            << family << ": " << format << ", " << row.width;
      }
    }
  }
}

TEST(Linear, EveryModeButOneIsLinear) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t mode : {0u, 2u, 0x80000000u, 0xFFFFFFFFu}) {
      EXPECT_EQ(full(gpu, {.width = 65, .height = 5, .mode = mode}), (Size{128, 5}))
          << family << ": " << mode;
    }
  }
}

struct SampleRow {
  uint32_t format;
  uint32_t samples;
  uint32_t mask;  // the alignment q; a width w becomes (w + q - 1) & -q
  uint32_t of1;
  uint32_t of64;
  uint32_t of65;
  uint32_t of100;
};

// Families 6 and 7. k = bytes x samples; a = 64 / gcd(64, k); q = bytes x a x samples up to 64.
// Block-compressed and packed: a = 64 / k, at least 1, and q = bytes x a.
constexpr SampleRow kSamples[] = {
    {kBytes1, 2, 64, 64, 64, 128, 128},
    {kBytes4, 8, 64, 64, 64, 128, 128},      // k = 32, a = 2
    {kBytes8, 8, 64, 64, 64, 128, 128},      // k = 64, a = 1
    {kBytes16, 4, 64, 64, 64, 128, 128},     // k = 64, a = 1
    {kBytes16, 8, 128, 128, 128, 128, 128},  // k = 128, a = 1
    // Not powers of two: the mask keeps only some bits. -192 = ...FF40, -320 = ...FEC0.
    {kBytes4, 3, 192, 64, 64, 256, 256},  // k = 12, a = 16: 1 + 191 = 0xC0, 64 + 191 = 0xFF,
                                          // 65 + 191 = 0x100, 100 + 191 = 0x123
    {kBytes4, 5, 320, 64, 64, 128, 128},  // k = 20, a = 16: 1 + 319 = 0x140, 64 + 319 = 0x17F,
                                          // 65 + 319 = 0x180, 100 + 319 = 0x1A3
    {kBytes4, 0, 0, 1, 64, 65, 100},      // a = 1, q = 0: the width stays
    {kBytes1, 0, 0, 1, 64, 65, 100},
    {kBc1, 2, 32, 32, 64, 96, 128},  // k = 16, 8 x 4
    {kBc1, 3, 16, 16, 64, 80, 112},  // k = 24, 8 x 2
    {kBc1, 4, 16, 16, 64, 80, 112},  // k = 32, 8 x 2
    {kBc1, 5, 8, 8, 64, 72, 104},    // k = 40, 8 x 1
    {kBc1, 8, 8, 8, 64, 72, 104},    // k = 64, 8 x 1
    {kBc7, 2, 32, 32, 64, 96, 128},  // k = 32, 16 x 2
    {kBc7, 4, 16, 16, 64, 80, 112},  // k = 64, 16 x 1
    {kBc7, 8, 16, 16, 64, 80, 112},  // k = 128, 16 x 1
    {186, 8, 16, 16, 64, 80, 112},   // 12 x 12, as any other block
    {107, 8, 8, 8, 64, 72, 104},     // k = 16, 2 x 4
    {68, 8, 8, 8, 64, 72, 104},
    {68, 2, 32, 32, 64, 96, 128},  // k = 4, 2 x 16
    {617, 8, 8, 8, 64, 72, 104},
    {654, 2, 32, 32, 64, 96, 128},   // k = 8, 4 x 8, three texels an element throughout
    {656, 4, 16, 16, 64, 80, 112},   // k = 32, 8 x 2
    {103, 8, 64, 64, 64, 128, 128},  // k = 8, a = 8
};

TEST(Linear, SamplesChangeTheAlignmentOnFamilies6And7) {
  for (const uint32_t family : {6u, 7u}) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const SampleRow& row : kSamples) {
      const auto width_of = [&](int32_t width) {
        return linear_width(gpu, row.format, width, row.samples);
      };
      EXPECT_EQ(width_of(1), row.of1) << row.format << ", " << row.samples;
      EXPECT_EQ(width_of(64), row.of64) << row.format << ", " << row.samples;
      EXPECT_EQ(width_of(65), row.of65) << row.format << ", " << row.samples;
      EXPECT_EQ(width_of(100), row.of100) << row.format << ", " << row.samples;
    }
  }
}

TEST(Linear, SamplesHaveNoEffectOnFamily5) {
  const harness::Gpu gpu(harness::full_chip(5).chip_id);
  for (const SampleRow& row : kSamples) {
    EXPECT_EQ(linear_width(gpu, row.format, 1, row.samples), 64u) << row.format;
    EXPECT_EQ(linear_width(gpu, row.format, 65, row.samples), 128u) << row.format;
  }
}

struct OddRow {
  uint32_t format;
  uint32_t multiple;  // bytes of the substitute (4, 8, 16) x 64
};

// Rows of 3, 6 and 12-byte elements are made of 768, 3072 and 12288 bytes.
constexpr OddRow kOdd[] = {
    {508, 256}, {510, 256}, {513, 256}, {516, 256},  {521, 256},  {549, 256},  {623, 256},
    {624, 256}, {523, 512}, {526, 512}, {529, 512},  {558, 512},  {563, 512},  {5, 1024},
    {6, 1024},  {7, 1024},  {8, 1024},  {556, 1024}, {561, 1024}, {566, 1024},
};

TEST(Linear, OddElementSizesRoundToTheirOwnRows) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const OddRow& row : kOdd) {
      const auto m = static_cast<int32_t>(row.multiple);
      const uint32_t u = row.multiple;
      // No limit, and no table, comes after this rule.
      for (const int32_t limit : {kNeverPad, 0, kAlwaysPad, INT_MIN}) {
        const auto width_of = [&](int32_t width) {
          return linear_width(gpu, row.format, width, 1, limit);
        };
        EXPECT_EQ(width_of(0), family == 5 ? u : 0u) << family << ": " << row.format;
        EXPECT_EQ(width_of(1), u) << family << ": " << row.format;
        EXPECT_EQ(width_of(m), u) << family << ": " << row.format;
        EXPECT_EQ(width_of(m + 1), 2 * u) << family << ": " << row.format;
        EXPECT_EQ(width_of(2048), 2048u) << family << ": " << row.format;
        EXPECT_EQ(width_of(4097), 4096u + u) << family << ": " << row.format;
        EXPECT_EQ(width_of(16385), 16384u + u) << family << ": " << row.format;
      }
    }
  }
}

struct LimitRow {
  uint32_t format;
  int32_t width;
  uint32_t unpadded;
  uint32_t padded;
  int32_t row_bytes;
};

// Widths that the padding changes: 2048 bytes become 3072.
constexpr LimitRow kLimits[] = {
    {kBytes1, 2048, 2048, 3072, 2048}, {kBytes2, 1000, 1024, 1536, 2048},
    {kBytes4, 449, 512, 768, 2048},    {kBytes8, 256, 256, 384, 2048},
    {kBytes16, 65, 128, 192, 2048},
};

TEST(Linear, RowsUpToTheLimitAreNotPadded) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const LimitRow& row : kLimits) {
      const auto width_at = [&](int32_t limit) {
        return linear_width(gpu, row.format, row.width, 1, limit);
      };
      EXPECT_EQ(width_at(row.row_bytes + 1), row.unpadded) << family << ": " << row.format;
      EXPECT_EQ(width_at(row.row_bytes), row.unpadded) << family << ": " << row.format;
      EXPECT_EQ(width_at(row.row_bytes - 1), row.padded) << family << ": " << row.format;
      EXPECT_EQ(width_at(512), row.padded) << family << ": " << row.format;
      EXPECT_EQ(width_at(0), row.padded) << family << ": " << row.format;
      EXPECT_EQ(width_at(-1), row.padded) << family << ": " << row.format;  // compared signed
      EXPECT_EQ(width_at(INT_MIN), row.padded) << family << ": " << row.format;
      EXPECT_EQ(width_at(INT_MAX), row.unpadded) << family << ": " << row.format;
    }
  }
}

TEST(Linear, VideoAndBlockFormatsAndTheFourCCAreNeverPadded) {
  // The width is one that the padding changes for every element size.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t format : {100u, 103u, 104u, 106u, 107u, 111u, 114u, 614u, 615u, 625u,
                                  654u, 655u, 656u, 657u, 660u, 661u, 664u, 669u, 679u, 709u,
                                  712u, 721u, kBc1, kBc7, 133u, 186u, 568u, 626u, 681u, kFourCC}) {
      EXPECT_EQ(linear_width(gpu, format, 2048, 1, kAlwaysPad), 2048u) << family << ": " << format;
      EXPECT_EQ(linear_width(gpu, format, 16385, 1, kAlwaysPad), 16448u)
          << family << ": " << format;
    }
    // Neighbours in kind that are padded: packed without the video bit, planes of depth/stencil,
    // and numbers without a record.
    EXPECT_EQ(linear_width(gpu, 68, 1024, 1, kAlwaysPad), 1536u) << family;
    EXPECT_EQ(linear_width(gpu, 670, 2048, 1, kAlwaysPad), 3072u) << family;
    EXPECT_EQ(linear_width(gpu, 0, 2048, 1, kAlwaysPad), 3072u) << family;
    EXPECT_EQ(linear_width(gpu, 722, 2048, 1, kAlwaysPad), 3072u) << family;
    EXPECT_EQ(linear_width(gpu, 0xFFFFFFFF, 2048, 1, kAlwaysPad), 3072u) << family;
  }
}

TEST(Linear, PaddingGoesByThePlanesElementSize) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t format : {20u, 551u}) {  // 4 bytes of depth, 1 of stencil
      EXPECT_EQ(linear_width(gpu, format, 512, 1, kAlwaysPad, 0), 768u) << family;
      EXPECT_EQ(linear_width(gpu, format, 256, 1, kAlwaysPad, 0), 256u) << family;
      EXPECT_EQ(linear_width(gpu, format, 512, 1, kAlwaysPad, 1), 512u) << family;
      EXPECT_EQ(linear_width(gpu, format, 2048, 1, kAlwaysPad, 1), 3072u) << family;
    }
    EXPECT_EQ(linear_width(gpu, 21, 256, 1, kAlwaysPad, 0), 384u) << family;  // 8 bytes
  }
}

TEST(Linear, PlanesThatAFormatLacksKeepTheirWidth) {
  // Elements of 0 bytes: a row of 0 bytes is longer than a limit of -1, but no table has them, and
  // no pitch limit cuts them.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const int32_t limit : {kNeverPad, 0, kAlwaysPad}) {
      EXPECT_EQ(linear_width(gpu, kBytes4, 512, 1, limit, 1), 512u) << family;
      EXPECT_EQ(linear_width(gpu, kBytes3, 100, 1, limit, 2), 128u) << family;
      EXPECT_EQ(linear_width(gpu, 722, 2048, 1, limit, 1), 2048u) << family;
      EXPECT_EQ(linear_width(gpu, kBytes4, 20000, 1, limit, 0xFFFFFFFF), 20032u) << family;
    }
  }
  const harness::Gpu gpu(chip_without_pitch_limit().chip_id);
  EXPECT_EQ(linear_width(gpu, kBytes4, 20000, 1, kAlwaysPad, 1), 20032u);
}

TEST(Linear, PaddedWidthsStopAtThePitchLimit) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t format : {kBytes1, kBytes2, kBytes4, kBytes8, kBytes16}) {
      EXPECT_EQ(linear_width(gpu, format, 16384, 1, 0), 16384u) << family << ": " << format;
      EXPECT_EQ(linear_width(gpu, format, 16385, 1, 0), 16384u) << family << ": " << format;
      EXPECT_EQ(linear_width(gpu, format, 20000, 1, 0), 16384u) << family << ": " << format;
      EXPECT_EQ(linear_width(gpu, format, 16385, 1, kNeverPad), 16448u) << family << ": " << format;
    }
    // 14336 + 1536 -> 14336 + 1792, still below; 14336 + 2047 -> 16384, a multiple of 2048.
    EXPECT_EQ(linear_width(gpu, kBytes4, 15872, 1, 0), 16128u) << family;
    EXPECT_EQ(linear_width(gpu, kBytes4, 16383, 1, 0), 16384u) << family;
  }
}

TEST(Linear, PaddedWidthsBecome0OnModelsWithoutAPitchLimit) {
  const harness::Gpu gpu(chip_without_pitch_limit().chip_id);
  for (const uint32_t format : {kBytes1, kBytes2, kBytes4, kBytes8, kBytes16}) {
    for (const int32_t width : {1, 64, 2048, 2049, 4096, 16385}) {
      EXPECT_EQ(linear_width(gpu, format, width, 1, 0), 0u) << format << ", " << width;
    }
    EXPECT_EQ(linear_width(gpu, format, 65, 1, kNeverPad), 128u) << format;  // not padded
    EXPECT_EQ(linear_width(gpu, format, 0, 1, kAlwaysPad), 0u) << format;
  }
  EXPECT_EQ(linear_width(gpu, kBytes3, 100, 1, 0), 256u);  // odd sizes know no limit
  EXPECT_EQ(linear_width(gpu, kBc1, 100, 1, 0), 128u);     // and these are never padded
  EXPECT_EQ(full(gpu, {.width = 100}).width, 128u);        // nor are tiled rows
}

TEST(Linear, RowBytesWrapAndCompareSigned) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    // 0x20000000 x 4 = 0x80000000, negative: not above a limit of 0. 0x10000000 x 4 is.
    EXPECT_EQ(linear_width(gpu, kBytes4, 0x20000000, 1, 0), 0x20000000u) << family;
    EXPECT_EQ(linear_width(gpu, kBytes4, 0x10000000, 1, 0), 16384u) << family;
    EXPECT_EQ(linear_width(gpu, kBytes4, 0x20000000, 1, INT_MIN), 0x20000000u) << family;
    // 2147483647 -> 0x80000000; x 4 = 0, above -1: to the table, where the width counts unsigned.
    // Families 5 and 6 take the unsigned smaller of it and 16384, family 7 the signed one.
    EXPECT_EQ(linear_width(gpu, kBytes4, INT_MAX, 1, -1), family == 7 ? 0x80000000u : 16384u);
  }
  const harness::Gpu gpu(chip_without_pitch_limit().chip_id);
  EXPECT_EQ(linear_width(gpu, kBytes4, INT_MAX, 1, -1), 0x80000000u);
}

TEST(LinearDeathTest, BlocksOfNoSamplesFaultOnFamilies6And7) {
  for (const uint32_t family : {6u, 7u}) {
    const uint32_t chip = harness::full_chip(family).chip_id;
    for (const uint32_t format : {kBc1, 107u, 654u}) {  // 64 / (bytes x 0)
      EXPECT_DIVISION_FAULT({
        const harness::Gpu gpu(chip);
        linear_width(gpu, format, 64, 0);
      });
    }
  }
}

}  // namespace
}  // namespace align_test
