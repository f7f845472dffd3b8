// The pitch padding of linear rows: widths whose rows would repeat in memory with a bad period
// grow by half a span.
#include <numeric>

#include "tests/align/align_calls.h"

namespace align_test {
namespace {

constexpr uint32_t kFormats[] = {kBytes1, kBytes2, kBytes4, kBytes8, kBytes16};

uint32_t padded(const harness::Gpu& gpu, uint32_t format, uint32_t width, uint32_t selector) {
  return full(gpu, {.width = static_cast<int32_t>(width),
                    .format = format,
                    .mode = kLinear,
                    .selector = selector,
                    .min_padded = kAlwaysPad})
      .width;
}

// 4-byte elements: a step of 256 elements, a span of 512. A width of r = width mod 512 elements has
// the period 2048 / gcd(2048, 4 r): 8 for odd multiples of 64, 4 for 128 and 384, 2 for 256, 1 for
// 512. Periods 2 and 4 are taken as they are; a period of 8 stays one whatever is added, so that
// width is kept; a period of 1 becomes one of 2 with the next step. (Up to 16 is good for selector
// 2, which keeps the same widths.)
constexpr uint32_t kOf4Bytes[] = {
    0,    64,   128,  192,  256,  320,  384,  448,  //
    768,                                            // 512
    576,  640,  704,  768,  832,  896,  960,        //
    1280,                                           // 1024
    1088, 1152, 1216, 1280, 1344, 1408, 1472,       //
    1792,                                           // 1536
    1600, 1664, 1728, 1792, 1856, 1920, 1984,       //
    2304,                                           // 2048
};
static_assert(std::size(kOf4Bytes) == 33);

TEST(PitchPadding, WidthsOf4ByteElements) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (uint32_t i = 1; i < std::size(kOf4Bytes); ++i) {
      for (const uint32_t selector : {0u, 1u, 2u, 3u, 0xFFFFFFFFu}) {
        for (const uint32_t width : {64 * i - 63, 64 * i - 1, 64 * i}) {
          EXPECT_EQ(padded(gpu, kBytes4, width, selector), kOf4Bytes[i])
              << family << ": " << width << ", selector " << selector;
        }
      }
    }
    // An empty row is 64 wide on family 5 before it is padded.
    EXPECT_EQ(padded(gpu, kBytes4, 0, 1), family == 5 ? 64u : 0u);
    EXPECT_EQ(padded(gpu, kBytes4, 0, 2), family == 5 ? 64u : 0u);
  }
}

// The search as it is defined, for a row of `width` elements of `bytes` bytes.
uint32_t searched(uint32_t width, uint32_t bytes, bool second_half) {
  const uint32_t step = 1024 / bytes;
  const uint32_t span = 2048 / bytes;
  if (width == 0) return 0;
  for (uint32_t q = width; q - width <= 2048; q += step) {
    const uint32_t r = q % span == 0 ? span : q % span;
    const uint32_t b = r * bytes;
    uint32_t n = 1;
    while (n * 2048 % b != 0) ++n;
    const uint32_t period = n * 2048 / b;
    if (period != 1 && (second_half ? period < 17 : period <= 4)) return q;
  }
  return width;
}

TEST(PitchPadding, TheSearchAgreesWithTheWorkedTable) {
  for (uint32_t i = 0; i < std::size(kOf4Bytes); ++i) {
    EXPECT_EQ(searched(64 * i, 4, false), kOf4Bytes[i]) << 64 * i;
    EXPECT_EQ(searched(64 * i, 4, true), kOf4Bytes[i]) << 64 * i;
  }
}

TEST(PitchPadding, WidthsOfEveryElementSizeAreThoseOfTheSearch) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (uint32_t c = 0; c < std::size(kFormats); ++c) {
      for (uint32_t width = 64; width <= 2048; width += 64) {
        for (const uint32_t selector : {1u, 2u}) {
          EXPECT_EQ(padded(gpu, kFormats[c], width, selector),
                    searched(width, 1U << c, selector == 2))
              << family << ": " << (1U << c) << " bytes, " << width << ", selector " << selector;
        }
      }
    }
  }
}

struct WorkedRow {
  uint32_t format;
  uint32_t width;
  uint32_t expected;
};

// Worked out as above: whole multiples of 2048 bytes grow by 1024 bytes, all others stay.
constexpr WorkedRow kWorked[] = {
    {kBytes1, 64, 64},    {kBytes1, 1024, 1024}, {kBytes1, 1984, 1984},  {kBytes1, 2048, 3072},
    {kBytes2, 512, 512},  {kBytes2, 1024, 1536}, {kBytes2, 1088, 1088},  {kBytes2, 2048, 2560},
    {kBytes8, 64, 64},    {kBytes8, 128, 128},   {kBytes8, 256, 384},    {kBytes8, 320, 320},
    {kBytes8, 512, 640},  {kBytes8, 2048, 2176}, {kBytes16, 64, 64},     {kBytes16, 128, 192},
    {kBytes16, 192, 192}, {kBytes16, 256, 320},  {kBytes16, 2048, 2112},
};

TEST(PitchPadding, WholeMultiplesOf2048BytesGrowBy1024Bytes) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const WorkedRow& row : kWorked) {
      EXPECT_EQ(padded(gpu, row.format, row.width, 1), row.expected)
          << family << ": " << row.format << ", " << row.width;
    }
  }
}

// Beyond 2048 elements: whole multiples of 2048 stay, the rest of any other width is padded.
constexpr WorkedRow kWide[] = {
    {kBytes4, 2049, 2112},    // 2048 + that of 64
    {kBytes4, 2112, 2112},    //
    {kBytes4, 2560, 2816},    // 2048 + that of 512, 768
    {kBytes4, 2561, 2624},    // 2048 + 576
    {kBytes4, 3584, 3840},    // 2048 + that of 1536
    {kBytes4, 4033, 4096},    // rounded to 4096 first, which stays
    {kBytes4, 4095, 4096},    //
    {kBytes4, 4096, 4096},    // unlike 2048, which becomes 2304
    {kBytes4, 4097, 4160},    //
    {kBytes4, 4608, 4864},    // 4096 + 768
    {kBytes4, 6144, 6144},    //
    {kBytes4, 8192, 8192},    //
    {kBytes4, 16128, 16128},  // 14336 + 1792, kept
    {kBytes4, 16384, 16384},  //
    {kBytes4, 16385, 16384},  // 16384 + 64, cut
    {kBytes4, 0x7FFFF800,
     16384},                 // a multiple of 2048; x 4 wraps to -8192, below no limit of -8193
    {kBytes1, 4097, 4160},   //
    {kBytes2, 3072, 3584},   // 2048 + that of 1024, 1536
    {kBytes8, 2304, 2432},   // 2048 + that of 256, 384
    {kBytes16, 2176, 2240},  // 2048 + that of 128, 192
    {kBytes16, 4096, 4096},
};

TEST(PitchPadding, WidthsBeyond2048) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const WorkedRow& row : kWide) {
      for (const uint32_t selector : {1u, 2u}) {
        const Request r{.width = static_cast<int32_t>(row.width),
                        .format = row.format,
                        .mode = kLinear,
                        .selector = selector,
                        .min_padded = -8193};
        EXPECT_EQ(full(gpu, r).width, row.expected) << family << ": " << describe(r);
      }
    }
  }
}

}  // namespace
}  // namespace align_test
