// The full alignment of one plane, checks and messages included.
#pragma once

#include <cstdint>

#include "align/aligned_extent.h"
#include "align/entry_checks.h"

namespace korvel {

inline Extent full_extent(const ChipRow& chip, int32_t width, int32_t height,
                          const AlignmentRequest& request, uint32_t plane) {
  return checked_extent("compute_fmt_aligned_width_and_height", chip, width, height,
                        [&](Extent size) { return aligned_extent(chip, size, request, plane); });
}

}  // namespace korvel
