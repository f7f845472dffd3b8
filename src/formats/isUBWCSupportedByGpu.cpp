#include <korvel_utils.h>

#include "formats/ubwc_formats.h"
#include "identify/gpu_identity.h"

uint32_t isUBWCSupportedByGpu(uint32_t format) {
  return korvel::ubwc_supported(korvel::identified_chip(), format) ? 1 : 0;
}
