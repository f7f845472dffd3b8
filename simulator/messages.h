// The messages of os_alog.
#pragma once

#include "lock.h"

namespace simulator {

void clear_messages(const Lock& lock);

}  // namespace simulator
