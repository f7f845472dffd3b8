// What the rules of a chip ask of a plane whose size in elements is known.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "layout/surface.h"
#include "tools/explanation/explanation.h"

namespace tool {

struct PlaneDemand {
  uint32_t width_el = 0;
  uint32_t rows = 0;
  uint32_t pitch_bytes = 0;
  uint64_t image_bytes = 0;       // of one slice
  uint32_t flag_pitch_bytes = 0;  // 0 where no flag buffer is asked for
  uint64_t flag_bytes = 0;
  Explanation steps = {};  // to pitch, height and bytes of the image
};

// Flag buffers of chains are not told: they go by the size of level 0 in texels. The sides are 1 to
// 2^31 - 1. Faults where forecast_fault() says so.
PlaneDemand plane_demand(const korvel::Surface& surface, uint32_t plane, uint32_t width_el,
                         uint32_t rows, bool chain);

// The words of the last step that changed a number: "tiled, 4 bytes an element, so tiles of 64
// elements x 16 rows: the width takes whole tiles". Empty when none did.
std::string last_change(const Explanation& steps, std::string_view subject);

}  // namespace tool
