// The smallest size that the hardware takes.
#include "tests/align/align_calls.h"

namespace align_test {
namespace {

// ---- Tiled --------------------------------------------------------------------------------------

struct TiledRow {
  uint32_t format;
  uint32_t samples = 1;
  int32_t width_el;
  uint32_t expected_el;
};

// Family 5, tiled: rows of whole 256 bytes (512 for 64-byte elements), and no multiple of 64
// elements beyond that. An element's bytes are the format's times the samples.
constexpr TiledRow kFamily5Tiled[] = {
    {.format = kBytes8, .width_el = 1, .expected_el = 32},   // 8 -> 256 bytes; fully aligned 64
    {.format = kBytes8, .width_el = 32, .expected_el = 32},  // 256 bytes stay
    {.format = kBytes8, .width_el = 33, .expected_el = 64},  // 264 -> 512
    {.format = kBytes8, .width_el = 65, .expected_el = 96},  // 520 -> 768; fully aligned 128
    {.format = kBytes8, .width_el = 0, .expected_el = 0},    // fully aligned 64
    {.format = kBytes4, .width_el = 1, .expected_el = 64},   // 4 -> 256
    {.format = kBytes4, .width_el = 0, .expected_el = 0},
    {.format = kBytes4, .width_el = 65, .expected_el = 128},               // 260 -> 512
    {.format = kBytes16, .width_el = 1, .expected_el = 16},                // 16 -> 256
    {.format = kBytes16, .width_el = 17, .expected_el = 32},               // 272 -> 512
    {.format = kBytes8, .samples = 4, .width_el = 1, .expected_el = 8},    // 32 -> 256
    {.format = kBytes8, .samples = 4, .width_el = 9, .expected_el = 16},   // 9 x 32 = 288 -> 512
    {.format = kBytes8, .samples = 8, .width_el = 1, .expected_el = 8},    // 64 -> 512
    {.format = kBytes16, .samples = 4, .width_el = 9, .expected_el = 16},  // 9 x 64 = 576 -> 1024
    // Elements of other sizes stay as they are: 128, 12, 6 and 5 bytes.
    {.format = kBytes16, .samples = 8, .width_el = 9, .expected_el = 9},
    {.format = kBytes12, .width_el = 9, .expected_el = 9},
    {.format = kBytes6, .width_el = 100, .expected_el = 100},
    {.format = kBytes1, .samples = 5, .width_el = 9, .expected_el = 9},
    {.format = kBc1, .width_el = 25, .expected_el = 32},  // 25 blocks x 8 = 200 -> 256
    {.format = 654, .width_el = 65, .expected_el = 128},  // 65 x 4 = 260 -> 512
    // Below 4 bytes the row is made of whole 64 elements first, and of 64 for none.
    {.format = kBytes1, .width_el = 0, .expected_el = 128},       // 64 -> 128 bytes
    {.format = kBytes1, .width_el = 1, .expected_el = 128},       // 64 -> 128
    {.format = kBytes1, .width_el = 129, .expected_el = 256},     // 192 -> 256
    {.format = kBytes2, .width_el = 1, .expected_el = 128},       // 64 x 2 = 128 -> 256
    {.format = kBytes2Tall, .width_el = 1, .expected_el = 64},    // 64 x 2 = 128 stays
    {.format = kBytes2Tall, .width_el = 65, .expected_el = 128},  // 128 x 2 = 256 stays
    {.format = kBytes3, .width_el = 1, .expected_el = 64},        // 3-byte elements: 64 stay
    {.format = kBytes3, .width_el = 65, .expected_el = 128},      // 128 stay
    {.format = 660, .width_el = 1, .expected_el = 256},           // 64 -> 256: its own unit
    {.format = 661, .width_el = 257, .expected_el = 512},         // 320 -> 512
    {.format = kFourCC, .width_el = 1, .expected_el = 128},       // 64 -> 128
};

TEST(Minimal, TiledRowsOfFamily5AreWhole256Bytes) {
  const harness::Gpu gpu(harness::full_chip(5).chip_id);
  for (const TiledRow& row : kFamily5Tiled) {
    for (const uint32_t allowed : {0u, 1u}) {
      // The divisor is not looked at, not even one of 0.
      const Request r{.width_el = row.width_el,
                      .format = row.format,
                      .samples = row.samples,
                      .divisor = 0,
                      .want_extra_padding = 1,
                      .tiling_allowed = allowed};
      EXPECT_NUMBER(minimal(gpu, r).width_el, row.expected_el) << describe(5, r);
    }
  }
}

TEST(Minimal, TiledHeightsOfFamily5AreFullyAligned) {
  const harness::Gpu gpu(harness::full_chip(5).chip_id);
  struct Row {
    uint32_t format;
    int32_t height_rows;
    uint32_t expected_rows;
  };
  constexpr Row kRows[] = {
      {.format = kBytes8, .height_rows = 17, .expected_rows = 32},      // 16s
      {.format = kBytes1, .height_rows = 17, .expected_rows = 32},      // 32s
      {.format = kBytes2Tall, .height_rows = 33, .expected_rows = 64},  // 32s
      {.format = 660, .height_rows = 17, .expected_rows = 32},          // 16s
      {.format = kBytes4, .height_rows = 0, .expected_rows = 0},
  };
  for (const Row& row : kRows) {
    const Request r{.height_rows = row.height_rows, .format = row.format};
    EXPECT_NUMBER(minimal(gpu, r).height_rows, row.expected_rows) << describe(5, r);
  }
}

struct TiledSizeRow {
  uint32_t format;
  int32_t width_el;
  int32_t height_rows;
  Size expected;
};

constexpr TiledSizeRow kFamilies6And7Tiled[] = {
    // 8 bytes: tiles of 32 x 16.
    {.format = kBytes8, .width_el = 1, .height_rows = 1, .expected = {32, 16}},
    {.format = kBytes8, .width_el = 65, .height_rows = 17, .expected = {96, 32}},
    // 1 byte: tiles of 128 x 32.
    {.format = kBytes1, .width_el = 129, .height_rows = 33, .expected = {256, 64}},
    // Blocks of 8 bytes: tiles of 32 x 16 blocks.
    {.format = kBc1, .width_el = 33, .height_rows = 17, .expected = {64, 32}},
    // 4 bytes: tiles of 64 x 16, and one for none.
    {.format = kBytes4, .width_el = 0, .height_rows = 0, .expected = {64, 16}},
};

TEST(Minimal, TiledSurfacesOfFamilies6And7AreFullyAligned) {
  for (const uint32_t family : kFamilies6And7) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const TiledSizeRow& row : kFamilies6And7Tiled) {
      for (const uint32_t allowed : {0u, 1u, 2u}) {
        const Request r{.width_el = row.width_el,
                        .height_rows = row.height_rows,
                        .format = row.format,
                        .divisor = 0,
                        .tiling_allowed = allowed};
        EXPECT_NUMBERS(minimal(gpu, r), row.expected) << describe(family, r);
      }
    }
  }
}

