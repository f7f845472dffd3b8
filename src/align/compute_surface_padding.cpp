#include <korvel_utils.h>

#include "align/entries.h"

// The mode and the three words would only reach the alignment without a format, which reads none of
// them.
uint32_t compute_surface_padding(int32_t width, uint32_t /*a2*/, int32_t /*tiling_mode*/,
                                 uint32_t /*a4*/, uint32_t /*a5*/) {
  uint32_t padded_width = 0;
  uint32_t padded_height = 0;
  korvel::align_without_format({width, 1}, &padded_width, &padded_height);
  return padded_width;
}
