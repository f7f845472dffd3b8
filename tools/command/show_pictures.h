// The pictures that `show` makes.
#pragma once

#include <korvel_utils.h>
#include <string>
#include <vector>

#include "tools/command/show_command.h"
#include "tools/request/chip.h"
#include "tools/request/surface_request.h"

namespace tool {

// A picture takes the place of the tables on standard output.
bool prints_picture(const ShowOptions& options);

// Writes the pictures that the options ask for. Throws BadInput.
void write_pictures(const ShowOptions& options, const Chip& chip, const SurfaceRequest& request,
                    const LayoutMetadata& blob, const std::vector<std::string>& warnings);

}  // namespace tool
