// The entry with a divisor and extra padding.
#include <set>

#include "tests/align/align_calls.h"

namespace align_test {
namespace {

using testing::IsEmpty;

TEST(Fdm, WithoutDivisorAndPaddingItIsTheFullAlignmentOnEveryChip) {
  constexpr uint32_t kFormats[] = {kBytes1, kBytes2Tall, kBytes3, kBytes4, kBytes8, kBytes12,
                                   kBc1,    103,         654,     660,     670,     kFourCC};
  std::vector<uint32_t> chips{harness::kUnknownChip};
  for (const harness::ChipData& chip : korvel::kChipData) chips.push_back(chip.chip_id);
  for (const uint32_t chip : chips) {
    const harness::Gpu gpu(chip);
    const auto expect_same = [&](const Request& r) {
      EXPECT_NUMBERS(fdm(gpu, r), full(gpu, r)) << "chip " << chip << ", " << describe(r);
    };
    for (const uint32_t format : kFormats) {
      for (const uint32_t mode : {kLinear, kTiled}) {
        for (const int32_t width_el : {0, 65, 512, 2049, 20000}) {
          expect_same(
              {.width_el = width_el, .height_rows = 33, .format = format, .tiling_mode = mode});
        }
      }
    }
    expect_same({.width_el = -1});
  }
}

struct DivisorRow {
  uint32_t format = kBytes4;
  uint32_t samples = 1;
  int32_t width_el;
  uint32_t divisor;
  uint32_t expected_el;  // on families 6 and 7
};

// q = alignment / divisor; a width w becomes (w + q - 1) & -q, and stays when q is 0.
constexpr DivisorRow kDivisors[] = {
    // 4 bytes: an alignment of 64. Its quotients are 64, 32, 16, 4, 1 and 0.
    {.width_el = 100, .divisor = 1, .expected_el = 128},
    {.width_el = 100, .divisor = 2, .expected_el = 128},
    {.width_el = 100, .divisor = 4, .expected_el = 112},
    {.width_el = 100, .divisor = 16, .expected_el = 100},
    {.width_el = 101, .divisor = 16, .expected_el = 104},
    {.width_el = 101, .divisor = 64, .expected_el = 101},
    {.width_el = 101, .divisor = 65, .expected_el = 101},
    {.width_el = 101, .divisor = 0xFFFFFFFF, .expected_el = 101},  // unsigned: 0
    {.width_el = 0, .divisor = 4, .expected_el = 0},
    // 64 / 3 = 21, -21 = ...EB: 1 + 20 = 0x15, 0x15 & 0xEB = 0x01; 100 + 20 = 0x78, 0x78 & 0xEB =
    // 0x68.
    {.width_el = 1, .divisor = 3, .expected_el = 1},
    {.width_el = 100, .divisor = 3, .expected_el = 104},
    // 16 bytes x 8 samples: an alignment of 128. 128 / 128 = 1, 128 / 16 = 8.
    {.format = kBytes16, .samples = 8, .width_el = 100, .divisor = 128, .expected_el = 100},
    {.format = kBytes16, .samples = 8, .width_el = 100, .divisor = 16, .expected_el = 104},
    // Blocks of 8 bytes: 8 x (64 / 8) = 64; 64 / 8 = 8.
    {.format = kBc1, .width_el = 25, .divisor = 8, .expected_el = 32},
    // Blocks of 16 bytes with 8 samples: 16 x 1 (64 / 128 is below 1); 16 / 16 = 1.
    {.format = kBc7, .samples = 8, .width_el = 25, .divisor = 16, .expected_el = 25},
    // 1 byte: 64 / 2 = 32.
    {.format = 103, .width_el = 33, .divisor = 2, .expected_el = 64},
};

Request linear_with_divisor(const DivisorRow& row) {
  return {.width_el = row.width_el,
          .format = row.format,
          .samples = row.samples,
          .tiling_mode = kLinear,
          .min_padded_row_bytes = kNeverPad,
          .divisor = row.divisor};
}

TEST(Fdm, TheDivisorDividesTheLinearAlignmentOnFamilies6And7) {
  for (const uint32_t family : kFamilies6And7) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const DivisorRow& row : kDivisors) {
      const Request r = linear_with_divisor(row);
      EXPECT_NUMBER(fdm(gpu, r).width_el, row.expected_el) << describe(family, r);
    }
  }
}

TEST(Fdm, Family5DoesNotLookAtTheDivisor) {
  const harness::Gpu gpu(harness::full_chip(5).chip_id);
  for (const DivisorRow& row : kDivisors) {
    const Request r = linear_with_divisor(row);
    // The next multiple of 64, and 64 for none.
    EXPECT_NUMBER(fdm(gpu, r).width_el, row.width_el > 64 ? 128 : 64) << describe(5, r);
  }
  EXPECT_NUMBERS(fdm(gpu, {.tiling_mode = kLinear, .divisor = 0}), (Size{64, 1}));
}

