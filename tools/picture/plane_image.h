// The images of a layout: of each plane of each level what was asked for, and what it takes.
#pragma once

#include <cstdint>
#include <vector>

#include <korvel_utils.h>
#include "formats/extent.h"
#include "identify/chip_row.h"
#include "tools/request/surface_request.h"

namespace tool {

struct PlaneImage {
  uint32_t level = 0;
  uint32_t plane = 0;
  uint32_t slices = 0;
  bool tiled = false;
  PlaneLayout layout = {};                     // the words of the record
  korvel::Extent<korvel::Elements> payload;    // at most the aligned size
  korvel::Extent<korvel::Elements> tile;       // 0 x 0 where the rows are not in tiles
  korvel::Extent<korvel::Elements> flag_tile;  // what a byte of flags stands for; 0 x 0 unknown
  bool has_flags = false;                      // and they have a place
};

// Level by level, plane by plane.
std::vector<PlaneImage> plane_images(const korvel::ChipRow& chip, const SurfaceRequest& request,
                                     const MemoryLayout& record);

// Bytes of one slice that its rows take; what follows up to image_size is alignment.
uint64_t rows_bytes(const PlaneImage& image);

// Bytes of one slice that hold what was asked for.
uint64_t payload_bytes(const PlaneImage& image);

}  // namespace tool
