/* A user's program in C: prints the identity of the library's layouts. */
#include <korvel_utils.h>
#include <stdio.h>

int main(void) {
  uint8_t uuid[KORVEL_UUID_BYTES];
  char text[KORVEL_UUID_TEXT_BYTES];
  if (get_driver_uuid(uuid, KORVEL_UUID_BYTES) != 0) return 1;
  if (uuid_to_str(text, KORVEL_UUID_TEXT_BYTES, uuid, KORVEL_UUID_BYTES) != 0) return 1;
  return puts(text) < 0;
}
