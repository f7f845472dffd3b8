#include <korvel_utils.h>

#include "identify/uuid.h"

int32_t get_override_device_uuid(uint8_t* out, int32_t out_length, uint32_t family_id,
                                 uint32_t model_code, uint32_t rev_id, uint16_t word_0) {
  return korvel::store_uuid_checked("get_override_device_uuid", out, out_length,
                                    {word_0, family_id, model_code, rev_id});
}
