#include <korvel_utils.h>
#include "identify/gpu_identity.h"
#include "layout/multi_level_surface.h"
#include "layout/record_limits.h"

void korvel_init_multi_level_surface(MemoryLayout* record, uint32_t width, uint32_t height,
                                     int32_t depth, uint32_t format, uint32_t samples,
                                     uint32_t tiling_mode, uint64_t flags, uint32_t planes) {
  constexpr const char* kName = "korvel_init_multi_level_surface";
  const korvel::ChipRow& chip = korvel::identified_chip();
  if (!korvel::levels_fit(kName, record->levels) || !korvel::planes_fit(kName, planes)) return;
  const korvel::Surface surface = korvel::describe_multi_level_surface(
      chip, {format, depth, samples, tiling_mode, flags, planes}, korvel::format_traits(format));
  korvel::lay_out_multi_level_surface(
      surface, {static_cast<int32_t>(width), static_cast<int32_t>(height)}, *record);
}
