// Linear surfaces: the width before padding, odd element sizes, the padding limit.
#include "tests/align/align_calls.h"

namespace align_test {
namespace {

struct WidthRow {
  int32_t width_el;
  ByFamily<uint32_t> expected_el;
};

// The next multiple of 64. Of no elements family 5 makes 64, the others none.
constexpr WidthRow kWidths[] = {
    {.width_el = 0, .expected_el = {.on_5 = 64, .on_6_and_7 = 0}},
    {.width_el = 1, .expected_el = on_all(64)},
    {.width_el = 63, .expected_el = on_all(64)},
    {.width_el = 64, .expected_el = on_all(64)},
    {.width_el = 65, .expected_el = on_all(128)},
    {.width_el = 2047, .expected_el = on_all(2048)},
    {.width_el = 2048, .expected_el = on_all(2048)},
    {.width_el = 2049, .expected_el = on_all(2112)},  // 33 x 64
    {.width_el = 4095, .expected_el = on_all(4096)},
    {.width_el = 4096, .expected_el = on_all(4096)},
    {.width_el = 4097, .expected_el = on_all(4160)},  // 65 x 64
    {.width_el = 16384, .expected_el = on_all(16384)},
    {.width_el = 16385, .expected_el = on_all(16448)},  // 257 x 64: the pitch limit cuts padded
                                                        // widths only
    {.width_el = INT_MAX, .expected_el = on_all(0x80000000)},
};

TEST(Linear, UnpaddedWidthsAreMultiplesOf64) {
  // One sample: an alignment of 64 / gcd(64, bytes) elements is 64 bytes, and 64 counts as
  // elements.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const WidthRow& row : kWidths) {
      for (const uint32_t format :
           {kBytes1, kBytes2, kBytes2Tall, kBytes4, kBytes8, kBytes16, 68u, 103u, 107u, 654u, 660u,
            kBc1, kBc7, 186u, 20u, kNoRecord, kFourCC}) {
        const Request r{.width_el = row.width_el,
                        .format = format,
                        .tiling_mode = kLinear,
                        .min_padded_row_bytes = kNeverPad};
        EXPECT_NUMBER(full(gpu, r).width_el, row.expected_el.of(family)) << describe(family, r);
      }
    }
  }
}

TEST(Linear, EveryModeButOneIsLinear) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t mode : {0u, 2u, 0x80000000u, 0xFFFFFFFFu}) {
      // 65 -> 128 (64s), and 5 rows stay; tiled they would be 16.
      const Request r{.width_el = 65, .height_rows = 5, .tiling_mode = mode};
      EXPECT_NUMBERS(full(gpu, r), (Size{128, 5})) << describe(family, r);
    }
  }
}

struct SampleRow {
  uint32_t format;
  uint32_t samples;
  // What widths of 1, 64, 65 and 100 elements become.
  uint32_t of_1;
  uint32_t of_64;
  uint32_t of_65;
  uint32_t of_100;
};

