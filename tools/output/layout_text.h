// A laid-out blob as text for people.
#pragma once

#include <string>

#include <korvel_utils.h>
#include "tools/request/chip.h"
#include "tools/request/surface_request.h"

namespace tool {

std::string layout_text(const Chip& chip, const SurfaceRequest& request,
                        const LayoutMetadata& blob);

// The words of levels and planes alone, and the totals.
std::string layout_tables(const LayoutMetadata& blob);

}  // namespace tool
