// `formats`: the format table, and what a chip can do with each format.
#pragma once

#include <optional>
#include <string>

namespace tool {

struct FormatsOptions {
  std::optional<std::string> chip;
  bool unknown_chip = false;  // an id without a row is meant as it is
  bool all = false;           // unused ids too
  bool json = false;
};

// Returns the program's exit code. Throws BadInput.
int list_formats(const FormatsOptions& options);

}  // namespace tool
