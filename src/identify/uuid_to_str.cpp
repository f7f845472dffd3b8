#include <korvel_utils.h>

#include <cstddef>

#include "identify/uuid.h"
#include "platform/log.h"

int32_t uuid_to_str(char* text, int32_t text_size, const uint8_t* uuid, uint32_t uuid_length) {
  if (uuid_length != KORVEL_UUID_BYTES) {
    KORVEL_LOG("uuid_to_str", "Bad uuid length %u", uuid_length);
    return -1;
  }
  // A negative size has room for nothing; as an unsigned one it would have room for everything.
  const std::size_t room = text_size > 0 ? static_cast<std::size_t>(text_size) : 0;
  const int32_t length = korvel::print_uuid(text, room, uuid);
  return length >= 0 && length < text_size ? 0 : -1;
}
