// The alignment that knows no format.
#pragma once

#include <cstdint>

#include "align/entry_checks.h"
#include "identify/gpu_identity.h"

namespace korvel {

// On a supported chip a size that passes leaves the outputs as they are: only the format-aware
// entries do the aligning.
inline void align_without_format(int32_t width, int32_t height, uint32_t* out_width,
                                 uint32_t* out_height) {
  const ChipRow& chip = identified_chip();
  if (!is_negative(width, height) && chip.supported) return;
  const Extent extent = checked_extent("compute_aligned_width_and_height", chip, width, height,
                                       [](Extent size) { return size; });
  store_extent(extent, out_width, out_height);
}

}  // namespace korvel
