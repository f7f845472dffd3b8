// The division fault where it is a trap of the engine (fault_trap.h): JavaScript between the test
// and the call catches it.
#pragma once

namespace harness {

// False when call(argument) ended in the trap of a division by 0.
bool comes_back(void (*call)(const void*), const void* argument);

class FaultTrap {
 public:
  template <typename Call>
  bool answers(const Call& call) {
    return comes_back([](const void* of) { (*static_cast<const Call*>(of))(); }, &call);
  }
};

}  // namespace harness
