// `diff`: what differs between two layouts, and where they part.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/command/request_options.h"

namespace tool {

struct DiffOptions {
  std::vector<std::string> files;  // blobs and records, at most two
  std::optional<std::string> kind;
  RequestOptions common;         // of both sides that are requests
  std::optional<std::string> a;  // further options of one side
  std::optional<std::string> b;
  bool json = false;
};

// Returns the program's exit code: that of a refusal when the two differ. Throws BadInput.
int diff(const DiffOptions& options);

}  // namespace tool
