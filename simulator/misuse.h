// Calls that the contract of the services forbids: noted, and made to fail.
#pragma once

#include "lock.h"

namespace simulator {

__attribute__((format(printf, 2, 3))) void note_misuse(const Lock& lock, const char* format, ...);

void clear_misuse(const Lock& lock);

}  // namespace simulator
