// What the instruction at which a signal stopped the program is about to do to memory: decoded, with
// the addresses that the registers of that moment give.
//
// There is one implementation for each kind of processor: instruction_accesses_x86_64.cpp and
// instruction_accesses_arm64.cpp.
#pragma once

#include <ucontext.h>

#include <string>
#include <vector>

#include "tests/fetches/access.h"

namespace fetches {

// For SIGSEGV at an access to the address `fault`. Empty where the instruction is not understood;
// `refusal` then says which it is.
std::vector<Access> instruction_accesses(const ucontext_t& stopped_at, uintptr_t fault,
                                         std::string& refusal);

}  // namespace fetches
