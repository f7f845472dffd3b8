// One side of a comparison: a stored record, or a request with its layout.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/explanation/explanation.h"
#include "tools/record/stored_field.h"
#include "tools/request/chip.h"
#include "tools/request/surface_request.h"

namespace tool {

struct AskedLayout {
  Chip chip;
  SurfaceRequest request;
  Explanation explanation;
};

struct ComparedSide {
  std::string label;
  const RecordFields* fields = &kLayoutFields;
  std::vector<unsigned char> header;  // of a blob; else empty
  std::vector<unsigned char> record;  // its bytes in use
  std::optional<AskedLayout> asked;   // of a request

  [[nodiscard]] bool is_surface_record() const { return fields == &kSurfaceFields; }
};

}  // namespace tool
