#include <korvel_utils.h>

#include "identify/uuid.h"

int32_t get_device_uuid(uint8_t* out, int32_t out_length, uint32_t family_id, uint32_t model_code,
                        uint32_t rev_id) {
  return korvel::store_uuid_checked("get_device_uuid", out, out_length,
                                    korvel::device_uuid_words(family_id, model_code, rev_id));
}
