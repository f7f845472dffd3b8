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

struct Answer {
  uint32_t minimal = kCanary;
  uint32_t aligned = kCanary;
  uint32_t height = kCanary;
  uint32_t mode = kCanary;

  friend bool operator==(const Answer&, const Answer&) = default;
  friend void PrintTo(const Answer& a, std::ostream* out) {
    *out << a.minimal << " and " << a.aligned << " bytes, " << a.height << " rows, mode " << a.mode;
  }
};

Answer in_bytes(const harness::Gpu& gpu, const Request& r) {
  Answer answer;
  answer.mode = r.mode;
  const AlignInBytesParams params{r.width,   r.height,   r.plane,      r.format,
                                  r.samples, r.selector, r.min_padded, &answer.mode};
  const AlignInBytesResult result{&answer.aligned, &answer.minimal, &answer.height};
  gpu->compute_fmt_aligned_width_and_height_in_bytes(&params, &result);
  return answer;
}

struct Row {
  Request request;
  Answer family5;
  Answer family67;
};

// Minimal width x bytes, aligned width x bytes, height, mode.
const Row kRows[] = {
    // Tiled: whole tiles both times, but for family 5's minimal rows of 256 bytes.
    {{.width = 100, .height = 10}, {512, 512, 16, 1}, {512, 512, 16, 1}},
    {{.width = 65, .height = 10, .format = kBytes8},
     {96 * 8, 128 * 8, 16, 1},
     {96 * 8, 96 * 8, 16, 1}},
    // The bytes of an element with its samples: 4 x 4, tiles of 16 (256 bytes on 5).
    {{.width = 33, .height = 10, .samples = 4},
     {48 * 16, 64 * 16, 16, 1},
     {48 * 16, 48 * 16, 16, 1}},
    // Linear: room for a tile of 64; samples are not counted.
    {{.width = 65, .height = 10, .mode = kLinear},
     {128 * 4, 128 * 4, 10, 0},
     {128 * 4, 128 * 4, 10, 0}},
    {{.width = 65, .height = 10, .samples = 4, .mode = kLinear},
     {128 * 4, 128 * 4, 10, 0},  // 4 x 16 x 4 / 4 = 64
     {128 * 4, 128 * 4, 10, 0}},
    {{.width = 65, .height = 10, .mode = 2}, {512, 512, 10, 2}, {512, 512, 10, 2}},
    // Rows of 2048 bytes become 3072, unless they are allowed.
    {{.width = 500, .mode = kLinear}, {3072, 3072, 1, 0}, {3072, 3072, 1, 0}},
    {{.width = 500, .mode = kLinear, .selector = 2, .min_padded = 2048},
     {2048, 2048, 1, 0},
     {2048, 2048, 1, 0}},
    // Below 16 elements the surface becomes linear: 64 / 4 = 16 elements against 64.
    {{.width = 15, .height = 10, .min_padded = kNeverPad}, {64, 256, 10, 0}, {64, 256, 10, 0}},
    {{.width = 15, .height = 10}, {256, 256, 10, 0}, {256, 256, 10, 0}},  // both padded to 64
    {{.width = 16, .height = 10}, {256, 256, 16, 1}, {256, 256, 16, 1}},
    {{.width = 15, .height = 10, .mode = 2, .min_padded = kNeverPad},
     {64, 256, 10, 0},
     {64, 256, 10, 0}},
    {{.width = 0, .height = 10, .min_padded = kNeverPad}, {0, 256, 10, 0}, {0, 0, 10, 0}},
    // Without tiling the samples are not counted: 4 x 4 x 4 = 64 / 4 = 16 elements of 4 bytes.
    {{.width = 15, .height = 10, .samples = 4, .min_padded = kNeverPad},
     {64, 256, 10, 0},
     {64, 256, 10, 0}},
    // Blocks: below 16 x the block width.
    {{.width = 63, .height = 10, .format = kBc1}, {64 * 8, 64 * 8, 10, 0}, {64 * 8, 64 * 8, 10, 0}},
    {{.width = 60, .height = 10, .format = kBc1}, {64 * 8, 64 * 8, 10, 0}, {64 * 8, 64 * 8, 10, 0}},
    {{.width = 33, .height = 10, .format = kBc1}, {40 * 8, 64 * 8, 10, 0}, {40 * 8, 64 * 8, 10, 0}},
    {{.width = 64, .height = 10, .format = kBc1}, {64 * 8, 64 * 8, 16, 1}, {64 * 8, 64 * 8, 16, 1}},
    {{.width = 191, .height = 3, .format = 186},
     {192 * 16, 192 * 16, 3, 0},
     {192 * 16, 192 * 16, 3, 0}},
    {{.width = 192, .height = 3, .format = 186},
     {192 * 16, 192 * 16, 16, 1},
     {192 * 16, 192 * 16, 16, 1}},
    // Three texels an element, but no block-compressed format: below 16.
    {{.width = 15, .height = 3, .format = 654}, {16 * 4, 64 * 4, 3, 0}, {16 * 4, 64 * 4, 3, 0}},
    {{.width = 16, .height = 3, .format = 654}, {64 * 4, 64 * 4, 16, 1}, {64 * 4, 64 * 4, 16, 1}},
    // Odd sizes: bytes of the 4-byte substitute, divisor 3. 256 / 3 = 85: (100 + 84) & -85 = 168,
    // to rows of 256 elements.
    {{.width = 100, .height = 3, .format = kBytes3, .mode = kLinear},
     {1024, 1024, 3, 0},
     {1024, 1024, 3, 0}},
    {{.width = 65, .height = 3, .format = kBytes3}, {512, 512, 16, 1}, {512, 512, 16, 1}},
    // Planes: the divisor is the plane's element size, the bytes are those of the format. 103, 1:
    // 128 / 2 = 64 elements of 1 byte.
    {{.width = 65, .height = 3, .plane = 1, .format = 103, .mode = kLinear},
     {128, 128, 3, 0},
     {128, 128, 3, 0}},
    {{.width = 65, .height = 3, .plane = 1, .format = 103}, {128, 128, 32, 1}, {128, 128, 32, 1}},
    {{.width = 15, .height = 3, .plane = 1, .format = 103}, {32, 64, 3, 0}, {32, 64, 3, 0}},
    {{.width = 65, .height = 65, .format = 670, .mode = kLinear, .min_padded = kNeverPad},
     {128, 128, 128, 0},
     {128, 128, 128, 0}},
    // Numbers without a record: one byte.
    {{.width = 100, .height = 3, .format = kFourCC}, {128, 128, 32, 1}, {128, 128, 32, 1}},
    {{.width = 100, .height = 3, .format = 722, .mode = kLinear},
     {128, 128, 3, 0},
     {128, 128, 3, 0}},
    // The largest widths are wide, not negative: 0x80000000 elements of one byte.
    {{.width = INT_MAX, .height = 3, .format = kBytes1},
     {0x80000000, 0x80000000, 32, 1},
     {0x80000000, 0x80000000, 32, 1}},
};

