// Both alignments at once, in bytes a row.
#include <cstring>

#include "tests/align/align_calls.h"

namespace align_test {
namespace {

using harness::message;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kMinimal[] = "compute_fmt_minimal_aligned_width_and_height";
constexpr char kFull[] = "compute_fmt_aligned_width_and_height";

struct Row {
  Request request;
  ByFamily<BytesAnswer> expected;
};

constexpr ByFamily<BytesAnswer> on_all(BytesAnswer answer) {
  return {answer, answer};
}

// A row's bytes are its width in elements times the format's bytes (and, tiled, the samples). The
// minimal alignment has the bytes of an element of the plane as its divisor. Comments: minimal;
// aligned; rows where they are not as asked for.
const Row kRows[] = {
    // ---- Tiled, 4 bytes: tiles of 64 x 16
    // 100 -> 128, x 4; the same; 16
    {.request = {.width_el = 100, .height_rows = 10},
     .expected = on_all({.minimal_row_bytes = 512,
                         .aligned_row_bytes = 512,
                         .height_rows = 16,
                         .tiling_mode = kTiled})},
    // Family 5: 65 x 8 = 520 -> 768 bytes; 96 -> 128 (64s), x 8. Others: 65 -> 96 (32s), x 8.
    {.request = {.width_el = 65, .height_rows = 10, .format = kBytes8},
     .expected = {.on_5 = {.minimal_row_bytes = 768,
                           .aligned_row_bytes = 1024,
                           .height_rows = 16,
                           .tiling_mode = kTiled},
                  .on_6_and_7 = {.minimal_row_bytes = 768,
                                 .aligned_row_bytes = 768,
                                 .height_rows = 16,
                                 .tiling_mode = kTiled}}},
    // An element is 4 x 4 bytes. Family 5: 33 x 16 = 528 -> 768; 48 -> 64, x 16. Others: 33 -> 48
    // (16s), x 16.
    {.request = {.width_el = 33, .height_rows = 10, .samples = 4},
     .expected = {.on_5 = {.minimal_row_bytes = 768,
                           .aligned_row_bytes = 1024,
                           .height_rows = 16,
                           .tiling_mode = kTiled},
                  .on_6_and_7 = {.minimal_row_bytes = 768,
                                 .aligned_row_bytes = 768,
                                 .height_rows = 16,
                                 .tiling_mode = kTiled}}},

    // ---- Linear, with room for a tile of 64
    // 4 x 64 / 4 = 64: 65 -> 128, x 4; 65 -> 128 (64s), x 4
    {.request = {.width_el = 65, .height_rows = 10, .tiling_mode = kLinear},
     .expected = on_all({.minimal_row_bytes = 512,
                         .aligned_row_bytes = 512,
                         .height_rows = 10,
                         .tiling_mode = kLinear})},
    // k = 16, a tile of 16: 4 x 16 x 4 / 4 = 64: 65 -> 128, x 4: samples are not counted; the same
    {.request = {.width_el = 65, .height_rows = 10, .samples = 4, .tiling_mode = kLinear},
     .expected = on_all({.minimal_row_bytes = 512,
                         .aligned_row_bytes = 512,
                         .height_rows = 10,
                         .tiling_mode = kLinear})},
    // Any other mode is linear, and stays what it is.
    {.request = {.width_el = 65, .height_rows = 10, .tiling_mode = 2},
     .expected = on_all({.minimal_row_bytes = 512,
                         .aligned_row_bytes = 512,
                         .height_rows = 10,
                         .tiling_mode = 2})},
    // 500 -> 512, x 4 = 2048, a whole 2048: 3072; the same
    {.request = {.width_el = 500, .tiling_mode = kLinear},
     .expected = on_all({.minimal_row_bytes = 3072,
                         .aligned_row_bytes = 3072,
                         .height_rows = 1,
                         .tiling_mode = kLinear})},
    // 2048 is at most the limit.
    {.request =
         {.width_el = 500, .tiling_mode = kLinear, .selector = 2, .min_padded_row_bytes = 2048},
     .expected = on_all({.minimal_row_bytes = 2048,
                         .aligned_row_bytes = 2048,
                         .height_rows = 1,
                         .tiling_mode = kLinear})},

    // ---- Below 16 elements the surface becomes linear, without room for a tile
    // 4 x 16 / 4 = 16: 15 -> 16, x 4; 15 -> 64, x 4
    {.request = {.width_el = 15, .height_rows = 10, .min_padded_row_bytes = kNeverPad},
     .expected = on_all({.minimal_row_bytes = 64,
                         .aligned_row_bytes = 256,
                         .height_rows = 10,
                         .tiling_mode = kLinear})},
    // 16 is padded to 64, a whole step, x 4; 64, kept, x 4
    {.request = {.width_el = 15, .height_rows = 10},
     .expected = on_all({.minimal_row_bytes = 256,
                         .aligned_row_bytes = 256,
                         .height_rows = 10,
                         .tiling_mode = kLinear})},
    // 16 stay tiled: 64, x 4; the same; 16
    {.request = {.width_el = 16, .height_rows = 10},
     .expected = on_all({.minimal_row_bytes = 256,
                         .aligned_row_bytes = 256,
                         .height_rows = 16,
                         .tiling_mode = kTiled})},
    // Another mode becomes 0 too.
    {.request =
         {.width_el = 15, .height_rows = 10, .tiling_mode = 2, .min_padded_row_bytes = kNeverPad},
     .expected = on_all({.minimal_row_bytes = 64,
                         .aligned_row_bytes = 256,
                         .height_rows = 10,
                         .tiling_mode = kLinear})},
    // None stay none, but for family 5's full alignment, 64 x 4.
    {.request = {.width_el = 0, .height_rows = 10, .min_padded_row_bytes = kNeverPad},
     .expected = {.on_5 = {.minimal_row_bytes = 0,
                           .aligned_row_bytes = 256,
                           .height_rows = 10,
                           .tiling_mode = kLinear},
                  .on_6_and_7 = {.minimal_row_bytes = 0,
                                 .aligned_row_bytes = 0,
                                 .height_rows = 10,
                                 .tiling_mode = kLinear}}},
    // k = 16, a = 4: 4 x 4 x 4 / 4 = 16: 15 -> 16, x 4: samples are not counted; 64 x 4
    {.request =
         {.width_el = 15, .height_rows = 10, .samples = 4, .min_padded_row_bytes = kNeverPad},
     .expected = on_all({.minimal_row_bytes = 64,
                         .aligned_row_bytes = 256,
                         .height_rows = 10,
                         .tiling_mode = kLinear})},

    // ---- Blocks: linear below 16 x the block's width
    // 4 x 4, so below 64. 8 x 8 / 8 = 8: 63 -> 64, x 8; 64 x 8
    {.request = {.width_el = 63, .height_rows = 10, .format = kBc1},
     .expected = on_all({.minimal_row_bytes = 512,
                         .aligned_row_bytes = 512,
                         .height_rows = 10,
                         .tiling_mode = kLinear})},
    // 60 -> 64, x 8; 64 x 8
    {.request = {.width_el = 60, .height_rows = 10, .format = kBc1},
     .expected = on_all({.minimal_row_bytes = 512,
                         .aligned_row_bytes = 512,
                         .height_rows = 10,
                         .tiling_mode = kLinear})},
    // 33 -> 40, x 8; 64 x 8
    {.request = {.width_el = 33, .height_rows = 10, .format = kBc1},
     .expected = on_all({.minimal_row_bytes = 320,
                         .aligned_row_bytes = 512,
                         .height_rows = 10,
                         .tiling_mode = kLinear})},
    // 64 stay tiled: two tiles of 32 x 16 (family 5: 64 x 8 = two units of 256 bytes), x 8; 16
    {.request = {.width_el = 64, .height_rows = 10, .format = kBc1},
     .expected = on_all({.minimal_row_bytes = 512,
                         .aligned_row_bytes = 512,
                         .height_rows = 16,
                         .tiling_mode = kTiled})},
    // 12 x 12, so below 192. 16 x 4 / 16 = 4: 191 -> 192, x 16; 191 -> 192 (64s), x 16
    {.request = {.width_el = 191, .height_rows = 3, .format = 186},
     .expected = on_all({.minimal_row_bytes = 3072,
                         .aligned_row_bytes = 3072,
                         .height_rows = 3,
                         .tiling_mode = kLinear})},
    // 192 stay tiled: 12 tiles of 16 x 16 (family 5: 192 x 16 = 12 units of 256 bytes), x 16; 16
    {.request = {.width_el = 192, .height_rows = 3, .format = 186},
     .expected = on_all({.minimal_row_bytes = 3072,
                         .aligned_row_bytes = 3072,
                         .height_rows = 16,
                         .tiling_mode = kTiled})},
    // Three texels an element, but no block-compressed format: below 16. 4 x 16 / 4 = 16: 15 -> 16,
    // x 4; 64 x 4
    {.request = {.width_el = 15, .height_rows = 3, .format = 654},
     .expected = on_all({.minimal_row_bytes = 64,
                         .aligned_row_bytes = 256,
                         .height_rows = 3,
                         .tiling_mode = kLinear})},
    // A tile of 64 x 16: x 4; the same; 16
    {.request = {.width_el = 16, .height_rows = 3, .format = 654},
     .expected = on_all({.minimal_row_bytes = 256,
                         .aligned_row_bytes = 256,
                         .height_rows = 16,
                         .tiling_mode = kTiled})},

    // ---- Elements of 3 bytes count as those of 4, with a divisor of 3
    // 4 x 64 / 3 = 85, -85 = ...AB: 100 + 84 = 0xB8, 0xB8 & 0xAB = 0xA8 = 168 -> 256 (whole rows of
    // 768 bytes), x 4; 100 -> 128 -> 256, x 4
    {.request = {.width_el = 100, .height_rows = 3, .format = kBytes3, .tiling_mode = kLinear},
     .expected = on_all({.minimal_row_bytes = 1024,
                         .aligned_row_bytes = 1024,
                         .height_rows = 3,
                         .tiling_mode = kLinear})},
    // 65 -> 128 (64s), x 4; the same; 16
    {.request = {.width_el = 65, .height_rows = 3, .format = kBytes3},
     .expected = on_all({.minimal_row_bytes = 512,
                         .aligned_row_bytes = 512,
                         .height_rows = 16,
                         .tiling_mode = kTiled})},

    // ---- Planes: the divisor is the plane's element size, the bytes are those of the format, 1
    // 1 x 128 / 2 = 64: 65 -> 128; 65 -> 128 (64s)
    {.request =
         {.width_el = 65, .height_rows = 3, .plane = 1, .format = 103, .tiling_mode = kLinear},
     .expected = on_all({.minimal_row_bytes = 128,
                         .aligned_row_bytes = 128,
                         .height_rows = 3,
                         .tiling_mode = kLinear})},
    // Tall tiles of 64 x 32 (family 5: 128 x 2 = two units of 128 bytes): 128; the same; 32
    {.request = {.width_el = 65, .height_rows = 3, .plane = 1, .format = 103},
     .expected = on_all({.minimal_row_bytes = 128,
                         .aligned_row_bytes = 128,
                         .height_rows = 32,
                         .tiling_mode = kTiled})},
    // 1 x 64 / 2 = 32: 15 -> 32; 64
    {.request = {.width_el = 15, .height_rows = 3, .plane = 1, .format = 103},
     .expected = on_all({.minimal_row_bytes = 32,
                         .aligned_row_bytes = 64,
                         .height_rows = 3,
                         .tiling_mode = kLinear})},

    // ---- 1 byte without a record
    // 1 x 128: 65 -> 128; 65 -> 128 (64s); 65 -> 128 rows for this format
    {.request = {.width_el = 65,
                 .height_rows = 65,
                 .format = 670,
                 .tiling_mode = kLinear,
                 .min_padded_row_bytes = kNeverPad},
     .expected = on_all({.minimal_row_bytes = 128,
                         .aligned_row_bytes = 128,
                         .height_rows = 128,
                         .tiling_mode = kLinear})},
    // Tiles of 128 x 32
    {.request = {.width_el = 100, .height_rows = 3, .format = kFourCC},
     .expected = on_all({.minimal_row_bytes = 128,
                         .aligned_row_bytes = 128,
                         .height_rows = 32,
                         .tiling_mode = kTiled})},
    // 1 x 128: 100 -> 128; 100 -> 128 (64s); no whole 2048: not padded
    {.request = {.width_el = 100, .height_rows = 3, .format = kNoRecord, .tiling_mode = kLinear},
     .expected = on_all({.minimal_row_bytes = 128,
                         .aligned_row_bytes = 128,
                         .height_rows = 3,
                         .tiling_mode = kLinear})},

    // ---- The largest widths are wide, not negative
    // 0x7FFFFFFF -> 0x80000000 (128s), x 1; the same; 32
    {.request = {.width_el = INT_MAX, .height_rows = 3, .format = kBytes1},
     .expected = on_all({.minimal_row_bytes = 0x80000000,
                         .aligned_row_bytes = 0x80000000,
                         .height_rows = 32,
                         .tiling_mode = kTiled})},
};

TEST(InBytes, AnswersBothAlignments) {
  for (const uint32_t family : kFamilies) {
    harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const Row& row : kRows) {
      EXPECT_NUMBERS(in_bytes(gpu, row.request), row.expected.of(family))
          << describe(family, row.request);
    }
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

TEST(InBytes, ATiledPlaneThatTheFormatLacksNeedsNoDivisorOnFamilies6And7) {
  for (const uint32_t family : kFamilies6And7) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    // By the format's own tiles of 64 x 16: 65 -> 128, x 4.
    EXPECT_NUMBERS(in_bytes(gpu, {.width_el = 65, .height_rows = 3, .plane = 1}),
                   (BytesAnswer{.minimal_row_bytes = 512,
                                .aligned_row_bytes = 512,
                                .height_rows = 16,
                                .tiling_mode = kTiled}))
        << "family " << family;
  }
}

TEST(InBytes, ExtraPaddingIsNotAskedFor) {
  const harness::ChipData& chip =
      harness::chip_where("padded extra", [](const harness::ChipData& c) {
        return c.family_id == 6 && c.supported && harness::model_of(c).extra_padding_factor == 1;
      });
  const harness::Gpu gpu(chip.chip_id);
  // One tile of 64 x 16, x 4.
  EXPECT_NUMBERS(in_bytes(gpu, {.width_el = 64, .height_rows = 16}),
                 (BytesAnswer{.minimal_row_bytes = 256,
                              .aligned_row_bytes = 256,
                              .height_rows = 16,
                              .tiling_mode = kTiled}));
}

struct NegativeRow {
  Request request;
  uint32_t row_bytes;  // of a width of 1, by both alignments
  uint32_t tiling_mode;
  const char* text;
};

constexpr NegativeRow kNegative[] = {
    // A negative width is below 16 and clears the mode; then samples are not counted: 1 x 4.
    {.request = {.width_el = -1, .height_rows = 5, .samples = 4},
     .row_bytes = 4,
     .tiling_mode = kLinear,
     .text = "Invalid width or height: W = -1, H = 5"},
    // 1 x 8.
    {.request = {.width_el = INT_MIN, .height_rows = 5, .format = kBc1},
     .row_bytes = 8,
     .tiling_mode = kLinear,
     .text = "Invalid width or height: W = -2147483648, H = 5"},
    // A negative height leaves the mode: 1 x 4 x 4 samples.
    {.request = {.width_el = 100, .height_rows = -5, .samples = 4},
     .row_bytes = 16,
     .tiling_mode = kTiled,
     .text = "Invalid width or height: W = 100, H = -5"},
};

void expect_refused_twice(harness::Gpu& gpu, const NegativeRow& row) {
  EXPECT_NUMBERS(in_bytes(gpu, row.request), (BytesAnswer{.minimal_row_bytes = row.row_bytes,
                                                          .aligned_row_bytes = row.row_bytes,
                                                          .height_rows = 1,
                                                          .tiling_mode = row.tiling_mode}))
      << describe(row.request);
  EXPECT_THAT(gpu.take_messages(),
              ElementsAre(message(kMinimal, row.text), message(kFull, row.text)));
}

TEST(InBytes, NegativeSizesAreLoggedByBothCalls) {
  for (const uint32_t family : kFamilies) {
    harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const NegativeRow& row : kNegative) expect_refused_twice(gpu, row);
  }
}

struct KeptRow {
  Request request;
  uint32_t row_bytes;  // of the width as it is, by both alignments
};

constexpr KeptRow kKept[] = {
    // Narrow, and still tiled: 5 x 4.
    {.request = {.width_el = 5, .height_rows = 7}, .row_bytes = 20},
    // Tiled, samples count: 5 x 4 x 4. Linear they do not: 5 x 4.
    {.request = {.width_el = 5, .height_rows = 7, .samples = 4}, .row_bytes = 80},
    {.request = {.width_el = 5, .height_rows = 7, .samples = 4, .tiling_mode = kLinear},
     .row_bytes = 20},
    // 3 bytes count as 4: 5 x 4.
    {.request = {.width_el = 5, .height_rows = 7, .format = kBytes3, .tiling_mode = 2},
     .row_bytes = 20},
    // A plane that the format lacks: no rule divides by its 0 bytes. 100 x 4.
    {.request = {.width_el = 100, .height_rows = 7, .plane = 2, .tiling_mode = kLinear},
     .row_bytes = 400},
};

TEST(InBytes, ChipsWithoutRulesKeepSizeAndMode) {
  for (const uint32_t chip : {unsupported_chip().chip_id, harness::kUnknownChip}) {
    harness::Gpu gpu(chip);
    identify(gpu);
    const std::string text = "Unknown Chip ID " + std::to_string(chip);
    for (const KeptRow& row : kKept) {
      EXPECT_NUMBERS(in_bytes(gpu, row.request),
                     (BytesAnswer{.minimal_row_bytes = row.row_bytes,
                                  .aligned_row_bytes = row.row_bytes,
                                  .height_rows = 7,
                                  .tiling_mode = row.request.tiling_mode}))
          << describe(row.request);
      EXPECT_THAT(gpu.take_messages(), ElementsAre(message(kMinimal, text), message(kFull, text)));
    }
    // A negative width does not change the mode here either: 1 x 4.
    expect_refused_twice(gpu, {.request = {.width_el = -1, .height_rows = 7},
                               .row_bytes = 4,
                               .tiling_mode = kTiled,
                               .text = "Invalid width or height: W = -1, H = 7"});
  }
}

TEST(InBytes, OnlyTheOutputsAreWritten) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  uint32_t tiling_mode = kTiled;
  uint32_t aligned_row_bytes = kCanary;
  uint32_t minimal_row_bytes = kCanary;
  uint32_t aligned_height = kCanary;
  const AlignInBytesParams params{.width = 100,
                                  .height = 10,
                                  .plane = 0,
                                  .format = kBytes4,
                                  .samples = 1,
                                  .selector = 1,
                                  .min_padded_row_bytes = 0,
                                  .tiling_mode = &tiling_mode};
  const AlignInBytesResult result{.aligned_row_bytes = &aligned_row_bytes,
                                  .minimal_row_bytes = &minimal_row_bytes,
                                  .aligned_height = &aligned_height};
  AlignInBytesParams params_after = params;
  AlignInBytesResult result_after = result;
  gpu->compute_fmt_aligned_width_and_height_in_bytes(&params_after, &result_after);
  EXPECT_EQ(std::memcmp(&params_after, &params, sizeof params), 0);
  EXPECT_EQ(std::memcmp(&result_after, &result, sizeof result), 0);
  // 100 -> 128 (64s), x 4; 10 -> 16 rows.
  EXPECT_NUMBER(aligned_row_bytes, 512);
  EXPECT_NUMBER(minimal_row_bytes, 512);
  EXPECT_NUMBER(aligned_height, 16);
}

void expect_fault(uint32_t family, const Request& r) {
  const uint32_t chip = harness::full_chip(family).chip_id;
  EXPECT_DIVISION_FAULT({
    const harness::Gpu gpu(chip);
    in_bytes(gpu, r);
  }) << describe(family, r);
}

TEST(InBytesDeathTest, PlanesOfNoBytesAreADivisorOf0) {
  for (const uint32_t family : kFamilies) {
    expect_fault(family, {.width_el = 100, .plane = 1, .tiling_mode = kLinear});
    expect_fault(family, {.width_el = 15, .plane = 1});  // tiled, but too narrow for it
  }
  expect_fault(5, {.width_el = 100, .plane = 1});  // family 5 divides by the size of an element
}

}  // namespace
}  // namespace align_test
