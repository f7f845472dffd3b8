// The library under test: the real shared library, loaded anew for every GPU.
//
// The library learns its GPU once per process and never forgets it. A fresh load is a fresh process
// as far as it is concerned.
//
// The library may be an ELF file or, through the tests' own loader, a Windows DLL for the same
// instructions: one test program serves both.
#pragma once

#include <memory>

#include <korvel_utils.h>
#include "tests/harness/exports.h"

namespace harness {

class Image;

// The exports of one load.
struct Library {
  void* handle = nullptr;        // of an ELF file
  std::shared_ptr<Image> image;  // of a DLL
#define X(name) decltype(&::name) name = nullptr;
  KORVEL_EXPORTS(X)
#undef X
};

// The file that load_library() loads: the build's own, or what the environment variable
// KORVEL_UTILS_LIBRARY names.
const char* library_path();

// Aborts the test program when the file or one of its exports is missing.
Library load_library();
void unload_library(Library& library);

}  // namespace harness
