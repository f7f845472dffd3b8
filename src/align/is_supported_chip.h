// Whether the GPU of this machine is in the list of chips whose surfaces the alignment rules know.
#pragma once

#include "identify/gpu_identity.h"

namespace korvel {

inline bool is_supported_chip() {
  return identified_chip().supported;
}

}  // namespace korvel
