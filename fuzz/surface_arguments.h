// What the initialisers are asked.
#pragma once

#include <cstdint>

#include "fuzz/input_bytes.h"

namespace fuzz {

struct SurfaceArguments {
  int32_t width = 0;
  int32_t height = 0;
  int32_t depth = 0;
  uint32_t format = 0;
  uint32_t samples = 0;
  uint32_t tiling_mode = 0;
  uint64_t flags = 0;
  uint32_t planes = 0;
};

SurfaceArguments draw_surface_arguments(InputBytes& input);

void print_case(const SurfaceArguments& arguments);

}  // namespace fuzz
