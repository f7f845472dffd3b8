// One diagnostic to the services library's log.
#pragma once

#include <cstdint>

#include "platform/hxluser.h"

// The level and tag of every message of this library.
#define KORVEL_LOG_LEVEL 1
#define KORVEL_LOG_TAG "Korvel-UNKNOWN"

// A macro, because the log takes the source line of the report and checks the format's arguments.
// `function` is the reporting step's own name, which is not always that of the C++ function.
#define KORVEL_LOG(function, ...) \
  os_alog(KORVEL_LOG_LEVEL, KORVEL_LOG_TAG, 0, __LINE__, function, __VA_ARGS__)

namespace korvel {

// For %llu, whatever the platform's 64-bit type is called.
constexpr unsigned long long llu(uint64_t value) {
  return value;
}

}  // namespace korvel
