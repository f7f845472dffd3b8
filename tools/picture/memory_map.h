// What each byte of a surface's allocation is for: parts in the order of their offsets, without a
// gap between them and without two at one byte.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <korvel_utils.h>
#include "tools/picture/plane_image.h"
#include "tools/picture/role.h"

namespace tool {

enum class Buffer : uint8_t { image, flags, extra };

// A slice of one buffer, or several slices that follow each other.
struct BufferSlice {
  Buffer buffer = Buffer::image;
  uint32_t level = 0;
  uint32_t plane = 0;
  uint64_t first_slice = 0;
  uint64_t slices = 1;  // more than 1: whole slices with all that lies in them
};

struct MapPart {
  Role role = Role::gap;
  uint64_t first_byte = 0;
  uint64_t end_byte = 0;             // the first byte behind it
  std::vector<BufferSlice> buffers;  // whose bytes these are; none for alignment between buffers
};

// Of the whole allocation of `allocation_bytes`; what buffers have beyond it is left out. Of many
// slices the first and the last are parts of their own, those between them one part together.
std::vector<MapPart> memory_map(std::span<const PlaneImage> images, const MemoryLayout& record,
                                uint64_t allocation_bytes);

}  // namespace tool
