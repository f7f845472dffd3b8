// Where two explanations part: the first step that comes to another number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "tools/explanation/explanation.h"

namespace tool {

// A step by its place in the list of its explanation.
struct Parting {
  std::string field;  // the first one that differs, in the order of the steps
  std::optional<std::size_t> a;
  std::optional<std::size_t> b;
};

// None when both come to the same numbers in every field. Where the way to the field is shorter in
// one of them, its last step stands against the other's first further one; a side without the field
// has no step.
std::optional<Parting> parting(const Explanation& a, const Explanation& b);

// The step of an explanation that first comes to another number than a stored record has, in `a`.
std::optional<Parting> parting_from_record(const Explanation& a,
                                           std::span<const unsigned char> layout_record);

}  // namespace tool
