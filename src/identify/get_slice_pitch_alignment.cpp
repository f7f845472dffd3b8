#include <numeric>

#include <korvel_utils.h>
#include "identify/gpu_identity.h"
#include "platform/division.h"

uint32_t get_slice_pitch_alignment(uint32_t tiling_mode) {
  const korvel::ChipProperties& chip = korvel::identified_chip().properties;
  const uint32_t mode_alignment =
      tiling_mode == KORVEL_TILING_TILED ? chip.tiled_alignment : chip.linear_alignment;
  const uint32_t base_alignment = chip.base_alignment;
  // Both are 0 for linear surfaces on an unsupported chip: there is no answer, and that must be
  // loud.
  return korvel::divide(base_alignment * mode_alignment, std::gcd(base_alignment, mode_alignment));
}