// Families 6 and 7 make a width w (w + q - 1) & -q. With k = bytes x samples:
//   any other format             a = 64 / gcd(64, k), and q = bytes x a x samples up to a multiple
//                                of 64
//   block-compressed and packed  a = 64 / k but at least 1, and q = bytes x a
constexpr SampleRow kSamples[] = {
    // k = 2, a = 32: 1 x 32 x 2, q = 64.
    {.format = kBytes1, .samples = 2, .of_1 = 64, .of_64 = 64, .of_65 = 128, .of_100 = 128},
    // k = 32, a = 2: 4 x 2 x 8, q = 64.
    {.format = kBytes4, .samples = 8, .of_1 = 64, .of_64 = 64, .of_65 = 128, .of_100 = 128},
    // k = 64, a = 1: 8 x 1 x 8, q = 64.
    {.format = kBytes8, .samples = 8, .of_1 = 64, .of_64 = 64, .of_65 = 128, .of_100 = 128},
    // k = 64, a = 1: 16 x 1 x 4, q = 64.
    {.format = kBytes16, .samples = 4, .of_1 = 64, .of_64 = 64, .of_65 = 128, .of_100 = 128},
    // k = 128, a = 1: 16 x 1 x 8, q = 128.
    {.format = kBytes16, .samples = 8, .of_1 = 128, .of_64 = 128, .of_65 = 128, .of_100 = 128},
    // 103, plane 0: k = 8, a = 8: 1 x 8 x 8, q = 64.
    {.format = 103, .samples = 8, .of_1 = 64, .of_64 = 64, .of_65 = 128, .of_100 = 128},

    // q is no power of two: the mask keeps only some bits.
    // k = 12, a = 16: 4 x 16 x 3, q = 192, -192 = ...FF40. 1 + 191 = 0xC0 -> 0x40,
    // 64 + 191 = 0xFF -> 0x40, 65 + 191 = 0x100 -> 0x100, 100 + 191 = 0x123 -> 0x100.
    {.format = kBytes4, .samples = 3, .of_1 = 64, .of_64 = 64, .of_65 = 256, .of_100 = 256},
    // k = 20, a = 16: 4 x 16 x 5, q = 320, -320 = ...FEC0. 1 + 319 = 0x140 -> 0x40,
    // 64 + 319 = 0x17F -> 0x40, 65 + 319 = 0x180 -> 0x80, 100 + 319 = 0x1A3 -> 0x80.
    {.format = kBytes4, .samples = 5, .of_1 = 64, .of_64 = 64, .of_65 = 128, .of_100 = 128},

    // k = 0, gcd(64, 0) = 64, a = 1: bytes x 1 x 0, q = 0 leaves the width.
    {.format = kBytes4, .samples = 0, .of_1 = 1, .of_64 = 64, .of_65 = 65, .of_100 = 100},
    {.format = kBytes1, .samples = 0, .of_1 = 1, .of_64 = 64, .of_65 = 65, .of_100 = 100},

    // Blocks of 8 bytes. k = 16, a = 4, q = 8 x 4 = 32.
    {.format = kBc1, .samples = 2, .of_1 = 32, .of_64 = 64, .of_65 = 96, .of_100 = 128},
    // k = 24, a = 2 (64 / 24 truncated), q = 16.
    {.format = kBc1, .samples = 3, .of_1 = 16, .of_64 = 64, .of_65 = 80, .of_100 = 112},
    // k = 32, a = 2, q = 16.
    {.format = kBc1, .samples = 4, .of_1 = 16, .of_64 = 64, .of_65 = 80, .of_100 = 112},
    // k = 40, a = 1 (64 / 40 truncated), q = 8.
    {.format = kBc1, .samples = 5, .of_1 = 8, .of_64 = 64, .of_65 = 72, .of_100 = 104},
    // k = 64, a = 1, q = 8.
    {.format = kBc1, .samples = 8, .of_1 = 8, .of_64 = 64, .of_65 = 72, .of_100 = 104},
    // Blocks of 16 bytes. k = 32, a = 2, q = 16 x 2 = 32.
    {.format = kBc7, .samples = 2, .of_1 = 32, .of_64 = 64, .of_65 = 96, .of_100 = 128},
    // k = 64, a = 1, q = 16.
    {.format = kBc7, .samples = 4, .of_1 = 16, .of_64 = 64, .of_65 = 80, .of_100 = 112},
    // k = 128, a at least 1, q = 16.
    {.format = kBc7, .samples = 8, .of_1 = 16, .of_64 = 64, .of_65 = 80, .of_100 = 112},
    // The same for blocks of 12 x 12: multiplied by the block width and divided by it.
    {.format = 186, .samples = 8, .of_1 = 16, .of_64 = 64, .of_65 = 80, .of_100 = 112},

    // Packed elements of 2 bytes. k = 16, a = 4, q = 2 x 4 = 8.
    {.format = 107, .samples = 8, .of_1 = 8, .of_64 = 64, .of_65 = 72, .of_100 = 104},
    {.format = 68, .samples = 8, .of_1 = 8, .of_64 = 64, .of_65 = 72, .of_100 = 104},
    {.format = 617, .samples = 8, .of_1 = 8, .of_64 = 64, .of_65 = 72, .of_100 = 104},
    // k = 4, a = 16, q = 32.
    {.format = 68, .samples = 2, .of_1 = 32, .of_64 = 64, .of_65 = 96, .of_100 = 128},
    // Packed elements of 3 texels. 4 bytes: k = 8, a = 8, q = 32.
    {.format = 654, .samples = 2, .of_1 = 32, .of_64 = 64, .of_65 = 96, .of_100 = 128},
    // 8 bytes: k = 32, a = 2, q = 16.
    {.format = 656, .samples = 4, .of_1 = 16, .of_64 = 64, .of_65 = 80, .of_100 = 112},
};

