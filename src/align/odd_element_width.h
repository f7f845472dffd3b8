// Linear widths of elements whose size is no power of two.
#pragma once

#include <cstdint>

namespace korvel {

// Rows take whole units of 64 elements in both the element size and that of the substitute. `bytes`
// and `substitute_bytes` are element sizes, neither 0; `width` in elements. Signed, and final: such
// rows are neither padded nor limited.
constexpr uint32_t odd_element_width(uint32_t width, uint32_t bytes, uint32_t substitute_bytes) {
  const uint32_t unit = substitute_bytes * bytes * 64;
  const auto signed_unit = static_cast<int32_t>(unit);
  const int32_t units = static_cast<int32_t>(width * bytes + unit - 1) / signed_unit;
  const auto row_bytes = static_cast<int32_t>(static_cast<uint32_t>(units) * unit);
  return static_cast<uint32_t>(row_bytes / static_cast<int32_t>(bytes));
}

}  // namespace korvel
