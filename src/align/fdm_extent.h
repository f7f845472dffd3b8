// The alignment that the layouts use for their planes, checks and messages included.
#pragma once

#include <cstdint>

#include "align/aligned_extent.h"
#include "align/entry_checks.h"

namespace korvel {

[[gnu::always_inline]] inline Extent fdm_extent(const ChipRow& chip, int32_t width, int32_t height,
                                                const AlignmentRequest& request, uint32_t plane) {
  return checked_extent(
      "compute_fmt_aligned_width_and_height_fdm", chip, width,
      height, [&](Extent size) __attribute__((always_inline)) {
        return aligned_extent(chip, size, request, plane);
      });
}

}  // namespace korvel
