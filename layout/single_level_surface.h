// The layout of a single-level surface, behind the two entries that make one.
#pragma once

#include "include/korvel_utils.h"
#include "layout/level_extent.h"
#include "layout/surface.h"

namespace korvel {

// Lays out every level that the record counts, at most 15, and at most 3 planes.
void lay_out_single_level_surface(const Surface& surface, LevelExtent size, MemoryLayout& record);

}  // namespace korvel