Request unpadded(int32_t width_el, const SampleRow& row) {
  return {.width_el = width_el,
          .format = row.format,
          .samples = row.samples,
          .tiling_mode = kLinear,
          .min_padded_row_bytes = kNeverPad};
}

TEST(Linear, SamplesChangeTheAlignmentOnFamilies6And7) {
  for (const uint32_t family : kFamilies6And7) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const SampleRow& row : kSamples) {
      const auto expect_width = [&](int32_t width_el, uint32_t expected_el) {
        const Request r = unpadded(width_el, row);
        EXPECT_NUMBER(full(gpu, r).width_el, expected_el) << describe(family, r);
      };
      expect_width(1, row.of_1);
      expect_width(64, row.of_64);
      expect_width(65, row.of_65);
      expect_width(100, row.of_100);
    }
  }
}

TEST(Linear, SamplesHaveNoEffectOnFamily5) {
  const harness::Gpu gpu(harness::full_chip(5).chip_id);
  for (const SampleRow& row : kSamples) {
    // The next multiple of 64, whatever the row's samples.
    EXPECT_NUMBER(full(gpu, unpadded(1, row)).width_el, 64) << describe(5, unpadded(1, row));
    EXPECT_NUMBER(full(gpu, unpadded(65, row)).width_el, 128) << describe(5, unpadded(65, row));
  }
}

struct OddSize {
  uint32_t multiple_el;
  std::vector<uint32_t> formats;
};

// Rows of e bytes an element are whole units of (bytes of the substitute) x e x 64 bytes, which are
// substitute x 64 elements.
const OddSize kOddSizes[] = {
    // 3 bytes, for which 4 stand: units of 768 bytes = 256 elements.
    {.multiple_el = 256, .formats = {508, 510, 513, 516, 521, 549, 623, 624}},
    // 6 bytes, for which 8 stand: units of 3072 bytes = 512 elements.
    {.multiple_el = 512, .formats = {523, 526, 529, 558, 563}},
    // 12 bytes, for which 16 stand: units of 12288 bytes = 1024 elements.
    {.multiple_el = 1024, .formats = {5, 6, 7, 8, 556, 561, 566}},
};

TEST(Linear, OddElementSizesRoundToTheirOwnRowsWhateverTheLimit) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    const auto expect_width = [&](int32_t width_el, uint32_t format, uint32_t expected_el) {
      // Rows of this rule are neither padded nor limited.
      for (const int32_t limit_bytes : {kNeverPad, 0, kAlwaysPad, INT_MIN}) {
        const Request r{.width_el = width_el,
                        .format = format,
                        .tiling_mode = kLinear,
                        .min_padded_row_bytes = limit_bytes};
        EXPECT_NUMBER(full(gpu, r).width_el, expected_el) << describe(family, r);
      }
    };
    for (const OddSize& size : kOddSizes) {
      const uint32_t unit_el = size.multiple_el;
      const auto one_unit = static_cast<int32_t>(unit_el);
      for (const uint32_t format : size.formats) {
        // Of no elements family 5 makes 64 first, the others none.
        expect_width(0, format, family == 5 ? unit_el : 0);
        expect_width(1, format, unit_el);
        expect_width(one_unit, format, unit_el);
        expect_width(one_unit + 1, format, 2 * unit_el);
        // 2048, 4096 and 16384 are whole units of each size; one more element is one more unit.
        expect_width(2048, format, 2048);
        expect_width(4097, format, 4096 + unit_el);
        expect_width(16385, format, 16384 + unit_el);
      }
    }
  }
}

