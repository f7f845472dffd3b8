// The steps from the size of a plane in elements to its aligned size.
#pragma once

#include <cstdint>
#include <string>

#include "layout/surface.h"
#include "tools/explanation/step_writer.h"

namespace tool {

struct PlaneSize {
  Number width;   // elements
  Number height;  // rows
};

PlaneSize explain_alignment(StepWriter& steps, const korvel::Surface& surface, uint32_t plane,
                            PlaneSize size);

// "4 bytes an element", or "4 bytes x 2 samples = 8 bytes an element"
std::string element_text(uint32_t bytes, uint32_t samples);

}  // namespace tool
