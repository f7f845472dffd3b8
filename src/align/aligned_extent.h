// The full alignment of one plane: what compute_fmt_aligned_width_and_height and its
// fragment-density-map form share, and what the layouts call for every plane.
#pragma once

#include <cstdint>

#include "align/alignment_request.h"
#include "align/family5_rules.h"
#include "align/family67_rules.h"
#include "identify/chip_row.h"

namespace korvel {

// `chip` is in the supported list; neither size is negative.
[[gnu::always_inline]] constexpr Extent aligned_extent(const ChipRow& chip, Extent size,
                                                       const AlignmentRequest& request,
                                                       uint32_t plane) {
  if (chip.family_id == 5) {
    return align_family5(chip, size.width, size.height, stored_copy(request), plane);
  }
  return align_family67(chip, size, request, plane, request.tiling_mode);
}

}  // namespace korvel