struct LimitRow {
  uint32_t format;
  int32_t width_el;
  uint32_t unpadded_el;
  uint32_t padded_el;
};

// Widths that become rows of 2048 bytes, which the padding makes 3072.
constexpr int32_t kLimitRowBytes = 2048;
constexpr LimitRow kLimits[] = {
    // 2048 x 1 byte; 3072 x 1.
    {.format = kBytes1, .width_el = 2048, .unpadded_el = 2048, .padded_el = 3072},
    // 1000 -> 1024 (64s), x 2 bytes; 1536 x 2.
    {.format = kBytes2, .width_el = 1000, .unpadded_el = 1024, .padded_el = 1536},
    // 449 -> 512, x 4 bytes; 768 x 4.
    {.format = kBytes4, .width_el = 449, .unpadded_el = 512, .padded_el = 768},
    // 256 x 8 bytes; 384 x 8.
    {.format = kBytes8, .width_el = 256, .unpadded_el = 256, .padded_el = 384},
    // 65 -> 128, x 16 bytes; 192 x 16.
    {.format = kBytes16, .width_el = 65, .unpadded_el = 128, .padded_el = 192},
};

TEST(Linear, RowsUpToTheLimitAreNotPadded) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const LimitRow& row : kLimits) {
      const auto expect_width = [&](int32_t limit_bytes, uint32_t expected_el) {
        const Request r{.width_el = row.width_el,
                        .format = row.format,
                        .tiling_mode = kLinear,
                        .min_padded_row_bytes = limit_bytes};
        EXPECT_NUMBER(full(gpu, r).width_el, expected_el) << describe(family, r);
      };
      expect_width(kLimitRowBytes + 1, row.unpadded_el);
      expect_width(kLimitRowBytes, row.unpadded_el);
      expect_width(INT_MAX, row.unpadded_el);
      expect_width(kLimitRowBytes - 1, row.padded_el);
      expect_width(512, row.padded_el);
      expect_width(0, row.padded_el);
      // Compared signed: these are below every row.
      expect_width(-1, row.padded_el);
      expect_width(INT_MIN, row.padded_el);
    }
  }
}

Request always_padded(int32_t width_el, uint32_t format, uint32_t plane = 0) {
  return {.width_el = width_el,
          .plane = plane,
          .format = format,
          .tiling_mode = kLinear,
          .min_padded_row_bytes = kAlwaysPad};
}

TEST(Linear, VideoAndBlockFormatsAndTheFourCCAreNeverPadded) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t format : {100u, 103u, 104u, 106u, 107u, 111u, 114u, 614u, 615u, 625u,
                                  654u, 655u, 656u, 657u, 660u, 661u, 664u, 669u, 679u, 709u,
                                  712u, 721u, kBc1, kBc7, 133u, 186u, 568u, 626u, 681u, kFourCC}) {
      // The padding makes 2048 elements more for every element size, and cuts 16448 to 16384.
      const Request whole = always_padded(2048, format);
      EXPECT_NUMBER(full(gpu, whole).width_el, 2048) << describe(family, whole);
      const Request long_row = always_padded(16385, format);
      EXPECT_NUMBER(full(gpu, long_row).width_el, 16448) << describe(family, long_row);
    }
  }
}

TEST(Linear, NeighboursInKindOfTheNeverPaddedArePadded) {
  struct Row {
    uint32_t format;
    int32_t width_el;
    uint32_t padded_el;
  };
  constexpr Row kRows[] = {
      // Packed without the video bit: 1024 x 2 = 2048 bytes -> 3072 = 1536 x 2.
      {.format = 68, .width_el = 1024, .padded_el = 1536},
      // Numbers without a record: 2048 x 1 -> 3072 x 1.
      {.format = 0, .width_el = 2048, .padded_el = 3072},
      {.format = 670, .width_el = 2048, .padded_el = 3072},
      {.format = kNoRecord, .width_el = 2048, .padded_el = 3072},
      {.format = 0xFFFFFFFF, .width_el = 2048, .padded_el = 3072},
  };
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const Row& row : kRows) {
      const Request r = always_padded(row.width_el, row.format);
      EXPECT_NUMBER(full(gpu, r).width_el, row.padded_el) << describe(family, r);
    }
  }
}

