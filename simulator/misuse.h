// Calls that the real services would not have to put up with.
#pragma once

#include "lock.h"

namespace simulator {

__attribute__((format(printf, 2, 3))) void note_misuse(const Lock& lock, const char* format, ...);

void clear_misuse(const Lock& lock);

}  // namespace simulator
