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
constexpr Extent aligned_extent(const ChipRow& chip, Extent size, const AlignmentRequest& request) {
  if (chip.family_id == 5) {
    return {align_width_family5(chip, size.width, request),
            align_height_family5(size.height, request)};
  }
  return align_family67(chip, size, request, request.tiling_mode);
}

}  // namespace korvel
