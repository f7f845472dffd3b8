// The library under test where nothing can be loaded: its exports are linked into the test program.
#include "tests/harness/library.h"
#include "tools/library/forget_gpu.h"

namespace harness {

Library load_library() {
  tool::forget_gpu();
  Library library;
#define X(name) library.name = &::name;
  KORVEL_EXPORTS(X)
#undef X
  return library;
}

void unload_library(Library& library) {
  library = Library{};
}

}  // namespace harness
