// `check`: has the library validate a stored record.
#pragma once

#include <optional>
#include <string>

namespace tool {

struct CheckOptions {
  std::string file;
  std::optional<std::string> chip;  // without it, the one that the record names
  bool unknown_chip = false;        // an id without a row is meant as it is
  std::optional<std::string> kind;
  bool json = false;
  bool strict = false;  // look further than the fixed rules, and make warnings the exit code 1
};

// Returns the program's exit code. Throws BadInput.
int check(const CheckOptions& options);

}  // namespace tool
