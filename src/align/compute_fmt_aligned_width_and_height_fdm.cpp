#include <korvel_utils.h>
#include "align/extra_padding.h"
#include "align/fdm_extent.h"
#include "identify/gpu_identity.h"

void compute_fmt_aligned_width_and_height_fdm(int32_t width, int32_t height, uint32_t plane,
                                              uint32_t format, uint32_t samples,
                                              uint32_t tiling_mode, uint32_t selector,
                                              int32_t min_padded_row_bytes, uint32_t divisor,
                                              uint32_t want_extra_padding, uint32_t* out_width,
                                              uint32_t* out_height) {
  const korvel::ChipRow& chip = korvel::identified_chip();
  const korvel::AlignmentRequest request = {
      .format_id = format,
      .format = korvel::format_traits(format),
      .samples = samples,
      .tiling_mode = tiling_mode,
      .selector = selector,
      .min_padded_row_bytes = min_padded_row_bytes,
      .divisor = divisor,
      .extra = korvel::extra_padding(chip, format, want_extra_padding),
  };
  korvel::store_extent(korvel::fdm_extent(chip, width, height, request, plane), out_width,
                       out_height);
}
