// The size of a surface as text: 1920x1080, or 1920x1080x6 with its slices.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tool {

struct SurfaceSize {
  int32_t width = 1;   // texels
  int32_t height = 1;  // texels
  int32_t depth = 1;   // array slices or depth
};

// Levels until both sides have 1 texel.
uint32_t levels_of(const SurfaceSize& size);

// Throws BadInput. Sizes below 1 pass: the library has its own words for them.
SurfaceSize parse_surface_size(std::string_view text);

// As it is parsed; a depth of 1 is left out.
std::string surface_size_text(const SurfaceSize& size);

}  // namespace tool