// ---- Linear -------------------------------------------------------------------------------------

struct LinearRow {
  uint32_t format;
  uint32_t samples = 1;
  ByFamily<uint32_t> not_allowed;  // what widths are multiples of when tiling is not allowed
  ByFamily<uint32_t> allowed;      // and when it is
};

// The alignments in bytes, which a divisor of 1 takes as elements. With k = bytes x samples, and
// a = 64 / gcd(64, k) or, tiling allowed, the tile's width for k:
//   any other format             bytes x a x samples, up to a multiple of 64
//   block-compressed and packed  bytes x a, where a without tiling is 64 / k but at least 1
// Comments: without tiling; with it.
constexpr LinearRow kLinearRows[] = {
    // 1 x 64; 1 x 128
    {.format = kBytes1, .not_allowed = on_all(64), .allowed = on_all(128)},
    // 2 x 32; 2 x 128, tall 2 x 64
    {.format = kBytes2, .not_allowed = on_all(64), .allowed = on_all(256)},
    {.format = kBytes2Tall, .not_allowed = on_all(64), .allowed = on_all(128)},
    // Tall on families 6 and 7 only.
    {.format = 48, .not_allowed = on_all(64), .allowed = {.on_5 = 256, .on_6_and_7 = 128}},
    // 4 x 16; 4 x 64
    {.format = kBytes4, .not_allowed = on_all(64), .allowed = on_all(256)},
    // 8 x 8; 8 x 32
    {.format = kBytes8, .not_allowed = on_all(64), .allowed = on_all(256)},
    // 16 x 4; 16 x 16
    {.format = kBytes16, .not_allowed = on_all(64), .allowed = on_all(256)},
    // k = 8: 4 x 8 x 2; 4 x 32 x 2
    {.format = kBytes4, .samples = 2, .not_allowed = on_all(64), .allowed = on_all(256)},
    // k = 32: 4 x 2 x 8; 4 x 8 x 8
    {.format = kBytes4, .samples = 8, .not_allowed = on_all(64), .allowed = on_all(256)},
    // k = 64: 16 x 1 x 4; 16 x 8 x 4
    {.format = kBytes16, .samples = 4, .not_allowed = on_all(64), .allowed = on_all(512)},
    // k = 128: 16 x 1 x 8; 16 x 64 x 8
    {.format = kBytes16, .samples = 8, .not_allowed = on_all(128), .allowed = on_all(8192)},
    // k = 2: 1 x 32 x 2; 1 x 64 x 2 where 506 is tall, on family 5, or else 1 x 128 x 2
    {.format = 506,
     .samples = 2,
     .not_allowed = on_all(64),
     .allowed = {.on_5 = 128, .on_6_and_7 = 256}},
    // 1 x 64; 1 x 128, and 1 x 256 for the formats with a tile of their own
    {.format = 103, .not_allowed = on_all(64), .allowed = on_all(128)},
    {.format = 660, .not_allowed = on_all(64), .allowed = on_all(256)},
    {.format = 661, .not_allowed = on_all(64), .allowed = on_all(256)},
    {.format = kFourCC, .not_allowed = on_all(64), .allowed = on_all(128)},
    {.format = kNoRecord, .not_allowed = on_all(64), .allowed = on_all(128)},
    // Blocks: 8 x 8; 8 x 32
    {.format = kBc1, .not_allowed = on_all(64), .allowed = on_all(256)},
    // 16 x 4; 16 x 16. Multiplied by the block width and divided by it.
    {.format = kBc7, .not_allowed = on_all(64), .allowed = on_all(256)},
    {.format = 186, .not_allowed = on_all(64), .allowed = on_all(256)},
    // k = 64: 8 x 1; 8 x 8
    {.format = kBc1, .samples = 8, .not_allowed = on_all(8), .allowed = on_all(64)},
    // k = 32: 16 x 2; 16 x 8
    {.format = kBc7, .samples = 2, .not_allowed = on_all(32), .allowed = on_all(128)},
    // Packed: 2 x 32; 2 x 128
    {.format = 107, .not_allowed = on_all(64), .allowed = on_all(256)},
    // k = 16: 2 x 4; 2 x 16
    {.format = 107, .samples = 8, .not_allowed = on_all(8), .allowed = on_all(32)},
    // 4 x 16; 4 x 64
    {.format = 654, .not_allowed = on_all(64), .allowed = on_all(256)},
    // 8 x 8; 8 x 32
    {.format = 656, .not_allowed = on_all(64), .allowed = on_all(256)},
    // Packed formats that family 5 treats as any other, k = 16: 2 x 4 x 8 and 2 x 4; 2 x 16 x 8 and
    // 2 x 16
    {.format = 68,
     .samples = 8,
     .not_allowed = {.on_5 = 64, .on_6_and_7 = 8},
     .allowed = {.on_5 = 256, .on_6_and_7 = 32}},
    {.format = 617,
     .samples = 8,
     .not_allowed = {.on_5 = 64, .on_6_and_7 = 8},
     .allowed = {.on_5 = 256, .on_6_and_7 = 32}},
};

