// Loads of the library that live side by side in one process.
//
// The library learns its GPU once and never forgets it. A loader takes a file that it has loaded
// before as loaded, so each copy comes from a file of its own, in memory.
#pragma once

#include "tests/harness/library.h"

namespace fuzz {

// Ends the program when the library cannot be loaded. A copy stays loaded.
harness::Library load_library_copy();

}  // namespace fuzz
