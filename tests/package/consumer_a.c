/* A program in C, of two translation units that both include the library's header. */
#include <stdio.h>

#include <korvel_utils.h>
#include "consumer_b.h"

int main(void) {
  uint8_t uuid[KORVEL_UUID_BYTES];
  char text[KORVEL_UUID_TEXT_BYTES];
  if (get_driver_uuid(uuid, KORVEL_UUID_BYTES) != 0 ||
      uuid_to_str(text, KORVEL_UUID_TEXT_BYTES, uuid, KORVEL_UUID_BYTES) != 0) {
    return 1;
  }
  if (korvel_get_metadata_blob_size() != sizeof(LayoutMetadata)) return 2;
  if (format_of_layout(28) != 28) return 3;
  printf("%s\n", text);
  return 0;
}