uint32_t next_multiple(int32_t width_el, uint32_t of) {
  uint32_t multiple = 0;
  while (multiple < static_cast<uint32_t>(width_el)) multiple += of;
  return multiple;
}

TEST(Minimal, LinearWidthsMayLeaveRoomForTiling) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const LinearRow& row : kLinearRows) {
      const uint32_t no = row.not_allowed.of(family);
      const uint32_t yes = row.allowed.of(family);
      const auto expect_multiple = [&](uint32_t tiling_mode, uint32_t allowed, uint32_t of) {
        for (const int32_t width_el : {0, 1, 33, 65, 129, 300}) {
          const Request r{.width_el = width_el,
                          .height_rows = 5,
                          .format = row.format,
                          .samples = row.samples,
                          .tiling_mode = tiling_mode,
                          .min_padded_row_bytes = kNeverPad,
                          .tiling_allowed = allowed};
          EXPECT_NUMBERS(minimal(gpu, r), (Size{next_multiple(width_el, of), 5}))
              << describe(family, r);
        }
      };
      expect_multiple(kLinear, 0, no);
      expect_multiple(kLinear, 1, yes);
      // Any other value means yes to family 5 and no to the others.
      expect_multiple(kLinear, 2, family == 5 ? yes : no);
      expect_multiple(2, 2, family == 5 ? yes : no);
    }
  }
}

