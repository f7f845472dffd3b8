// The whole way from a request to the numbers of its layout.
#pragma once

#include "identify/chip_row.h"
#include "layout/surface.h"
#include "tools/explanation/explanation.h"
#include "tools/request/surface_request.h"

namespace tool {

// The library's own description of what is asked for. The chip must outlive it.
korvel::Surface described_request(const korvel::ChipRow& chip, const SurfaceRequest& request);

// Of requests that the library lays out. The steps are the library's own functions, in its order.
Explanation explain_surface(const korvel::ChipRow& chip, const SurfaceRequest& request);

}  // namespace tool
