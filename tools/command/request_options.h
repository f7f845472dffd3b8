// The options that say which surface is meant, as the user gave them.
#pragma once

#include <optional>
#include <string>

#include "tools/request/surface_request.h"

namespace tool {

struct RequestOptions {
  std::string format;
  std::string size;
  std::optional<std::string> chip;
  bool unknown_chip = false;  // an id without a row is meant as it is
  std::optional<std::string> samples;
  std::optional<std::string> planes;
  std::optional<std::string> levels;
  bool linear = false;
  bool ubwc = false;
  bool extra = false;
  bool extended = false;
};

// Throws BadInput for --extended without --extra.
void refuse_extended_alone(bool extended, bool extra);

// Throws BadInput.
SurfaceRequest request_of(const RequestOptions& options);

}  // namespace tool