TEST(InBytes, BothAlignments) {
  for (const uint32_t family : kFamilies) {
    harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const Row& row : kRows) {
      EXPECT_EQ(in_bytes(gpu, row.request), family == 5 ? row.family5 : row.family67)
          << family << ": " << describe(row.request);
    }
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

TEST(InBytes, ATiledPlaneThatTheFormatLacksNeedsNoDivisorOnFamilies6And7) {
  for (const uint32_t family : {6u, 7u}) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    EXPECT_EQ(in_bytes(gpu, {.width = 65, .height = 3, .plane = 1}), (Answer{512, 512, 16, 1}));
  }
}

TEST(InBytes, ExtraPaddingIsNotAskedFor) {
  const harness::ChipData& chip =
      harness::chip_where("padded extra", [](const harness::ChipData& c) {
        return c.family_id == 6 && c.supported && harness::model_of(c).padding_g == 1;
      });
  const harness::Gpu gpu(chip.chip_id);
  EXPECT_EQ(in_bytes(gpu, {.width = 64, .height = 16}), (Answer{256, 256, 16, 1}));
}

TEST(InBytes, NegativeSizesAreLoggedByBothCalls) {
  for (const uint32_t family : kFamilies) {
    harness::Gpu gpu(harness::full_chip(family).chip_id);
    // A negative width is below 16 and clears the mode; then samples are not counted.
    EXPECT_EQ(in_bytes(gpu, {.width = -1, .height = 5, .samples = 4}), (Answer{4, 4, 1, 0}));
    EXPECT_THAT(gpu.take_messages(),
                ElementsAre(message(kMinimal, "Invalid width or height: W = -1, H = 5"),
                            message(kFull, "Invalid width or height: W = -1, H = 5")));
    EXPECT_EQ(in_bytes(gpu, {.width = INT_MIN, .height = 5, .format = kBc1}), (Answer{8, 8, 1, 0}));
    EXPECT_THAT(gpu.take_messages(),
                ElementsAre(message(kMinimal, "Invalid width or height: W = -2147483648, H = 5"),
                            message(kFull, "Invalid width or height: W = -2147483648, H = 5")));
    // A negative height leaves the mode.
    EXPECT_EQ(in_bytes(gpu, {.width = 100, .height = -5, .samples = 4}), (Answer{16, 16, 1, 1}));
    EXPECT_THAT(gpu.take_messages(),
                ElementsAre(message(kMinimal, "Invalid width or height: W = 100, H = -5"),
                            message(kFull, "Invalid width or height: W = 100, H = -5")));
  }
}

