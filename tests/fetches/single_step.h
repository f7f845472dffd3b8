// One instruction executed between two signals.
//
// There is one implementation for each kind of processor: single_step_x86_64.cpp and
// single_step_arm64.cpp.
#pragma once

#include <ucontext.h>

namespace fetches {

// Called in the handler of the signal that stopped the program at an instruction: when the handler
// returns, this instruction is executed and SIGTRAP follows.
void begin_step(ucontext_t& stopped_at);

// Called in the handler of that SIGTRAP: when it returns, the program goes on as ever. False when the
// signal is none of a step's.
bool end_step(ucontext_t& stopped_at);

}  // namespace fetches
