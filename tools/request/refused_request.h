// Requests that the library refuses, in words that say what is allowed.
#pragma once

#include <string>

#include "tools/request/surface_request.h"

namespace tool {

// By the checks of the library, in their order. Empty for a request that it lays out.
std::string refused_request(const SurfaceRequest& request);

}  // namespace tool
