// What `show` lays out.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <korvel_utils.h>
#include "tools/request/surface_size.h"

namespace tool {

struct SurfaceRequest {
  uint32_t format = 0;
  SurfaceSize size;
  uint32_t samples = 1;
  uint32_t tiling_mode = KORVEL_TILING_TILED;
  uint64_t flags = 0;  // LAYOUT_FLAG_...
  uint32_t planes = 1;
  std::optional<uint32_t> levels;  // a mip chain of so many; without, the one-level entry
};

// The plane count of the format's own record.
uint32_t own_planes(uint32_t format);

// "R8G8B8A8_UNORM (28), 1920 x 1080 texels, 1 slice, 1 sample, 1 plane, tiled, UBWC"
std::string request_label(const SurfaceRequest& request);

}  // namespace tool
