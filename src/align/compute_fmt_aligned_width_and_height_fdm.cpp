#include <korvel_utils.h>

#include "align/entries.h"

void compute_fmt_aligned_width_and_height_fdm(int32_t width, int32_t height, uint32_t plane,
                                              uint32_t format, uint32_t samples,
                                              uint32_t tiling_mode, uint32_t /*selector*/,
                                              int32_t min_padded_row_bytes, uint32_t divisor,
                                              uint32_t want_extra_padding, uint32_t* out_width,
                                              uint32_t* out_height) {
  const korvel::ChipRow& chip = korvel::identified_chip();
  korvel::AlignmentRequest request =
      korvel::alignment_request(format, samples, tiling_mode, min_padded_row_bytes);
  request.step_divisor = divisor;
  if (want_extra_padding != 0) request.padding = korvel::extra_padding(chip, format);
  const korvel::Extent<korvel::Elements> aligned =
      korvel::fdm_extent(chip, {width, height}, request, plane);
  *out_width = aligned.width;
  *out_height = aligned.height;
}
