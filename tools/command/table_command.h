// `table`: what many surfaces cost, a row each.
#pragma once

#include <optional>
#include <string>

namespace tool {

struct TableOptions {
  std::string format;  // lists and ranges, as all texts here
  std::string size;
  std::optional<std::string> chip;
  std::optional<std::string> samples;
  std::optional<std::string> levels;
  std::optional<std::string> linear;  // empty: linear alone; "both"
  std::optional<std::string> ubwc;    // empty: with flag buffers alone; "both"
  bool extra = false;
  bool extended = false;
  bool unknown_chip = false;  // an id without a row is meant as it is
  std::optional<std::string> sort;
  bool reverse = false;
  bool csv = false;
  bool json = false;
  bool strict = false;  // warnings make the exit code 1
};

// Returns the program's exit code. Throws BadInput.
int table(const TableOptions& options);

}  // namespace tool
