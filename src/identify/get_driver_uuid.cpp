#include <korvel_utils.h>

#include "identify/uuid.h"

int32_t get_driver_uuid(uint8_t* out, int32_t out_length) {
  return korvel::store_uuid_checked("get_driver_uuid", out, out_length, korvel::kDriverUuid);
}
