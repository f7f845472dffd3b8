#include "fuzz/library_copy.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace fuzz {
namespace {

[[noreturn]] void give_up(const char* what, const char* why) {
  std::fprintf(stderr, "cannot load a copy of %s: %s: %s\n", harness::library_path(), what, why);
  std::exit(1);
}

int copy_in_memory(const char* path) {
  const int original = open(path, O_RDONLY | O_CLOEXEC);
  const int copy = memfd_create("korvel_utils", MFD_CLOEXEC);
  struct stat status = {};
  if (original < 0 || copy < 0 || fstat(original, &status) != 0) give_up("open", path);
  for (off_t at = 0; at < status.st_size;) {
    if (sendfile(copy, original, &at, static_cast<std::size_t>(status.st_size - at)) <= 0) {
      give_up("read", path);
    }
  }
  close(original);
  return copy;
}

template <typename Function>
void resolve(void* handle, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(handle, name));
  if (function == nullptr) give_up(name, dlerror());
}

}  // namespace

harness::Library load_library_copy() {
  // The descriptor stays open: the next copy's name must be another one.
  const int file = copy_in_memory(harness::library_path());
  harness::Library library;
  library.handle = dlopen(("/proc/self/fd/" + std::to_string(file)).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library.handle == nullptr) give_up("dlopen", dlerror());
#define X(name) resolve(library.handle, #name, library.name);
  KORVEL_EXPORTS(X)
#undef X
  return library;
}

}  // namespace fuzz
