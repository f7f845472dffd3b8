/* A program for Windows that needs nothing but the DLL. It ends with 0 when all answers are right,
 * else with the number of the first wrong one. */
#include <korvel_utils.h>

static LayoutMetadata blob;

/* Without the C run-time library's. */
static int same(const char* a, const char* b) {
  while (*a == *b && *a != '\0') {
    ++a;
    ++b;
  }
  return *a == *b;
}

int start(void);
int start(void) {
  uint8_t uuid[KORVEL_UUID_BYTES];
  char text[KORVEL_UUID_TEXT_BYTES];
  if (korvel_get_metadata_blob_size() != sizeof blob) return 1;
  if (get_driver_uuid(uuid, KORVEL_UUID_BYTES) != 0) return 2;
  if (uuid_to_str(text, KORVEL_UUID_TEXT_BYTES, uuid, KORVEL_UUID_BYTES) != 0) return 3;
  if (!same(text, "04000000-0100-0000-0300-000000000000")) return 4;
  if (isFormatRenderableByGpu(28, 0) != 1) return 5;
  if (korvel_init_memory_layout(&blob, 1920, 1080, 1, 28, 1, KORVEL_TILING_TILED, 0, 1) !=
      KORVEL_SUCCESS) {
    return 6;
  }
  if (korvel_get_aligned_gpu_buffer_size(&blob) != 8355840) return 7;
  return 0;
}
