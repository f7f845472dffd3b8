// The inputs of the raw records' target: one byte that says how to read the rest, then the record's
// own bytes. What is missing of a record is 0.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fuzz {

inline constexpr uint8_t kSurfaceBit = 1;  // of the first byte: a surface record, else a resource's
inline constexpr uint32_t kPlaceShift = 1;

constexpr bool is_surface_input(uint8_t first) {
  return (first & kSurfaceBit) != 0;
}

constexpr std::size_t place_of(uint8_t first) {
  return first >> kPlaceShift;
}

}  // namespace fuzz