TEST(InBytes, ChipsWithoutRulesKeepSizeAndMode) {
  for (const uint32_t chip : {unsupported_chip().chip_id, harness::kUnknownChip}) {
    harness::Gpu gpu(chip);
    (void)gpu->get_gpu_pixel_alignment();
    (void)gpu.take_messages();
    const std::string text = "Unknown Chip ID " + std::to_string(chip);
    struct {
      Request request;
      Answer expected;
    } const rows[] = {
        {{.width = 5, .height = 7}, {20, 20, 7, 1}},  // narrow, and still tiled
        {{.width = 5, .height = 7, .samples = 4}, {80, 80, 7, 1}},
        {{.width = 5, .height = 7, .samples = 4, .mode = kLinear}, {20, 20, 7, 0}},
        {{.width = 5, .height = 7, .format = kBytes3, .mode = 2}, {20, 20, 7, 2}},
        {{.width = 100, .height = 7, .plane = 2, .mode = kLinear}, {400, 400, 7, 0}},
    };
    for (const auto& row : rows) {
      EXPECT_EQ(in_bytes(gpu, row.request), row.expected) << describe(row.request);
      EXPECT_THAT(gpu.take_messages(), ElementsAre(message(kMinimal, text), message(kFull, text)));
    }
    // A negative width does not change the mode here either.
    EXPECT_EQ(in_bytes(gpu, {.width = -1, .height = 7}), (Answer{4, 4, 1, 1}));
    EXPECT_THAT(gpu.take_messages(),
                ElementsAre(message(kMinimal, "Invalid width or height: W = -1, H = 7"),
                            message(kFull, "Invalid width or height: W = -1, H = 7")));
  }
}

TEST(InBytes, OnlyTheOutputsAreWritten) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  uint32_t mode = kTiled;
  uint32_t outputs[3] = {};
  const AlignInBytesParams params{100, 10, 0, kBytes4, 1, 1, 0, &mode};
  const AlignInBytesResult result{&outputs[0], &outputs[1], &outputs[2]};
  AlignInBytesParams params_after = params;
  AlignInBytesResult result_after = result;
  gpu->compute_fmt_aligned_width_and_height_in_bytes(&params_after, &result_after);
  EXPECT_EQ(std::memcmp(&params_after, &params, sizeof params), 0);
  EXPECT_EQ(std::memcmp(&result_after, &result, sizeof result), 0);
  EXPECT_THAT(outputs, ElementsAre(512u, 512u, 16u));
}

TEST(InBytesDeathTest, PlanesOfNoBytesAreTheDivisor) {
  for (const uint32_t family : kFamilies) {
    const uint32_t chip = harness::full_chip(family).chip_id;
    EXPECT_DIVISION_FAULT({
      const harness::Gpu gpu(chip);
      in_bytes(gpu, {.width = 100, .plane = 1, .mode = kLinear});
    });
    EXPECT_DIVISION_FAULT({  // tiled, but too narrow for it
      const harness::Gpu gpu(chip);
      in_bytes(gpu, {.width = 15, .plane = 1});
    });
  }
  const uint32_t chip = harness::full_chip(5).chip_id;
  EXPECT_DIVISION_FAULT({
    const harness::Gpu gpu(chip);
    in_bytes(gpu, {.width = 100, .plane = 1});
  });
}

}  // namespace
}  // namespace align_test
