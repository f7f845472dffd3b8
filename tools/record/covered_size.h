// How many elements and rows of an image hold something: what the library's rules hold against the
// image's bytes. A layout knows its aligned size alone.
#pragma once

#include <korvel_utils.h>

#include <cstdint>

namespace tool {

inline uint32_t covered_width_el(const PlaneLayout& plane) {
  return plane.image_width;
}
inline uint32_t covered_width_el(const SurfacePlane& plane) {
  return plane.actual_width;
}
inline uint32_t covered_rows(const PlaneLayout& plane) {
  return plane.image_height;
}
inline uint32_t covered_rows(const SurfacePlane& plane) {
  return plane.actual_height;
}

}  // namespace tool
