// Surfaces laid out by the library itself.
#pragma once

#include <korvel_utils.h>
#include "tools/simulated_chip.h"
#include "tools/surface_request.h"

namespace tool {

// Throws BadInput when the library refuses the request or would fault on it. The library's other
// diagnostics become warnings. Words that the library does not write are 0.
LayoutMetadata lay_out(const SimulatedChip& chip, const SurfaceRequest& request);

}  // namespace tool
