// A layout that comes from elsewhere, held against what the rules of a chip ask for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/explanation/explanation.h"
#include "tools/request/chip.h"
#include "tools/request/surface_request.h"

namespace tool {

// What is known of one plane; the first slice's, in a surface of one level.
struct ForeignPlane {
  std::optional<uint64_t> pitch_bytes = {};
  std::optional<uint64_t> height_rows = {};
  std::optional<uint64_t> offset_bytes = {};
  std::optional<uint64_t> size_bytes = {};
  std::optional<uint64_t> slice_pitch_bytes = {};
  std::optional<uint64_t> flag_pitch_bytes = {};
  std::optional<uint64_t> flag_offset_bytes = {};
  std::optional<uint64_t> flag_size_bytes = {};
};

// One number of a plane under the name that it has on the command line.
struct NumberName {
  const char* name;        // "pitch"
  const char* field_name;  // "image_pitch"
  std::optional<uint64_t> ForeignPlane::*member;
};
const std::vector<NumberName>& foreign_plane_names();

struct FittedNumber {
  std::string name;
  std::optional<uint64_t> given;
  Quantity nearest;  // that the rules accept, at least as large as what is given
  bool fits = true;  // what is not given fits
  std::string why;   // the rule in words
};

struct LayoutFit {
  std::vector<std::vector<FittedNumber>> planes;
  uint64_t allocation_bytes = 0;  // of the nearest layout
  [[nodiscard]] bool fits() const;
};

// Of a request that the library lays out, without levels, and of as many planes.
LayoutFit fit_layout(const Chip& chip, const SurfaceRequest& request,
                     const std::vector<ForeignPlane>& planes);

}  // namespace tool
