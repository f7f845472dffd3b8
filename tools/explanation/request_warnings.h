// What a user should know about a request beside the numbers of its layout.
#pragma once

#include <string>
#include <vector>

#include "tools/explanation/explanation.h"
#include "tools/request/chip.h"
#include "tools/request/surface_request.h"

namespace tool {

// A sentence for each: a chip that the library does not know, planes and levels that the format or
// the size does not have, numbers that wrapped, and rows that were cut.
std::vector<std::string> request_warnings(const Chip& chip, const SurfaceRequest& request,
                                          const Explanation& explanation);

// "level 0, plane 1, "; empty for the whole surface.
std::string place_words(const Place& place);

}  // namespace tool
