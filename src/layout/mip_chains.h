// The layout of a surface with mip levels: each plane's levels form one chain, and an array slice
// is a whole chain.
#pragma once

#include <korvel_utils.h>

#include <cstdint>

#include "layout/surface.h"

namespace korvel {

// At most 15 levels and 3 planes.
void lay_out_mip_chains(const Surface& surface, uint32_t levels, MemoryLayout& record);

}  // namespace korvel
