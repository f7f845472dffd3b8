// The entry with a divisor and extra padding.
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
    for (const uint32_t format : kFormats) {
      for (const uint32_t mode : {kLinear, kTiled}) {
        for (const int32_t width : {0, 65, 512, 2049, 20000}) {
          const Request r{.width = width, .height = 33, .format = format, .mode = mode};
          EXPECT_EQ(fdm(gpu, r), full(gpu, r)) << chip << ": " << describe(r);
        }
      }
    }
    const Request negative{.width = -1};
    EXPECT_EQ(fdm(gpu, negative), full(gpu, negative)) << chip;
  }
}

struct DivisorRow {
  uint32_t format;
  uint32_t samples;
  int32_t width;
  uint32_t divisor;
  uint32_t expected;
};

// q = alignment / divisor; a width w becomes (w + q - 1) & -q, and stays when q is 0.
constexpr DivisorRow kDivisors[] = {
    {kBytes4, 1, 100, 1, 128},           // 64
    {kBytes4, 1, 100, 2, 128},           // 32
    {kBytes4, 1, 100, 4, 112},           // 16
    {kBytes4, 1, 100, 16, 100},          // 4
    {kBytes4, 1, 101, 16, 104},          //
    {kBytes4, 1, 101, 64, 101},          // 1
    {kBytes4, 1, 101, 65, 101},          // 0
    {kBytes4, 1, 101, 0xFFFFFFFF, 101},  // unsigned: 0
    {kBytes4, 1, 1, 3, 1},               // 21, -21 = ...EB: 0x15 & 0xEB
    {kBytes4, 1, 100, 3, 104},           // 0x78 & 0xEB
    {kBytes16, 8, 100, 128, 100},        // 128 / 128
    {kBytes16, 8, 100, 16, 104},         // 8
    {kBc1, 1, 25, 8, 32},                // 64 / 8
    {kBc7, 8, 25, 16, 25},               // 16 / 16
    {103, 1, 33, 2, 64},                 // 32
    {kBytes4, 1, 0, 4, 0},
};

TEST(Fdm, TheDivisorDividesTheLinearAlignmentOnFamilies6And7) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const DivisorRow& row : kDivisors) {
      Request r{.width = row.width,
                .format = row.format,
                .samples = row.samples,
                .mode = kLinear,
                .min_padded = kNeverPad,
                .divisor = row.divisor};
      const uint32_t on5 = row.width > 64 ? 128 : 64;  // family 5 does not look at it
      EXPECT_EQ(fdm(gpu, r).width, family == 5 ? on5 : row.expected) << family << describe(r);
      // Nor does a tiled surface, whatever its samples.
      r = {.width = 65, .height = 17, .divisor = row.divisor};
      EXPECT_EQ(fdm(gpu, r), (Size{128, 32})) << family << describe(r);
    }
    EXPECT_EQ(fdm(gpu, {.divisor = 0}), (Size{64, 16})) << family;
  }
}

TEST(Fdm, PaddingComesAfterTheDivisor) {
  for (const uint32_t family : {6u, 7u}) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    // 500 up to 16 is 512; 2048 bytes a row are padded. 470 up to 16 is 480: the table's entry for
    // widths up to 512.
    const Request r{.width = 500, .mode = kLinear, .divisor = 4};
    EXPECT_EQ(fdm(gpu, r).width, 768u);
    Request s{.width = 470, .mode = kLinear, .divisor = 4};
    EXPECT_EQ(fdm(gpu, s).width, 768u);
    s.min_padded = 1920;  // 480 x 4
    EXPECT_EQ(fdm(gpu, s).width, 480u);
    s.min_padded = 1919;
    EXPECT_EQ(fdm(gpu, s).width, 768u);
  }
}

TEST(FdmDeathTest, ADivisorOf0FaultsForLinearSurfacesOfFamilies6And7) {
  for (const uint32_t family : {6u, 7u}) {
    const uint32_t chip = harness::full_chip(family).chip_id;
    EXPECT_DIVISION_FAULT({
      const harness::Gpu gpu(chip);
      fdm(gpu, {.mode = kLinear, .divisor = 0});
    });
  }
  const harness::Gpu gpu(harness::full_chip(5).chip_id);
  EXPECT_EQ(fdm(gpu, {.mode = kLinear, .divisor = 0}), (Size{64, 1}));
}

// ---- Extra padding: n = the family's factor x the model's -----------------------------------

struct PaddingRow {
  uint32_t n;
  uint32_t columns;  // of a format with the unit 16
  uint32_t rows;
};

constexpr PaddingRow kPaddings[] = {{1, 16, 16}, {2, 32, 32},   {3, 48, 48},   {4, 64, 32},
                                    {6, 96, 96}, {8, 128, 128}, {16, 256, 256}};

PaddingRow padding_of(const harness::ChipData& chip) {
  uint32_t family_factor = 0;
  for (const korvel::FamilyData& family : korvel::kFamilyData) {
    if (family.family_id == chip.family_id) family_factor = family.extra_padding_units;
  }
  const uint32_t n = family_factor * harness::model_of(chip).extra_padding_factor;
  for (const PaddingRow& row : kPaddings) {
    if (row.n == n) return row;
  }
  return {n, 0, 0};  // any other n pads nothing
}

