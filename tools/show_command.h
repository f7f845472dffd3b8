// `show`: lays out one surface and prints where everything lies.
#pragma once

#include <optional>
#include <string>

namespace tool {

// Texts as the user gave them.
struct ShowOptions {
  std::string format;
  std::string size;
  std::optional<std::string> chip;
  std::optional<std::string> samples;
  std::optional<std::string> planes;
  std::optional<std::string> levels;
  std::optional<std::string> blob;
  bool linear = false;
  bool ubwc = false;
  bool extra = false;
  bool extended = false;
  bool json = false;
  bool force = false;
};

// Returns the program's exit code. Throws BadInput.
int show(const ShowOptions& options);

}  // namespace tool
