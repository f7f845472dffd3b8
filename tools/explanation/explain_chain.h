// The steps of a mip chain: the size of every level of a plane, then where its levels lie.
#pragma once

#include "layout/surface.h"
#include "tools/explanation/step_writer.h"
#include "tools/request/surface_request.h"

namespace tool {

// All planes of a chain of one level or more. Returns where all of their slices end.
Number explain_chain(StepWriter& steps, const korvel::Surface& surface,
                     const SurfaceRequest& request);

}  // namespace tool