struct DivisorRow {
  uint32_t format;
  uint32_t tiling_allowed = 0;
  uint32_t divisor;
  int32_t width_el;
  uint32_t expected_el;
};

// q = alignment / divisor; a width w becomes (w + q - 1) & -q, and stays when q is 0.
constexpr DivisorRow kDivisors[] = {
    // 64 / 4 = 16
    {.format = kBytes4, .divisor = 4, .width_el = 1, .expected_el = 16},
    {.format = kBytes4, .divisor = 4, .width_el = 17, .expected_el = 32},
    // 256 / 4 = 64
    {.format = kBytes4, .tiling_allowed = 1, .divisor = 4, .width_el = 1, .expected_el = 64},
    {.format = kBytes4, .tiling_allowed = 1, .divisor = 4, .width_el = 65, .expected_el = 128},
    // 64 / 64 = 1, 64 / 65 = 0
    {.format = kBytes4, .divisor = 64, .width_el = 17, .expected_el = 17},
    {.format = kBytes4, .divisor = 65, .width_el = 17, .expected_el = 17},
    // 256 / 257 = 0, 256 / 256 = 1, and a divisor is unsigned: 0
    {.format = kBytes4, .tiling_allowed = 1, .divisor = 257, .width_el = 17, .expected_el = 17},
    {.format = kBytes4, .tiling_allowed = 1, .divisor = 256, .width_el = 17, .expected_el = 17},
    {.format = kBytes4,
     .tiling_allowed = 1,
     .divisor = 0x80000000,
     .width_el = 17,
     .expected_el = 17},
    // 64 / 3 = 21, -21 = ...EB: 100 + 20 = 0x78, 0x78 & 0xEB = 0x68
    {.format = kBytes4, .divisor = 3, .width_el = 100, .expected_el = 104},
    // 64 / 8 = 8, 256 / 8 = 32
    {.format = kBc1, .divisor = 8, .width_el = 1, .expected_el = 8},
    {.format = kBc1, .tiling_allowed = 1, .divisor = 8, .width_el = 1, .expected_el = 32},
    // 64 / 16 = 4, 256 / 16 = 16
    {.format = kBytes16, .divisor = 16, .width_el = 5, .expected_el = 8},
    {.format = kBytes16, .tiling_allowed = 1, .divisor = 16, .width_el = 5, .expected_el = 16},
    // 64 / 4 = 16, 256 / 4 = 64
    {.format = 654, .divisor = 4, .width_el = 17, .expected_el = 32},
    {.format = 654, .tiling_allowed = 1, .divisor = 4, .width_el = 17, .expected_el = 64},
    // 64 / 1
    {.format = kFourCC, .divisor = 1, .width_el = 65, .expected_el = 128},
};