TEST(Fdm, TiledSurfacesDoNotLookAtTheDivisor) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t divisor : {0u, 1u, 2u, 3u, 64u, 65u, 128u, 0xFFFFFFFFu}) {
      // Tiles of 64 x 16.
      const Request r{.width_el = 65, .height_rows = 17, .divisor = divisor};
      EXPECT_NUMBERS(fdm(gpu, r), (Size{128, 32})) << describe(family, r);
    }
  }
}

struct LimitRow {
  int32_t width_el;
  int32_t limit_bytes;
  uint32_t expected_el;
};

// 4-byte elements and a divisor of 4: multiples of 64 / 4 = 16.
constexpr LimitRow kPadded[] = {
    // 500 -> 512; 512 x 4 = 2048 bytes -> 3072 = 768 x 4.
    {.width_el = 500, .limit_bytes = 0, .expected_el = 768},
    // 470 -> 480 -> 512: padded widths are whole steps of 64.
    {.width_el = 470, .limit_bytes = 0, .expected_el = 768},
    // 480 x 4 = 1920 bytes: at most the limit, and above it.
    {.width_el = 470, .limit_bytes = 1920, .expected_el = 480},
    {.width_el = 470, .limit_bytes = 1919, .expected_el = 768},
};

TEST(Fdm, PaddingComesAfterTheDivisor) {
  for (const uint32_t family : kFamilies6And7) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const LimitRow& row : kPadded) {
      const Request r{.width_el = row.width_el,
                      .tiling_mode = kLinear,
                      .min_padded_row_bytes = row.limit_bytes,
                      .divisor = 4};
      EXPECT_NUMBER(fdm(gpu, r).width_el, row.expected_el) << describe(family, r);
    }
  }
}

TEST(FdmDeathTest, ADivisorOf0FaultsForLinearSurfacesOfFamilies6And7) {
  for (const uint32_t family : kFamilies6And7) {
    const uint32_t chip = harness::full_chip(family).chip_id;
    EXPECT_DIVISION_FAULT({
      const harness::Gpu gpu(chip);
      fdm(gpu, {.tiling_mode = kLinear, .divisor = 0});
    }) << "family "
       << family;
  }
}

// ---- Extra padding: n = the family's factor x the model's -----------------------------------

struct PaddingRow {
  uint32_t n;
  uint32_t columns_el;  // of a format with the unit 16: 16 n
  uint32_t rows;        // 16 n, but 32 for 4
};

constexpr PaddingRow kPaddings[] = {
    {.n = 1, .columns_el = 16, .rows = 16},    {.n = 2, .columns_el = 32, .rows = 32},
    {.n = 3, .columns_el = 48, .rows = 48},    {.n = 4, .columns_el = 64, .rows = 32},
    {.n = 6, .columns_el = 96, .rows = 96},    {.n = 8, .columns_el = 128, .rows = 128},
    {.n = 16, .columns_el = 256, .rows = 256},
};

PaddingRow padding_of(const harness::ChipData& chip) {
  uint32_t family_factor = 0;
  for (const korvel::FamilyData& family : korvel::kFamilyData) {
    if (family.family_id == chip.family_id) family_factor = family.extra_padding_units;
  }
  const uint32_t n = family_factor * harness::model_of(chip).extra_padding_factor;
  for (const PaddingRow& row : kPaddings) {
    if (row.n == n) return row;
  }
  return {.n = n, .columns_el = 0, .rows = 0};  // any other n pads nothing
}

// With a divisor of 64 the linear alignment is 1: what is added shows as it is.
Request unaligned(uint32_t format, uint32_t want_extra_padding = 1) {
  return {.width_el = 1000,
          .height_rows = 100,
          .format = format,
          .tiling_mode = kLinear,
          .min_padded_row_bytes = kNeverPad,
          .divisor = 64,
          .want_extra_padding = want_extra_padding};
}

