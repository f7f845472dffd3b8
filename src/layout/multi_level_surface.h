// The layout of a mip chain.
#pragma once

#include <korvel_utils.h>
#include <limits>
#include "layout/level_extent.h"
#include "layout/surface.h"

namespace korvel {

// No row of a chain is pitch-padded, and its linear widths are aligned in bytes.
constexpr Surface describe_multi_level_surface(const ChipRow& chip, const SurfaceRequest& request,
                                               const FormatTraits& format) {
  return describe_surface(chip, request, format, std::numeric_limits<int32_t>::max(),
                          format.bytes * request.samples);
}

// Lays out every level that the record counts, at most 15, and at most 3 planes. `size` in texels.
void lay_out_multi_level_surface(const Surface& surface, LevelExtent size, MemoryLayout& record);

}  // namespace korvel