TEST(Minimal, TheDivisorDividesTheLinearAlignment) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const DivisorRow& row : kDivisors) {
      const Request r{.width_el = row.width_el,
                      .format = row.format,
                      .tiling_mode = kLinear,
                      .min_padded_row_bytes = kNeverPad,
                      .divisor = row.divisor,
                      .tiling_allowed = row.tiling_allowed};
      EXPECT_NUMBER(minimal(gpu, r).width_el, row.expected_el) << describe(family, r);
    }
  }
}

struct PaddedRow {
  uint32_t format = kBytes4;
  int32_t width_el;
  uint32_t divisor = 1;
  int32_t limit_bytes = 0;
  uint32_t tiling_allowed = 0;
  uint32_t expected_el;
};

constexpr PaddedRow kPadded[] = {
    // Multiples of 64 / 4 = 16: 500 -> 512, 512 x 4 = 2048 bytes -> 3072 = 768 x 4.
    {.width_el = 500, .divisor = 4, .expected_el = 768},
    {.width_el = 500, .divisor = 4, .limit_bytes = 2048, .expected_el = 512},  // at most the limit
    {.width_el = 500, .divisor = 4, .limit_bytes = 2047, .expected_el = 768},
    // Multiples of 4 x 64 = 256: 257 -> 512, padded as above.
    {.width_el = 257, .tiling_allowed = 1, .expected_el = 768},
    // Multiples of 16: 16, padded to a whole step of 64.
    {.width_el = 1, .divisor = 4, .expected_el = 64},
    {.width_el = 0, .expected_el = 0},                             // 0 bytes are at most 0
    {.width_el = 0, .limit_bytes = kAlwaysPad, .expected_el = 0},  // 0 is a whole step
    // Multiples of 16: 20000 = 1250 x 16; cut where it is padded.
    {.width_el = 20000, .divisor = 4, .expected_el = 16384},
    {.width_el = 20000, .divisor = 4, .limit_bytes = kNeverPad, .expected_el = 20000},
    // 3-byte elements take the 4-byte ones' alignment, then rows of 768 bytes = 256 elements, which
    // are neither padded nor limited. 64 / 3 = 21: 100 -> 104 (as above) -> 256.
    {.format = kBytes3,
     .width_el = 100,
     .divisor = 3,
     .limit_bytes = kNeverPad,
     .expected_el = 256},
    {.format = kBytes3, .width_el = 2048, .expected_el = 2048},  // 8 x 256
    // 12-byte elements: 64 / 16 = 4: 1025 -> 1028, then rows of 1024 elements.
    {.format = kBytes12, .width_el = 1025, .divisor = 16, .expected_el = 2048},
    // Never padded: video, blocks, the four-character code. 2048 is 32 x 64.
    {.format = 103, .width_el = 2048, .limit_bytes = kAlwaysPad, .expected_el = 2048},
    {.format = 107, .width_el = 2048, .limit_bytes = kAlwaysPad, .expected_el = 2048},
    {.format = 654, .width_el = 2048, .limit_bytes = kAlwaysPad, .expected_el = 2048},
    {.format = 660, .width_el = 2048, .limit_bytes = kAlwaysPad, .expected_el = 2048},
    {.format = kBc1, .width_el = 2048, .limit_bytes = kAlwaysPad, .expected_el = 2048},
    {.format = kFourCC, .width_el = 2048, .limit_bytes = kAlwaysPad, .expected_el = 2048},
    // Packed without the video bit: 1024 x 2 = 2048 bytes -> 3072 = 1536 x 2.
    {.format = 68, .width_el = 1024, .expected_el = 1536},
    // 1 byte: 2048 -> 3072.
    {.format = kNoRecord, .width_el = 2048, .expected_el = 3072},
};

