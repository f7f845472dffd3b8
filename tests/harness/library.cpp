#include "tests/harness/library.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace harness {

namespace {

[[noreturn]] void give_up(const char* what) {
  std::fprintf(stderr, "cannot load %s: %s\n", what, dlerror());
  std::abort();
}

template <typename Function>
void resolve(void* handle, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(handle, name));
  if (function == nullptr) give_up(name);
}

}  // namespace

const char* library_path() {
  const char* chosen = std::getenv("KORVEL_UTILS_LIBRARY");
  return chosen != nullptr ? chosen : KORVEL_UTILS_BUILT_LIBRARY;
}

Library load_library() {
  Library library;
  library.handle = dlopen(library_path(), RTLD_NOW | RTLD_LOCAL);
  if (library.handle == nullptr) give_up(library_path());
#define X(name) resolve(library.handle, #name, library.name);
  KORVEL_EXPORTS(X)
#undef X
  return library;
}

void unload_library(Library& library) {
  dlclose(library.handle);
  if (dlopen(library_path(), RTLD_NOW | RTLD_NOLOAD) != nullptr) {
    std::fprintf(stderr, "%s stays loaded: the next test would see its state\n", library_path());
    std::abort();
  }
  library = Library{};
}

}  // namespace harness
