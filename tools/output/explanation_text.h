// An explanation as text for people.
#pragma once

#include <string>
#include <string_view>

#include "tools/explanation/explanation.h"
#include "tools/request/chip.h"
#include "tools/request/surface_request.h"

namespace tool {

// Broken between words so that lines end at column 100 where they can, each behind a margin of so
// many blanks, and each with its line end.
std::string wrapped_lines(std::string_view text, std::size_t margin);

std::string explanation_text(const Chip& chip, const SurfaceRequest& request,
                             const Explanation& explanation);

}  // namespace tool
