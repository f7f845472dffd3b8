// `show`: lays out one surface and prints where everything lies.
#pragma once

#include <optional>
#include <string>

#include "tools/command/request_options.h"

namespace tool {

struct ShowOptions {
  RequestOptions request;
  std::optional<std::string> blob;
  std::optional<std::string> svg;   // a file, or "-" for standard output
  std::optional<std::string> html;  // the same
  bool json = false;
  bool force = false;
  bool strict = false;  // warnings make the exit code 1
};

// Returns the program's exit code. Throws BadInput.
int show(const ShowOptions& options);

}  // namespace tool
