#include <korvel_utils.h>

#include "identify/gpu_identity.h"
#include "layout/record_limits.h"
#include "layout/single_level_surface.h"

void korvel_init_single_level_surface(MemoryLayout* record, int32_t width, int32_t height,
                                      int32_t depth, uint32_t format, uint32_t samples,
                                      uint32_t tiling_mode, uint64_t flags, uint32_t planes) {
  constexpr const char* kName = "korvel_init_single_level_surface";
  const korvel::ChipRow& chip = korvel::identified_chip();
  const korvel::RecordHead head = korvel::read_head(*record);
  if (!korvel::levels_fit(kName, head.levels) || !korvel::planes_fit(kName, planes)) return;
  const korvel::Surface surface = korvel::described_surface(chip, {width, height}, depth, format,
                                                            samples, tiling_mode, flags, planes);
  korvel::lay_out_single_level_surface(surface, head, *record);
}
