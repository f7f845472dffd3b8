// Calls that may end in the platform's integer-divide-by-zero fault.
#pragma once

namespace fuzz {

// Whether the call ended in the fault. The library holds nothing when it faults, so the process can
// go on.
bool ends_in_division_fault(void (*call)(void*), void* context);

template <typename Call>
bool ends_in_division_fault(Call call) {
  return ends_in_division_fault([](void* context) { (*static_cast<Call*>(context))(); }, &call);
}

}  // namespace fuzz
