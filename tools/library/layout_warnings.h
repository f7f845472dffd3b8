// What a user should know about a layout beside its numbers.
#pragma once

#include <string>
#include <vector>

#include "tools/library/surface_layout.h"
#include "tools/request/chip.h"
#include "tools/request/surface_request.h"

namespace tool {

// A sentence for each: the library's own messages, a chip that it does not know, planes and levels
// that the format or the size does not have, numbers that wrapped, rows that were cut, and the
// verdict of the library's validator on the layout. None for a layout that is as it should be.
std::vector<std::string> layout_warnings(const Chip& chip, const SurfaceRequest& request,
                                         const LaidOutSurface& laid_out);

}  // namespace tool
