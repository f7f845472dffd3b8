// `check`: has the library validate a stored record.
#pragma once

#include <optional>
#include <string>

#include "tools/command/stored_file_options.h"

namespace tool {

struct CheckOptions {
  StoredFileOptions stored;
  std::optional<std::string> chip;  // without it, the one that the record names
  bool unknown_chip = false;        // an id without a row is meant as it is
  bool json = false;
  bool strict = false;  // look further than the fixed rules, and make warnings the exit code 1
};

// Returns the program's exit code. Throws BadInput.
int check(const CheckOptions& options);

}  // namespace tool
