// The steps of one plane: texels into elements, the aligned size into bytes, and the flag buffer.
#pragma once

#include <cstdint>
#include <string_view>

#include "layout/surface.h"
#include "tools/explanation/explain_alignment.h"
#include "tools/explanation/step_writer.h"

namespace tool {

// Of one slice of a plane of one level.
struct PlaneNumbers {
  PlaneSize size;
  Number pitch_bytes;
  Number image_bytes;
};

// Texels of a level into elements and rows. Every plane takes the whole size.
PlaneSize explain_elements(StepWriter& steps, const korvel::Surface& surface, uint32_t plane,
                           PlaneSize texels);

// From elements to the bytes of the image as its tiling mode aligns them. The fields of the pitch,
// the aligned size and the bytes of an element are the plane's.
PlaneNumbers explain_image(StepWriter& steps, const korvel::Surface& surface, uint32_t level,
                           uint32_t plane, PlaneSize elements);

// Whether the plane has a flag buffer.
Number explain_flag_valid(StepWriter& steps, const korvel::Surface& surface, uint32_t level,
                          uint32_t plane, bool asked);

// Tiles of a row, and rows of tiles, of the elements that a flag buffer covers.
PlaneSize explain_flag_tiles(StepWriter& steps, const korvel::Surface& surface, uint32_t plane,
                             PlaneSize covered);

// Adds a step whose number a property of the chip, `column`, rounds up. One of 0 makes everything 0.
Number add_aligned(StepWriter& steps, Step step, std::initializer_list<Number> inputs,
                   std::string_view column, uint32_t alignment_bytes);

// All planes of a surface of one level. Returns where one slice of them ends.
Number explain_single_level(StepWriter& steps, const korvel::Surface& surface, bool flags_asked);

}  // namespace tool
