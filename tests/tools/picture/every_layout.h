// Layouts of all kinds: formats, modes, sizes, slices, planes, levels and flags.
#pragma once

#include <cstdint>
#include <iterator>
#include <optional>

#include "tests/tools/picture/pictured.h"
#include "tools/explanation/fault_forecast.h"

namespace picture_test {

// One in so many layouts: all of them where nothing slows calls down.
inline constexpr std::size_t kStride = KORVEL_PICTURE_STRIDE;

// Calls visit(request, picture) for each. Returns how many there were.
template <typename Visit>
std::size_t for_every_layout(Visit visit) {
  // 2: 16 bytes; 28: 4 bytes; 40: depth; 71: blocks; 103: two planes; 508: 3 bytes; 670: whole 64
  // rows.
  constexpr uint32_t kFormats[] = {2, 28, 40, 71, 103, 508, 670};
  constexpr tool::SurfaceSize kSizes[] = {
      {1, 1, 1},          {64, 16, 1},    {100, 60, 3},      {513, 300, 7},
      {1918, 1080, 1},    {65, 33, 2048}, {16384, 64, 40},   {33554432, 3, 5},
      {1, 0x7FFFFFFF, 1}, {16385, 12, 4}, {65536, 65536, 2}, {0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF}};
  constexpr uint64_t kFlags[] = {0, LAYOUT_FLAG_UBWC,
                                 LAYOUT_FLAG_UBWC | LAYOUT_FLAG_EXTRA | LAYOUT_FLAG_EXTENDED};
  std::size_t number = 0;
  std::size_t layouts = 0;
  for (const uint32_t family : {5U, 6U, 7U}) {
    const korvel::ChipRow& chip = tool_test::row_of(harness::full_chip(family).chip_id);
    harness::Gpu gpu(chip.chip_id);
    for (const uint32_t format : kFormats) {
      for (const uint32_t tiling_mode : {KORVEL_TILING_LINEAR, KORVEL_TILING_TILED}) {
        if (format == 40 && tiling_mode == KORVEL_TILING_LINEAR) continue;  // depth is never linear
        for (std::size_t i = 0; i < std::size(kSizes); ++i) {
          for (const std::optional<uint32_t> levels :
               {std::optional<uint32_t>(), std::optional<uint32_t>(2),
                std::optional<uint32_t>(15)}) {
            tool::SurfaceRequest request = request_of(
                format, kSizes[i], kFlags[(i + format) % std::size(kFlags)], tiling_mode);
            request.levels = levels;
            if (i % 5 == 2) request.planes = 3;
            if (!tool::forecast_fault(chip, request).empty()) continue;
            if (number++ % kStride != 0) continue;
            visit(request, pictured(gpu, chip, request));
            if (testing::Test::HasFatalFailure()) return layouts;
            ++layouts;
          }
        }
      }
      gpu.take_messages();
    }
  }
  return layouts;
}

// 3 families x 13 formats and modes x 12 sizes x 3 chains, but for those that fault.
inline constexpr std::size_t kLeastLayouts = 1300 / kStride;

}  // namespace picture_test
