// The smallest alignment of one plane that the hardware takes.
#pragma once

#include <cstdint>

#include "align/alignment_request.h"
#include "align/entry_checks.h"
#include "align/family5_rules.h"
#include "align/family67_rules.h"
#include "identify/chip_row.h"

namespace korvel {

// Unlike the full alignment, tiled widths of family 5 are not rounded once more.
constexpr uint32_t minimal_width_family5(const ChipRow& chip, uint32_t width,
                                         const AlignmentRequest& request, uint32_t plane,
                                         uint32_t tiling_allowed) {
  const uint32_t bytes = element_bytes(request, plane);
  if (is_tiled(request)) return family5_tiled_width(width, bytes, request.format);
  const uint32_t base = base_aligned_width_family5(width, request, tiling_allowed);
  return finish_linear_width(chip, request, base, bytes);
}

inline Extent minimal_extent(const ChipRow& chip, int32_t width, int32_t height,
                             const AlignmentRequest& request, uint32_t plane,
                             uint32_t tiling_allowed) {
  return checked_extent(
      "compute_fmt_minimal_aligned_width_and_height", chip, width, height, [&](Extent size) {
        if (chip.family_id == 5) {
          return Extent{minimal_width_family5(chip, size.width, request, plane, tiling_allowed),
                        align_height_family5(size.height, request, plane)};
        }
        return align_family67(chip, size, request, plane, tiling_allowed);
      });
}

}  // namespace korvel
