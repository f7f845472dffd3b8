// Layouts by the exports of the built library, for requests of the program.
#pragma once

#include <cstring>

#include <korvel_utils.h>
#include "identify/chip_row.h"
#include "tests/harness/gpu.h"
#include "tools/request/surface_request.h"

namespace tool_test {

inline const korvel::ChipRow& row_of(uint32_t chip_id) {
  for (std::size_t i = korvel::kRowFirstChip; i < korvel::kChipRows.size(); ++i) {
    if (korvel::kChipRows[i].chip_id == chip_id) return korvel::kChipRows[i];
  }
  return korvel::kChipRows[korvel::kRowUnknownChip];
}

// The answer of the exports, as the program asks for it. False for a request that they refuse.
inline bool lay_out(harness::Gpu& gpu, const tool::SurfaceRequest& request, LayoutMetadata& blob) {
  std::memset(&blob, 0, sizeof blob);
  const auto& size = request.size;
  const uint32_t status = gpu->korvel_init_memory_layout(
      &blob, size.width, size.height, size.depth, request.format, request.samples,
      request.tiling_mode, request.flags, request.planes);
  if (status != KORVEL_SUCCESS || !request.levels) return status == KORVEL_SUCCESS;
  std::memset(blob.layout.level, 0, sizeof blob.layout.level);
  blob.layout.levels = *request.levels;
  gpu->korvel_init_multi_level_surface(&blob.layout, static_cast<uint32_t>(size.width),
                                       static_cast<uint32_t>(size.height), size.depth,
                                       request.format, request.samples, request.tiling_mode,
                                       request.flags, request.planes);
  return true;
}

}  // namespace tool_test
