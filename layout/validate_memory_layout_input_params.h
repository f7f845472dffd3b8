// The input check of korvel_init_memory_layout.
#pragma once

#include <cstdint>

namespace korvel {

// 0 when a description can be laid out; 0xFFFFFFFF after the message of the first failed check.
// Sizes in texels.
uint32_t validate_memory_layout_input_params(int32_t width, int32_t height, int32_t depth,
                                             uint32_t format, uint32_t samples,
                                             uint32_t tiling_mode);

}  // namespace korvel
