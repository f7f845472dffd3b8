#include <korvel_utils.h>

#include "align/entries.h"

void compute_aligned_width_and_height(int32_t width, int32_t height, uint32_t /*a3*/,
                                      uint32_t /*a4*/, uint32_t /*a5*/, uint32_t /*a6*/,
                                      uint32_t* out_width, uint32_t* out_height) {
  korvel::align_without_format({width, height}, out_width, out_height);
}
