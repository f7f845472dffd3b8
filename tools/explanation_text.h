// An explanation as text for people.
#pragma once

#include <string>

#include "tools/explanation.h"
#include "tools/simulated_chip.h"
#include "tools/surface_request.h"

namespace tool {

std::string explanation_text(const SimulatedChip& chip, const SurfaceRequest& request,
                             const Explanation& explanation);

}  // namespace tool
