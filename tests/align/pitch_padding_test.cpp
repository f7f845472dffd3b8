// The pitch padding of linear rows: widths whose rows would repeat in memory with a bad period
// grow by half a span.
#include <iterator>

#include "tests/align/align_calls.h"

namespace align_test {
namespace {

// Every element size that is padded, from 1 << 0 bytes on.
constexpr uint32_t kFormats[] = {kBytes1, kBytes2, kBytes4, kBytes8, kBytes16};

struct PaddedRow {
  int32_t width_el;
  uint32_t format = kBytes4;
  uint32_t selector = 1;
};

uint32_t padded_width(const harness::Gpu& gpu, const PaddedRow& row) {
  return full(gpu, {.width_el = row.width_el,
                    .format = row.format,
                    .tiling_mode = kLinear,
                    .selector = row.selector,
                    .min_padded_row_bytes = kAlwaysPad})
      .width_el;
}

std::string text_of(uint32_t family, const PaddedRow& row) {
  std::ostringstream text;
  text << "family " << family << ", " << row.width_el << " elements of format " << row.format
       << ", selector " << row.selector;
  return text.str();
}

// What widths of 0, 64, 128 and so on up to 2048 elements of 4 bytes become. For these a step is
// 1024 bytes = 256 elements and a span 2048 bytes = 512 elements. A width of r = width mod 512
// elements (512 where that is 0) has the period 2048 / gcd(2048, 4 r): 8 for odd multiples of 64,
// 4 for 128 and 384, 2 for 256, 1 for 512. Periods 2 and 4 are taken as they are; a period of 8
// stays one whatever is added, so that width is kept; a period of 1 becomes one of 2 with the next
// step. (Up to 16 is good for selector 2, which keeps the same widths.)
constexpr uint32_t kPaddedOf4Bytes[] = {
    0,    64,   128,  192,  256,  320,  384,  448,  //
    768,                                            // 512 + 256
    576,  640,  704,  768,  832,  896,  960,        //
    1280,                                           // 1024 + 256
    1088, 1152, 1216, 1280, 1344, 1408, 1472,       //
    1792,                                           // 1536 + 256
    1600, 1664, 1728, 1792, 1856, 1920, 1984,       //
    2304,                                           // 2048 + 256
};
static_assert(std::size(kPaddedOf4Bytes) == 2048 / 64 + 1);

TEST(PitchPadding, WidthsOf4ByteElementsAreThoseOfTheWorkedTable) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (int32_t i = 1; i < std::ssize(kPaddedOf4Bytes); ++i) {
      for (const uint32_t selector : {0u, 1u, 2u, 3u, 0xFFFFFFFFu}) {
        // The first, the last but one and the last width that the entry is for.
        for (const int32_t width_el : {64 * i - 63, 64 * i - 1, 64 * i}) {
          const PaddedRow row{.width_el = width_el, .selector = selector};
          EXPECT_NUMBER(padded_width(gpu, row), kPaddedOf4Bytes[i]) << text_of(family, row);
        }
      }
    }
    // An empty row is 64 wide on family 5 before it is padded.
    for (const uint32_t selector : {1u, 2u}) {
      const PaddedRow row{.width_el = 0, .selector = selector};
      EXPECT_NUMBER(padded_width(gpu, row), family == 5 ? 64 : 0) << text_of(family, row);
    }
  }
}

// The search as it is defined, for a row of `width_el` elements.
uint32_t searched(uint32_t width_el, uint32_t element_bytes, bool second_half) {
  const uint32_t step_el = 1024 / element_bytes;
  const uint32_t span_el = 2048 / element_bytes;
  if (width_el == 0) return 0;
  for (uint32_t q = width_el; q - width_el <= 2048; q += step_el) {
    const uint32_t rest_el = q % span_el == 0 ? span_el : q % span_el;
    const uint32_t rest_bytes = rest_el * element_bytes;
    uint32_t n = 1;
    while (n * 2048 % rest_bytes != 0) ++n;
    const uint32_t period = n * 2048 / rest_bytes;
    if (period != 1 && (second_half ? period < 17 : period <= 4)) return q;
  }
  return width_el;
}

TEST(PitchPadding, TheSearchAgreesWithTheWorkedTable) {
  for (uint32_t i = 0; i < std::size(kPaddedOf4Bytes); ++i) {
    EXPECT_NUMBER(searched(64 * i, 4, false), kPaddedOf4Bytes[i]) << 64 * i;
    EXPECT_NUMBER(searched(64 * i, 4, true), kPaddedOf4Bytes[i]) << 64 * i;
  }
}

TEST(PitchPadding, WidthsOfEveryElementSizeAreThoseOfTheSearch) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (uint32_t size_class = 0; size_class < std::size(kFormats); ++size_class) {
      for (uint32_t width_el = 64; width_el <= 2048; width_el += 64) {
        for (const uint32_t selector : {1u, 2u}) {
          const PaddedRow row{.width_el = static_cast<int32_t>(width_el),
                              .format = kFormats[size_class],
                              .selector = selector};
          EXPECT_NUMBER(padded_width(gpu, row), searched(width_el, 1U << size_class, selector == 2))
              << text_of(family, row);
        }
      }
    }
  }
}

