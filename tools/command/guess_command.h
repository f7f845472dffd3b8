// `guess`: which layouts come to a given number of bytes.
#pragma once

#include <optional>
#include <string>

namespace tool {

struct GuessOptions {
  std::string bytes;
  std::optional<std::string> format;  // lists and ranges, as all texts from here on
  std::optional<std::string> size;
  std::optional<std::string> chip;
  std::optional<std::string> samples;
  std::optional<std::string> levels;
  bool unknown_chip = false;  // an id without a row is meant as it is
  bool json = false;
};

// Returns the program's exit code: that of a refusal when nothing is found. Throws BadInput.
int guess(const GuessOptions& options);

}  // namespace tool
