// `dump`: a stored record field by field.
#pragma once

#include <optional>
#include <string>

namespace tool {

struct DumpOptions {
  std::string file;
  std::optional<std::string> kind;
  bool all = false;  // what is not in use too
};

// Returns the program's exit code. Throws BadInput.
int dump(const DumpOptions& options);

}  // namespace tool