TEST(Fdm, ExtraPaddingOfEveryChipGoesByItsFamilyAndModel) {
  std::set<uint32_t> seen;  // the n that pad, and 0 for any other
  for (const harness::ChipData& chip : korvel::kChipData) {
    if (!chip.supported || chip.family_id == 5) continue;
    harness::Gpu gpu(chip.chip_id);
    const PaddingRow padding = padding_of(chip);
    seen.insert(padding.columns_el == 0 ? 0 : padding.n);
    const auto expect_size = [&](uint32_t want, Size expected) {
      const Request r = unaligned(kBytes4, want);
      EXPECT_NUMBERS(fdm(gpu, r), expected) << "chip " << chip.chip_id << ", n = " << padding.n;
      EXPECT_NUMBERS(minimal(gpu, r), expected) << "chip " << chip.chip_id << ", n = " << padding.n;
    };
    const Size padded{1000 + padding.columns_el, 100 + padding.rows};
    expect_size(1, padded);
    expect_size(0x80000000, padded);
    expect_size(0, {1000, 100});
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
  EXPECT_THAT(seen, testing::ElementsAre(0, 1, 2, 3, 4, 6, 8, 16));
}

TEST(Fdm, ExtraColumnsComeInTheUnitOfTheFormat) {
  const auto unit_of = [](uint32_t format) -> uint32_t {
    switch (format) {
      case 615:
      case 619:
      case 660:
      case 661:
      case 662: return 64;
      case 103:
      case 104:
      case 105:
      case 106:
      case 107:
      case 614:
      case 657:
      case 658:
      case 663:
      case 664:
      case 679:
      case 680: return 32;
      default: return format >= 709 && format <= 721 ? 32 : 16;
    }
  };
  // One sample: the alignment of all these is 64 elements, and none is of an odd size.
  constexpr uint32_t kFormats[] = {0,   28,  61,  71,  98,  100, 102, 103, 104, 105,    106, 107,
                                   108, 110, 186, 506, 614, 615, 616, 618, 619, 620,    625, 647,
                                   654, 655, 656, 657, 658, 659, 660, 661, 662, 663,    664, 665,
                                   669, 670, 678, 679, 680, 681, 708, 709, 710, 711,    712, 713,
                                   714, 715, 716, 717, 718, 719, 720, 721, 722, kFourCC};
  for (const uint32_t family : kFamilies6And7) {
    const harness::ChipData& chip =
        harness::chip_where("padded by n = 2", [family](const harness::ChipData& c) {
          return c.family_id == family && c.supported && padding_of(c).n == 2;
        });
    const harness::Gpu gpu(chip.chip_id);
    for (const uint32_t format : kFormats) {
      const Request r = unaligned(format);
      EXPECT_NUMBER(fdm(gpu, r).width_el, 1000 + 2 * unit_of(format)) << describe(family, r);
      EXPECT_NUMBER(minimal(gpu, r).width_el, 1000 + 2 * unit_of(format)) << describe(family, r);
    }
  }
}

// n = 4 adds 64 columns and 32 rows (not 64).
const struct {
  Request request;
  Size expected;
} kPaddedBy4[] = {
    // Tiles of 64 x 16: 128 x 48 are whole ones.
    {.request = {.width_el = 64, .height_rows = 16}, .expected = {128, 48}},
    // 129 -> 192, 49 -> 64.
    {.request = {.width_el = 65, .height_rows = 17}, .expected = {192, 64}},
    {.request = {.width_el = 0, .height_rows = 0}, .expected = {64, 32}},
    // 670 has rows of 64s when linear: 104 -> 128 (64s), 72 -> 128.
    {.request = {.width_el = 40,
                 .height_rows = 40,
                 .format = 670,
                 .tiling_mode = kLinear,
                 .min_padded_row_bytes = kNeverPad},
     .expected = {128, 128}},
    // Blocks are padded in blocks, tiles are 32 x 16 of them: 89 -> 96, 40 -> 48.
    {.request = {.width_el = 25, .height_rows = 8, .format = kBc1}, .expected = {96, 48}},
    // 448 + 64 = 512; 512 x 4 = 2048 bytes -> 3072 = 768 x 4. 1 + 32 rows.
    {.request = {.width_el = 448, .tiling_mode = kLinear}, .expected = {768, 33}},
};

TEST(Fdm, ExtraPaddingComesBeforeTheAlignment) {
  for (const uint32_t family : kFamilies6And7) {
    const harness::ChipData& chip =
        harness::chip_where("padded by n = 4", [family](const harness::ChipData& c) {
          return c.family_id == family && c.supported && padding_of(c).n == 4 &&
                 (family == 6 || harness::model_of(c).max_surface_pitch != 0);
        });
    const harness::Gpu gpu(chip.chip_id);
    for (const auto& row : kPaddedBy4) {
      Request r = row.request;
      r.want_extra_padding = 1;
      EXPECT_NUMBERS(fdm(gpu, r), row.expected) << describe(family, r);
    }
  }
}

TEST(Fdm, Family5IsNeverPaddedExtra) {
  const Request tiled{.width_el = 64, .height_rows = 16, .want_extra_padding = 1};
  for (const harness::ChipData& chip : korvel::kChipData) {
    if (!chip.supported || chip.family_id != 5) continue;
    SCOPED_TRACE(chip.chip_id);
    const harness::Gpu gpu(chip.chip_id);
    EXPECT_NUMBERS(fdm(gpu, tiled), (Size{64, 16}));  // one tile
    EXPECT_NUMBERS(minimal(gpu, tiled), (Size{64, 16}));
    EXPECT_NUMBERS(fdm(gpu, unaligned(kBytes4)), (Size{1024, 100}));  // 1000 -> 1024 (64s)
    // It takes the divisor: 64 / 64 = 1.
    EXPECT_NUMBERS(minimal(gpu, unaligned(kBytes4)), (Size{1000, 100}));
  }
}

}  // namespace
}  // namespace align_test
