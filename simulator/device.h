// The library and device operations.
#pragma once

#include "lock.h"

namespace simulator {

// Leaves what is open alone.
void clear_library_flags(const Lock& lock);

}  // namespace simulator