TEST(Linear, PaddingGoesByThePlanesElementSize) {
  struct Row {
    uint32_t format;
    uint32_t plane;
    int32_t width_el;
    uint32_t padded_el;
  };
  // Whole multiples of 2048 bytes grow by 1024 bytes.
  constexpr Row kRows[] = {
      // Depth, 4 bytes: 512 x 4 = 2048 -> 3072 = 768 x 4, and 256 x 4 = 1024 is no multiple.
      {.format = 20, .plane = 0, .width_el = 512, .padded_el = 768},
      {.format = 20, .plane = 0, .width_el = 256, .padded_el = 256},
      {.format = 551, .plane = 0, .width_el = 512, .padded_el = 768},
      {.format = 551, .plane = 0, .width_el = 256, .padded_el = 256},
      // Stencil, 1 byte: 512 x 1 is no multiple, and 2048 x 1 -> 3072 x 1.
      {.format = 20, .plane = 1, .width_el = 512, .padded_el = 512},
      {.format = 20, .plane = 1, .width_el = 2048, .padded_el = 3072},
      {.format = 551, .plane = 1, .width_el = 512, .padded_el = 512},
      {.format = 551, .plane = 1, .width_el = 2048, .padded_el = 3072},
      // One plane of 8 bytes: 256 x 8 = 2048 -> 3072 = 384 x 8.
      {.format = 21, .plane = 0, .width_el = 256, .padded_el = 384},
  };
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const Row& row : kRows) {
      const Request r = always_padded(row.width_el, row.format, row.plane);
      EXPECT_NUMBER(full(gpu, r).width_el, row.padded_el) << describe(family, r);
    }
  }
}

struct MissingPlaneRow {
  uint32_t format;
  uint32_t plane;
  int32_t width_el;
  uint32_t expected_el;  // the next multiple of 64
};

// Elements of 0 bytes: a row of 0 bytes is longer than a threshold of -1, but it is neither padded
// nor limited.
constexpr MissingPlaneRow kMissingPlanes[] = {
    {.format = kBytes4, .plane = 1, .width_el = 512, .expected_el = 512},
    {.format = kBytes3, .plane = 2, .width_el = 100, .expected_el = 128},
    {.format = kNoRecord, .plane = 1, .width_el = 2048, .expected_el = 2048},
    {.format = kBytes4, .plane = 0xFFFFFFFF, .width_el = 20000, .expected_el = 20032},  // 313 x 64
};

TEST(Linear, PlanesThatAFormatLacksKeepTheirWidth) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const MissingPlaneRow& row : kMissingPlanes) {
      for (const int32_t limit_bytes : {kNeverPad, 0, kAlwaysPad}) {
        Request r = always_padded(row.width_el, row.format, row.plane);
        r.min_padded_row_bytes = limit_bytes;
        EXPECT_NUMBER(full(gpu, r).width_el, row.expected_el) << describe(family, r);
      }
    }
  }
  const harness::Gpu gpu(chip_without_pitch_limit().chip_id);
  EXPECT_NUMBER(full(gpu, always_padded(20000, kBytes4, 1)).width_el, 20032);
}

TEST(Linear, PaddedWidthsStopAtThePitchLimit) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    const auto expect_width = [&](int32_t width_el, uint32_t format, int32_t limit_bytes,
                                  uint32_t expected_el) {
      const Request r{.width_el = width_el,
                      .format = format,
                      .tiling_mode = kLinear,
                      .min_padded_row_bytes = limit_bytes};
      EXPECT_NUMBER(full(gpu, r).width_el, expected_el) << describe(family, r);
    };
    for (const uint32_t format : {kBytes1, kBytes2, kBytes4, kBytes8, kBytes16}) {
      expect_width(16384, format, 0, 16384);  // a multiple of 2048 elements, which stays
      expect_width(16385, format, 0, 16384);  // 16448, cut
      expect_width(20000, format, 0, 16384);  // 20032, cut
      expect_width(16385, format, kNeverPad, 16448);
    }
    // 15872 = 14336 + 1536; 1536 x 4 = 3 x 2048 bytes, so 14336 + 1536 + 256: still below.
    expect_width(15872, kBytes4, 0, 16128);
    // 16383 -> 16384 (64s), a multiple of 2048 elements.
    expect_width(16383, kBytes4, 0, 16384);
  }
}

