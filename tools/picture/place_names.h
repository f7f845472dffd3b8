// How pictures name what belongs to a level, a plane and a slice.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "tools/picture/memory_map.h"
#include "tools/picture/plane_image.h"

namespace tool {

// Which of the three a surface has more than one of; what it has one of is not named.
struct NamedPlaces {
  bool levels = false;
  bool planes = false;
  bool slices = false;
};

NamedPlaces named_places(std::span<const PlaneImage> images);

// "level 2, plane 0"; empty where there is but one of each.
std::string place_name(NamedPlaces named, uint32_t level, uint32_t plane);

// "level 2, plane 0, slice 3: flag buffer"
std::string buffer_name(NamedPlaces named, const BufferSlice& buffer);

// "S3 P0 L2": the same in the least space; empty where there is but one of each.
std::string short_place_name(NamedPlaces named, const BufferSlice& buffer);

}  // namespace tool
