#include "align/entry_checks.h"
#include "identify/gpu_identity.h"
#include "include/korvel_utils.h"

void compute_aligned_width_and_height(int32_t width, int32_t height, uint32_t /*a3*/,
                                      uint32_t /*a4*/, uint32_t /*a5*/, uint32_t /*a6*/,
                                      uint32_t* out_width, uint32_t* out_height) {
  const korvel::ChipRow& chip = korvel::identified_chip();
  // A supported chip leaves the outputs as they are: format-aware entries do the aligning.
  if (!korvel::is_negative(width, height) && chip.supported) return;
  const korvel::Extent extent =
      korvel::checked_extent("compute_aligned_width_and_height", chip, width, height,
                             [](korvel::Extent size) { return size; });
  korvel::store_extent(extent, out_width, out_height);
}
