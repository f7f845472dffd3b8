// Whether a foreign layout fits, as text for people and as JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "tools/comparison/layout_fit.h"

namespace tool {

std::string fit_text(const Chip& chip, const SurfaceRequest& request, const LayoutFit& fit);
nlohmann::ordered_json fit_json(const Chip& chip, const SurfaceRequest& request,
                                const LayoutFit& fit);

}  // namespace tool
