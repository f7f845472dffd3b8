#include "fuzz/surface_arguments.h"

#include <cinttypes>
#include <cstdio>

#include "fuzz/drawn_arguments.h"

namespace fuzz {

SurfaceArguments draw_surface_arguments(InputBytes& input) {
  SurfaceArguments arguments;
  arguments.format = draw_format(input);
  arguments.width = draw_size(input);
  arguments.height = draw_size(input);
  arguments.tiling_mode = draw_tiling_mode(input);
  arguments.planes = draw_count(input, KORVEL_MAX_PLANES);
  arguments.flags = draw_layout_flags(input);
  arguments.depth = draw_depth(input);
  arguments.samples = draw_samples(input);
  return arguments;
}

void print_case(const SurfaceArguments& a) {
  std::fprintf(stderr,
               "size %d x %d x %d, format %u, samples %u, tiling mode %u, flags 0x%" PRIx64
               ", planes %u\n",
               a.width, a.height, a.depth, a.format, a.samples, a.tiling_mode, a.flags, a.planes);
}

}  // namespace fuzz
