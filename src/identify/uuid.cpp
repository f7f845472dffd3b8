#include "identify/uuid.h"

#include "platform/hxluser.h"

namespace korvel {

int32_t print_uuid(char* text, std::size_t text_size, const uint8_t* uuid) {
  return os_snprintf(text, text_size,
                     "%02x%02x%02x%02x-%02x%02x-%02x%02x-%02x%02x-%02x%02x%02x%02x%02x%02x",
                     uuid[0], uuid[1], uuid[2], uuid[3], uuid[4], uuid[5], uuid[6], uuid[7],
                     uuid[8], uuid[9], uuid[10], uuid[11], uuid[12], uuid[13], uuid[14], uuid[15]);
}

}  // namespace korvel
