#include "include/korvel_utils.h"

uint32_t compute_surface_padding(int32_t width, uint32_t a2, int32_t tiling_mode, uint32_t a4,
                                 uint32_t a5) {
  uint32_t padded_width = 0;
  uint32_t padded_height = 0;
  const uint32_t linear = tiling_mode != static_cast<int32_t>(KORVEL_TILING_TILED) ? 1 : 0;
  compute_aligned_width_and_height(width, 1, a2, linear, a4, a5, &padded_width, &padded_height);
  return padded_width;
}
