// The fuzzer looks at what is instrumented when it starts; copies of the library are loaded with
// the first input. So the first one runs before.
#include "fuzz/fuzz_target.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  constexpr uint8_t kNothing = 0;
  return LLVMFuzzerTestOneInput(&kNothing, 0);
}
