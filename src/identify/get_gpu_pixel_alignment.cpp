#include <korvel_utils.h>

#include "identify/gpu_identity.h"

uint32_t get_gpu_pixel_alignment() {
  return korvel::identified_chip().properties.pixel_alignment;
}
