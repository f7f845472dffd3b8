// Requests on which the library would fault with a division by 0.
#pragma once

#include <string>

#include "identify/chip_row.h"
#include "tools/request/surface_request.h"

namespace tool {

// Why the library would fault; empty when it would not. For requests that pass the library's own
// checks. Nothing else can fault there: every format has an element size, samples are 1, 2, 4 or 8,
// so the element size that divides a chain's linear alignment is never 0.
std::string forecast_fault(const korvel::ChipRow& chip, const SurfaceRequest& request);

}  // namespace tool
