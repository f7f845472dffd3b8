#include "tests/harness/wasm_fault_trap.h"

#include <emscripten.h>

using HarnessCall = void (*)(const void*);

// Every other trap goes on, and ends the program.
EM_JS(int, harness_comes_back, (HarnessCall call, const void* argument), {
  const stack = stackSave();
  try {
    wasmTable.get(call)(argument);
  } catch (error) {
    if (!(error instanceof WebAssembly.RuntimeError) || error.message != 'divide by zero') {
      throw error;
    }
    stackRestore(stack);
    return 0;
  }
  return 1;
});

namespace harness {

bool comes_back(void (*call)(const void*), const void* argument) {
  return harness_comes_back(call, argument) != 0;
}

}  // namespace harness
