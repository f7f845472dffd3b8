#include "identify/gpu_identity.h"
#include "include/korvel_utils.h"

uint32_t get_gpu_pixel_alignment() {
  return korvel::identified_chip().properties.pixel_alignment;
}
