#include "tests/harness/library.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "tests/harness/image.h"
#include "tests/harness/windows_export.h"

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

Library load_elf_library() {
  Library library;
  library.handle = dlopen(library_path(), RTLD_NOW | RTLD_LOCAL);
  if (library.handle == nullptr) give_up(library_path());
#define X(name) resolve(library.handle, #name, library.name);
  KORVEL_EXPORTS(X)
#undef X
  return library;
}

// Where the exports of the DLL begin that is loaded now.
namespace address_in_image {
#define X(name) constinit uintptr_t name = 0;
KORVEL_EXPORTS(X)
#undef X
}  // namespace address_in_image

Library load_image() {
  Library library;
  library.image = std::make_shared<Image>(library_path());
#define X(name)                                                  \
  address_in_image::name = library.image->export_address(#name); \
  library.name = &WindowsExport<decltype(&::name)>::call<address_in_image::name>;
  KORVEL_EXPORTS(X)
#undef X
  return library;
}

}  // namespace

const char* library_path() {
  const char* chosen = std::getenv("KORVEL_UTILS_LIBRARY");
  if (chosen == nullptr) return KORVEL_UTILS_BUILT_LIBRARY;
  if (*chosen != '\0') return chosen;
  // To the loader, no name is the program itself.
  std::fprintf(stderr, "KORVEL_UTILS_LIBRARY is empty; unset it or name a library\n");
  std::exit(2);
}

Library load_library() {
  return is_image(library_path()) ? load_image() : load_elf_library();
}

void unload_library(Library& library) {
  if (library.handle != nullptr) {
    dlclose(library.handle);
    if (dlopen(library_path(), RTLD_NOW | RTLD_NOLOAD) != nullptr) {
      std::fprintf(stderr, "%s stays loaded: the next test would see its state\n", library_path());
      std::abort();
    }
  }
  library = Library{};
}

}  // namespace harness
