// The machines that the targets run on: a copy of the library for each kind of chip that the rules
// tell apart, with the independent reimplementation of the rules for the same chip beside it.
#pragma once

#include <cstdint>

#include "fuzz/broken_property.h"
#include "fuzz/caught_fault.h"
#include "fuzz/input_bytes.h"
#include "tests/harness/library.h"
#include "tests/reference/reference.h"

namespace fuzz {

struct Machine {
  const char* name;
  reference::Process process;  // what the rules say
  harness::Library library;    // what the library does
  uint32_t failures = 0;       // of the services, HXL_SIM_FAIL_... bits
};

// One of all kinds.
Machine& draw_machine(InputBytes& input);

// The one machine of the targets that do not ask for the chip. Its UUIDs are those of the records.
Machine& usual_machine();

// Has the services answer as on this machine; they are the process's own.
void switch_services_to(const Machine& machine);

// Requires that the library said what the rules say, and misused no service.
void require_same_messages(const Machine& machine);
void forget_messages(Machine& machine);

template <typename Call>
bool rules_answer(Call call) {
  try {
    call();
    return true;
  } catch (const reference::DivisionFault&) {
    return false;
  }
}

// Runs one call on both sides. Requires that the library faults exactly when the rules divide by
// zero, and else says the same. Returns whether there is an answer.
template <typename Rules, typename Library>
bool both_answer(Machine& machine, Rules rules, Library library) {
  const bool answers = rules_answer(rules);
  switch_services_to(machine);
  const bool faulted = ends_in_division_fault(library);
  REQUIRE(faulted == !answers);
  // Messages in front of a fault are not compared.
  if (answers) require_same_messages(machine);
  forget_messages(machine);
  return answers;
}

}  // namespace fuzz
