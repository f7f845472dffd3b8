// The layout of a mip chain.
#pragma once

#include "include/korvel_utils.h"
#include "layout/level_extent.h"
#include "layout/surface.h"

namespace korvel {

// Lays out every level that the record counts, at most 15, and at most 3 planes. `size` in texels.
void lay_out_multi_level_surface(const Surface& surface, LevelExtent size, MemoryLayout& record);

}  // namespace korvel
