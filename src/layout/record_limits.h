// The record's own limits, which the initialisers never write beyond.
#pragma once

#include <cstdint>

#include <korvel_utils.h>
#include "platform/log.h"

namespace korvel {

inline bool planes_fit(const char* function, uint32_t planes) {
  if (planes <= KORVEL_MAX_PLANES) {
    return true;
  }
  KORVEL_LOG(function, "Invalid plane count %u", planes);
  return false;
}

inline bool levels_fit(const char* function, uint32_t levels) {
  if (levels <= KORVEL_MAX_LEVELS) {
    return true;
  }
  KORVEL_LOG(function, "Invalid level count %u", levels);
  return false;
}

}  // namespace korvel
