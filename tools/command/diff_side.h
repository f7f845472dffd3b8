// The sides of a comparison as users name them.
#pragma once

#include <optional>
#include <string>

#include "tools/command/request_options.h"
#include "tools/comparison/compared_side.h"

namespace tool {

// Throws BadInput.
ComparedSide side_of_file(const std::string& path, const std::optional<std::string>& kind);

// For any chip. Throws BadInput when there is no layout of the request.
ComparedSide side_of_request(const RequestOptions& options);

}  // namespace tool
