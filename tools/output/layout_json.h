// A laid-out blob as JSON, under the names of its records' fields.
#pragma once

#include <nlohmann/json.hpp>

#include <korvel_utils.h>
#include "tools/request/chip.h"
#include "tools/request/surface_request.h"

namespace tool {

nlohmann::ordered_json chip_json(const Chip& chip);
nlohmann::ordered_json request_json(const SurfaceRequest& request);

nlohmann::ordered_json layout_json(const Chip& chip, const SurfaceRequest& request,
                                   const LayoutMetadata& blob);

}  // namespace tool