// With a divisor of 64 the linear alignment is 1: what is added shows as it is.
Request unaligned(uint32_t format) {
  return {.width = 1000,
          .height = 100,
          .format = format,
          .mode = kLinear,
          .min_padded = kNeverPad,
          .divisor = 64,
          .want_extra = 1};
}

TEST(Fdm, ExtraPaddingOfEveryChip) {
  uint32_t seen = 0;  // bit n, bit 31 for any other
  for (const harness::ChipData& chip : korvel::kChipData) {
    if (!chip.supported || chip.family_id == 5) continue;
    harness::Gpu gpu(chip.chip_id);
    const PaddingRow padding = padding_of(chip);
    seen |= padding.columns == 0 ? 1U << 31 : 1U << padding.n;
    const Size expected{1000 + padding.columns, 100 + padding.rows};
    Request r = unaligned(kBytes4);
    EXPECT_EQ(fdm(gpu, r), expected) << chip.chip_id << ", n = " << padding.n;
    EXPECT_EQ(minimal(gpu, r), expected) << chip.chip_id << ", n = " << padding.n;
    r.want_extra = 0x80000000;
    EXPECT_EQ(fdm(gpu, r), expected) << chip.chip_id << ", n = " << padding.n;
    r.want_extra = 0;
    EXPECT_EQ(fdm(gpu, r), (Size{1000, 100})) << chip.chip_id;
    EXPECT_EQ(minimal(gpu, r), (Size{1000, 100})) << chip.chip_id;
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
  EXPECT_EQ(seen, (1U << 31) | (1U << 16) | (1U << 8) | (1U << 6) | (1U << 4) | (1U << 3) |
                      (1U << 2) | (1U << 1));
}

TEST(Fdm, ExtraColumnsByFormat) {
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
  for (const uint32_t family : {6u, 7u}) {
    const harness::ChipData& chip =
        harness::chip_where("padded by n = 2", [family](const harness::ChipData& c) {
          return c.family_id == family && c.supported && padding_of(c).n == 2;
        });
    const harness::Gpu gpu(chip.chip_id);
    for (const uint32_t format : kFormats) {
      EXPECT_EQ(fdm(gpu, unaligned(format)).width, 1000 + 2 * unit_of(format)) << format;
      EXPECT_EQ(minimal(gpu, unaligned(format)).width, 1000 + 2 * unit_of(format)) << format;
    }
  }
}

TEST(Fdm, ExtraPaddingComesBeforeTheAlignment) {
  for (const uint32_t family : {6u, 7u}) {
    const harness::ChipData& chip =
        harness::chip_where("padded by n = 4", [family](const harness::ChipData& c) {
          return c.family_id == family && c.supported && padding_of(c).n == 4 &&
                 (family == 6 || harness::model_of(c).max_surface_pitch != 0);
        });
    const harness::Gpu gpu(chip.chip_id);
    // 64 columns, 32 rows (not 64).
    EXPECT_EQ(fdm(gpu, {.width = 64, .height = 16, .want_extra = 1}), (Size{128, 48}));
    EXPECT_EQ(fdm(gpu, {.width = 65, .height = 17, .want_extra = 1}), (Size{192, 64}));
    EXPECT_EQ(fdm(gpu, {.width = 0, .height = 0, .want_extra = 1}), (Size{64, 32}));
    EXPECT_EQ(fdm(gpu, {.width = 40,
                        .height = 40,
                        .format = 670,
                        .mode = kLinear,
                        .min_padded = kNeverPad,
                        .want_extra = 1}),
              (Size{128, 128}));  // 104 to 64s, 72 to 64s
    // Blocks are padded in blocks: 25 + 64 to 32s, 8 + 32 to 16s.
    EXPECT_EQ(fdm(gpu, {.width = 25, .height = 8, .format = kBc1, .want_extra = 1}),
              (Size{96, 48}));
    // 448 + 64 = 512 is padded to 768.
    EXPECT_EQ(fdm(gpu, {.width = 448, .mode = kLinear, .want_extra = 1}), (Size{768, 33}));
  }
}

TEST(Fdm, Family5IsNeverPaddedExtra) {
  for (const harness::ChipData& chip : korvel::kChipData) {
    if (!chip.supported || chip.family_id != 5) continue;
    const harness::Gpu gpu(chip.chip_id);
    EXPECT_EQ(fdm(gpu, {.width = 64, .height = 16, .want_extra = 1}), (Size{64, 16}));
    EXPECT_EQ(minimal(gpu, {.width = 64, .height = 16, .want_extra = 1}), (Size{64, 16}));
    EXPECT_EQ(fdm(gpu, unaligned(kBytes4)), (Size{1024, 100}));
    EXPECT_EQ(minimal(gpu, unaligned(kBytes4)), (Size{1000, 100}));  // it takes the divisor
  }
}

}  // namespace
}  // namespace align_test
