// `check`: has the library validate a stored record.
#pragma once

#include <optional>
#include <string>

namespace tool {

struct CheckOptions {
  std::string file;
  std::string chip;
  bool unknown_chip = false;  // an id without a row is meant as it is
  std::optional<std::string> kind;
};

// Returns the program's exit code. Throws BadInput.
int check(const CheckOptions& options);

}  // namespace tool
