#include <korvel_utils.h>

#include "align/entries.h"

void compute_fmt_aligned_width_and_height(int32_t width, int32_t height, uint32_t plane,
                                          uint32_t format, uint32_t samples, uint32_t tiling_mode,
                                          uint32_t /*selector*/, int32_t min_padded_row_bytes,
                                          uint32_t* out_width, uint32_t* out_height) {
  const korvel::ChipRow& chip = korvel::identified_chip();
  const korvel::AlignmentRequest request =
      korvel::alignment_request(format, samples, tiling_mode, min_padded_row_bytes);
  const korvel::Extent<korvel::Elements> aligned = korvel::full_extent(
      "compute_fmt_aligned_width_and_height", chip, {width, height}, request, plane);
  *out_width = aligned.width;
  *out_height = aligned.height;
}
