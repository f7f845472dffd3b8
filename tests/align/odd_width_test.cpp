// Rows of 3-byte elements that are one byte longer than whole units: only a step that is no power of
// two brings a width there.
#include "tests/align/align_calls.h"

namespace align_test {
namespace {

constexpr uint32_t k3ByteFormats[] = {508, 510, 513, 516, 521, 549, 623, 624};

// Counted as 4 bytes, 0x3FFFFF40 samples take 0xFFFFFD00 bytes, whole units of 64. That by the divisor 3
// is a step of 0x55555455 elements, and rounding up by mask
//
//   (width + 0x55555454) & 0xAAAAABAB
//
// A unit of the row is 64 x 3 x 4 = 768 bytes, 256 elements.
struct Row {
  int32_t width_el;
  uint32_t expected_el;
};
constexpr Row kRows[] = {
    // Rounded 0xAAAAABAA. By 3 bytes 0x2'000002FE, in 32 bits 766: one unit.
    {.width_el = 0x55555756, .expected_el = 256},
    // Rounded 0xAAAAABAB. By 3 bytes 0x2'00000301, in 32 bits 769, one byte beyond a unit: two.
    {.width_el = 0x55555757, .expected_el = 512},
};

TEST(OddWidth, OneByteBeyondAUnitTakesAnother) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const Row& row : kRows) {
      for (const uint32_t format : k3ByteFormats) {
        const Request r{.width_el = row.width_el,
                        .format = format,
                        .samples = 0x3FFFFF40,
                        .tiling_mode = kLinear,
                        .divisor = 3};
        EXPECT_NUMBER(minimal(gpu, r).width_el, row.expected_el) << describe(family, r);
        // Family 5 has no steps by divisor in its other entries.
        if (family == 5) continue;
        EXPECT_NUMBER(fdm(gpu, r).width_el, row.expected_el) << describe(family, r);
      }
    }
  }
}

}  // namespace
}  // namespace align_test
