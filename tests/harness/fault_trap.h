// The division fault as an answer: a call that ends in it comes back to the test, which costs no
// process as EXPECT_DIVISION_FAULT does. For sweeps that meet many of them.
//
// harness::FaultTrap has bool answers(call): false when the call ended in the fault; what it stored
// by then is unknown.
#pragma once

#if defined(__EMSCRIPTEN__)
#include "tests/harness/wasm_fault_trap.h"
#else
#include "tests/harness/signal_fault_trap.h"
#endif
