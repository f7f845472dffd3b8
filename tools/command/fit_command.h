// `fit`: whether a layout that comes from elsewhere is one that a chip can use.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/command/request_options.h"

namespace tool {

struct FitOptions {
  RequestOptions request;
  std::vector<std::string> planes;    // "pitch=7680,height=1080"
  std::optional<std::string> layout;  // a JSON file with them
  bool json = false;
};

// Returns the program's exit code: that of a refusal when it does not fit. Throws BadInput.
int fit(const FitOptions& options);

}  // namespace tool
