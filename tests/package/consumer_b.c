#include "consumer_b.h"

#include <korvel_utils.h>

static LayoutMetadata blob;

uint32_t format_of_layout(uint32_t format) {
  if (korvel_init_memory_layout(&blob, 64, 64, 1, format, 1, KORVEL_TILING_TILED, 0, 1) !=
      KORVEL_SUCCESS) {
    return 0;
  }
  return blob.layout.format;
}
