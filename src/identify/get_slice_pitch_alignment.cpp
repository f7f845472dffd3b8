#include <korvel_utils.h>

#include <numeric>

#include "identify/gpu_identity.h"
#include "platform/division.h"

uint32_t get_slice_pitch_alignment(uint32_t tiling_mode) {
  // Two properties, and each asks for the GPU: while the services library cannot be opened, the call
  // tries twice.
  const korvel::ChipProperties& mode_properties = korvel::identified_chip().properties;
  const uint32_t mode_alignment = tiling_mode == KORVEL_TILING_TILED
                                      ? mode_properties.tiled_alignment
                                      : mode_properties.linear_alignment;
  const uint32_t base_alignment = korvel::identified_chip().properties.base_alignment;
  // Both are 0 for linear surfaces of a chip that has neither property: there is no answer, and that
  // must be loud.
  return korvel::divide(base_alignment * mode_alignment, std::gcd(base_alignment, mode_alignment));
}