TEST(Linear, PaddedWidthsBecome0OnModelsWithoutAPitchLimit) {
  const harness::Gpu gpu(chip_without_pitch_limit().chip_id);
  const auto expect_width = [&](int32_t width_el, uint32_t format, int32_t limit_bytes,
                                uint32_t expected_el) {
    const Request r{.width_el = width_el,
                    .format = format,
                    .tiling_mode = kLinear,
                    .min_padded_row_bytes = limit_bytes};
    EXPECT_NUMBER(full(gpu, r).width_el, expected_el) << describe(7, r);
  };
  for (const uint32_t format : {kBytes1, kBytes2, kBytes4, kBytes8, kBytes16}) {
    // The smaller of the width and the model's limit of 0.
    for (const int32_t width_el : {1, 64, 2048, 2049, 4096, 16385}) {
      expect_width(width_el, format, 0, 0);
    }
    expect_width(0, format, kAlwaysPad, 0);
    expect_width(65, format, kNeverPad, 128);  // not padded: 65 -> 128 (64s)
  }
  expect_width(100, kBytes3, 0, 256);  // odd sizes know no limit: 256s
  expect_width(100, kBc1, 0, 128);     // blocks are never padded: 64s
  // Nor are tiled rows: 100 -> 2 tiles of 64.
  EXPECT_NUMBER(full(gpu, {.width_el = 100}).width_el, 128);
}

TEST(Linear, RowBytesWrapAndCompareSigned) {
  struct Row {
    int32_t width_el;
    int32_t limit_bytes;
    uint32_t expected_el;
  };
  constexpr Row kRows[] = {
      // 0x20000000 x 4 = 0x80000000 = -2147483648: above no limit, not even the smallest.
      {.width_el = 0x20000000, .limit_bytes = 0, .expected_el = 0x20000000},
      {.width_el = 0x20000000, .limit_bytes = INT_MIN, .expected_el = 0x20000000},
      // 0x10000000 x 4 = 0x40000000 is above 0; a multiple of 2048, cut.
      {.width_el = 0x10000000, .limit_bytes = 0, .expected_el = 16384},
  };
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const Row& row : kRows) {
      const Request r{.width_el = row.width_el,
                      .tiling_mode = kLinear,
                      .min_padded_row_bytes = row.limit_bytes};
      EXPECT_NUMBER(full(gpu, r).width_el, row.expected_el) << describe(family, r);
    }
    // 0x7FFFFFFF -> 0x80000000 (64s); x 4 = 0, above -1: to be padded, but it is a multiple of 2048
    // elements and stays. Families 5 and 6 take the unsigned smaller of it and 16384, family 7 the signed one.
    const Request widest = always_padded(INT_MAX, kBytes4);
    EXPECT_NUMBER(full(gpu, widest).width_el, family == 7 ? 0x80000000 : 16384)
        << describe(family, widest);
  }
  const harness::Gpu gpu(chip_without_pitch_limit().chip_id);
  EXPECT_NUMBER(full(gpu, always_padded(INT_MAX, kBytes4)).width_el, 0x80000000);
}

TEST(LinearDeathTest, BlocksOfNoSamplesFaultOnFamilies6And7) {
  for (const uint32_t family : kFamilies6And7) {
    const uint32_t chip = harness::full_chip(family).chip_id;
    for (const uint32_t format : {kBc1, 107u, 654u}) {  // 64 / (bytes x 0)
      EXPECT_DIVISION_FAULT({
        const harness::Gpu gpu(chip);
        full(gpu, {.width_el = 64, .format = format, .samples = 0, .tiling_mode = kLinear});
      }) << family
         << ": " << format;
    }
  }
}

}  // namespace
}  // namespace align_test
