// The UUIDs of a device and of a driver, word by word.
#pragma once

#include <cstdint>
#include <cstring>

#include <korvel_utils.h>

namespace records {

struct DeviceWords {
  uint32_t signature = KORVEL_DEVICE_SIGNATURE;
  uint32_t family_id = 0;
  uint32_t model_code = 0;
  uint32_t rev_id = 0;
};

struct DriverWords {
  uint32_t signature = 4;
  uint32_t driver_version = 1;
  uint32_t layout_version = 3;
  uint32_t unused = 0;
};

template <typename Words>
void put_words(uint8_t (&uuid)[KORVEL_UUID_BYTES], const Words& words) {
  static_assert(sizeof words == sizeof uuid);
  std::memcpy(uuid, &words, sizeof uuid);
}

// Those of one machine.
struct Uuids {
  uint8_t device[KORVEL_UUID_BYTES];
  uint8_t driver[KORVEL_UUID_BYTES];
};

inline Uuids make_uuids(const DeviceWords& device, const DriverWords& driver = {}) {
  Uuids uuids;
  put_words(uuids.device, device);
  put_words(uuids.driver, driver);
  return uuids;
}

}  // namespace records
