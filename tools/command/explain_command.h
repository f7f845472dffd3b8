// `explain`: how each number of a surface's layout comes about.
#pragma once

#include <optional>
#include <string>

#include "tools/command/request_options.h"

namespace tool {

struct ExplainOptions {
  RequestOptions request;
  std::optional<std::string> field;  // this one alone, as "level[0].plane[0].image_pitch"
  bool json = false;
  bool strict = false;  // warnings make the exit code 1
};

// Returns the program's exit code. Throws BadInput.
int explain(const ExplainOptions& options);

}  // namespace tool
