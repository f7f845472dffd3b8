// Surfaces laid out by the library itself.
#pragma once

#include <string>
#include <vector>

#include <korvel_utils.h>
#include "tools/request/chip.h"
#include "tools/request/surface_request.h"

namespace tool {

struct LaidOutSurface {
  LayoutMetadata blob;                // words that the library does not write are 0
  std::vector<std::string> messages;  // what the library said about it, each text once
};

// Throws BadInput when the library refuses the request or would fault on it.
LaidOutSurface lay_out(const Chip& chip, const SurfaceRequest& request);

}  // namespace tool
