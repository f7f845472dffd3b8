#include <korvel_utils.h>

#include <limits>

#include "identify/gpu_identity.h"
#include "layout/mip_chains.h"
#include "layout/record_limits.h"

// Widths of a chain start from whole steps of this many texels, on every chip.
constexpr uint32_t kChainWidthStep_texels = 64;

void korvel_init_multi_level_surface(MemoryLayout* record, uint32_t width, uint32_t height,
                                     int32_t depth, uint32_t format, uint32_t samples,
                                     uint32_t tiling_mode, uint64_t flags, uint32_t planes) {
  constexpr const char* kName = "korvel_init_multi_level_surface";
  const korvel::ChipRow& chip = korvel::identified_chip();
  const uint32_t levels = record->levels;
  if (!korvel::levels_fit(kName, levels) || !korvel::planes_fit(kName, planes)) return;
  const korvel::SignedExtent<korvel::Texels> base = {
      static_cast<int32_t>(korvel::round_up_pot(width, kChainWidthStep_texels)),
      static_cast<int32_t>(height)};
  korvel::Surface surface =
      korvel::described_surface(chip, base, depth, format, samples, tiling_mode, flags, planes);
  // No row of a chain is pitch-padded, and its linear widths are aligned in bytes.
  surface.alignment.min_padded_row_bytes = std::numeric_limits<int32_t>::max();
  surface.alignment.divisor = surface.element_bytes;
  korvel::lay_out_mip_chains(surface, levels, *record);
}