TEST(Minimal, LinearRowsArePaddedAsTheFullOnesAre) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const PaddedRow& row : kPadded) {
      const Request r{.width_el = row.width_el,
                      .format = row.format,
                      .tiling_mode = kLinear,
                      .min_padded_row_bytes = row.limit_bytes,
                      .divisor = row.divisor,
                      .tiling_allowed = row.tiling_allowed};
      EXPECT_NUMBER(minimal(gpu, r).width_el, row.expected_el) << describe(family, r);
    }
  }
  // 64, but at most the model's limit of 0.
  const harness::Gpu gpu(chip_without_pitch_limit().chip_id);
  EXPECT_NUMBER(minimal(gpu, {.tiling_mode = kLinear}).width_el, 0);
}

TEST(Minimal, UnalignedWidthsArePaddedFromTheStepAbove) {
  // A divisor of 64 leaves any width to the padding, which takes whole steps of 64 elements first.
  struct Row {
    int32_t width_el;
    uint32_t expected_el;
  };
  constexpr Row kRows[] = {
      {.width_el = 1, .expected_el = 64},
      {.width_el = 63, .expected_el = 64},
      {.width_el = 65, .expected_el = 128},
      // The entry of 512, a whole multiple of 2048 bytes: 768.
      {.width_el = 449, .expected_el = 768},
      {.width_el = 511, .expected_el = 768},
      {.width_el = 513, .expected_el = 576},
      // The entry of 2048: 2304.
      {.width_el = 1985, .expected_el = 2304},
      {.width_el = 2047, .expected_el = 2304},
      // Beyond 2048 the entry of the rest.
      {.width_el = 2049, .expected_el = 2112},    // 2048 + 64
      {.width_el = 2111, .expected_el = 2112},    // 2048 + 64
      {.width_el = 2113, .expected_el = 2176},    // 2048 + 128
      {.width_el = 4095, .expected_el = 4352},    // 2048 + 2304
      {.width_el = 4097, .expected_el = 4160},    // 4096 + 64
      {.width_el = 16383, .expected_el = 16384},  // 14336 + 2304 = 16640, cut
  };
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const Row& row : kRows) {
      const Request r{.width_el = row.width_el, .tiling_mode = kLinear, .divisor = 64};
      EXPECT_NUMBER(minimal(gpu, r).width_el, row.expected_el) << describe(family, r);
      if (family != 5) {
        EXPECT_NUMBER(fdm(gpu, r).width_el, row.expected_el) << describe(family, r);
      }
    }
  }
}

TEST(Minimal, NoSamplesLeaveTheLinearWidth) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t allowed : {0u, 1u}) {
      // bytes x a x 0: an alignment of 0.
      const Request r{.width_el = 101,
                      .samples = 0,
                      .tiling_mode = kLinear,
                      .min_padded_row_bytes = kNeverPad,
                      .tiling_allowed = allowed};
      EXPECT_NUMBER(minimal(gpu, r).width_el, 101) << describe(family, r);
    }
    // Blocks of no samples, allowed to be tiled: k = 0 has a tile of 64, and 8 x 64 = 512. (64 / 0
    // is not asked for.)
    const Request r{
        .width_el = 101, .format = kBc1, .samples = 0, .tiling_mode = kLinear, .tiling_allowed = 1};
    EXPECT_NUMBER(minimal(gpu, r).width_el, 512) << describe(family, r);
  }
}

void expect_fault(uint32_t family, const Request& r) {
  const uint32_t chip = harness::full_chip(family).chip_id;
  EXPECT_DIVISION_FAULT({
    const harness::Gpu gpu(chip);
    minimal(gpu, r);
  }) << describe(family, r);
}

TEST(MinimalDeathTest, DivisionsBy0Fault) {
  for (const uint32_t family : kFamilies) {
    for (const uint32_t allowed : {0u, 1u}) {
      expect_fault(family, {.tiling_mode = kLinear, .divisor = 0, .tiling_allowed = allowed});
    }
    for (const uint32_t format : {kBc1, 107u}) {  // 64 / (bytes x no samples)
      expect_fault(family, {.format = format, .samples = 0, .tiling_mode = kLinear});
    }
  }
  expect_fault(5, {.plane = 1});  // tiled elements of 0 bytes
}

}  // namespace
}  // namespace align_test
