// The library's first call of a process, again: for programs that have the library linked into them
// and change the GPU while they run.
#pragma once

#include "identify/gpu_identity.h"

namespace tool {

// The two words that this empties are all that the library keeps from call to call.
inline void forget_gpu() {
  korvel::gpu_identity.row.store(korvel::kRowNotIdentified, std::memory_order_relaxed);
  korvel::gpu_identity.chip_id.store(korvel::kChipIdNotIdentified, std::memory_order_relaxed);
}

}  // namespace tool
