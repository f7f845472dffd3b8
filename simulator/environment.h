// Settings chosen by environment variables.
#pragma once

#include "settings.h"

namespace simulator {

// The defaults as changed by the environment. Reports malformed values.
Settings settings_of_environment();

}  // namespace simulator
