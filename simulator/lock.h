// The one mutex of the stand-in.
//
// Functions that need it held take the lock as an argument, so that none is called without it.
#pragma once

#include <mutex>

namespace simulator {

// Usable before and after the run of static constructors and destructors, like all state here:
// other libraries may report diagnostics from theirs.
inline constinit std::mutex state_mutex;

using Lock = std::lock_guard<std::mutex>;

}  // namespace simulator