struct WorkedRow {
  uint32_t format;
  int32_t width_el;
  uint32_t expected_el;
};

// Worked out as above: whole multiples of 2048 bytes grow by 1024 bytes, all others stay.
constexpr WorkedRow kWorked[] = {
    // 1 byte: a span of 2048 elements, a step of 1024.
    {.format = kBytes1, .width_el = 64, .expected_el = 64},
    {.format = kBytes1, .width_el = 1024, .expected_el = 1024},
    {.format = kBytes1, .width_el = 1984, .expected_el = 1984},
    {.format = kBytes1, .width_el = 2048, .expected_el = 3072},
    // 2 bytes: a span of 1024, a step of 512.
    {.format = kBytes2, .width_el = 512, .expected_el = 512},
    {.format = kBytes2, .width_el = 1024, .expected_el = 1536},
    {.format = kBytes2, .width_el = 1088, .expected_el = 1088},
    {.format = kBytes2, .width_el = 2048, .expected_el = 2560},
    // 8 bytes: a span of 256, a step of 128.
    {.format = kBytes8, .width_el = 64, .expected_el = 64},
    {.format = kBytes8, .width_el = 128, .expected_el = 128},
    {.format = kBytes8, .width_el = 256, .expected_el = 384},
    {.format = kBytes8, .width_el = 320, .expected_el = 320},
    {.format = kBytes8, .width_el = 512, .expected_el = 640},
    {.format = kBytes8, .width_el = 2048, .expected_el = 2176},
    // 16 bytes: a span of 128, a step of 64.
    {.format = kBytes16, .width_el = 64, .expected_el = 64},
    {.format = kBytes16, .width_el = 128, .expected_el = 192},
    {.format = kBytes16, .width_el = 192, .expected_el = 192},
    {.format = kBytes16, .width_el = 256, .expected_el = 320},
    {.format = kBytes16, .width_el = 2048, .expected_el = 2112},
};

TEST(PitchPadding, WholeMultiplesOf2048BytesGrowBy1024Bytes) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const WorkedRow& worked : kWorked) {
      const PaddedRow row{.width_el = worked.width_el, .format = worked.format};
      EXPECT_NUMBER(padded_width(gpu, row), worked.expected_el) << text_of(family, row);
    }
  }
}

// Beyond 2048 elements: whole multiples of 2048 stay, the rest of any other width is padded.
constexpr WorkedRow kWide[] = {
    {.format = kBytes4, .width_el = 2049, .expected_el = 2112},    // 2048 + 1, as 64
    {.format = kBytes4, .width_el = 2112, .expected_el = 2112},    // 2048 + 64, kept
    {.format = kBytes4, .width_el = 2560, .expected_el = 2816},    // 2048 + 512, which is 768
    {.format = kBytes4, .width_el = 2561, .expected_el = 2624},    // 2048 + 513, as 576
    {.format = kBytes4, .width_el = 3584, .expected_el = 3840},    // 2048 + 1536, which is 1792
    {.format = kBytes4, .width_el = 4033, .expected_el = 4096},    // 4096 by 64s, which stays
    {.format = kBytes4, .width_el = 4095, .expected_el = 4096},    // 4096 by 64s
    {.format = kBytes4, .width_el = 4096, .expected_el = 4096},    // but 2048 becomes 2304
    {.format = kBytes4, .width_el = 4097, .expected_el = 4160},    // 4096 + 1, as 64
    {.format = kBytes4, .width_el = 4608, .expected_el = 4864},    // 4096 + 512, which is 768
    {.format = kBytes4, .width_el = 6144, .expected_el = 6144},    // 3 x 2048
    {.format = kBytes4, .width_el = 8192, .expected_el = 8192},    // 4 x 2048
    {.format = kBytes4, .width_el = 16128, .expected_el = 16128},  // 14336 + 1792, kept
    {.format = kBytes4, .width_el = 16384, .expected_el = 16384},  // 8 x 2048
    {.format = kBytes4, .width_el = 16385, .expected_el = 16384},  // 16384 + 64, cut
    // A multiple of 2048, cut. x 4 it wraps to -8192, which is above the limit.
    {.format = kBytes4, .width_el = 0x7FFFF800, .expected_el = 16384},
    {.format = kBytes1, .width_el = 4097, .expected_el = 4160},   // 4096 + 1, as 64
    {.format = kBytes2, .width_el = 3072, .expected_el = 3584},   // 2048 + 1024, which is 1536
    {.format = kBytes8, .width_el = 2304, .expected_el = 2432},   // 2048 + 256, which is 384
    {.format = kBytes16, .width_el = 2176, .expected_el = 2240},  // 2048 + 128, which is 192
    {.format = kBytes16, .width_el = 4096, .expected_el = 4096},  // 2 x 2048
};

TEST(PitchPadding, BeyondTheTableTheRestOf2048ElementsIsPadded) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const WorkedRow& row : kWide) {
      for (const uint32_t selector : {1u, 2u}) {
        const Request r{.width_el = row.width_el,
                        .format = row.format,
                        .tiling_mode = kLinear,
                        .selector = selector,
                        .min_padded_row_bytes = -8193};
        EXPECT_NUMBER(full(gpu, r).width_el, row.expected_el) << describe(family, r);
      }
    }
  }
}

}  // namespace
}  // namespace align_test
