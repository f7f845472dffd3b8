// The platform's integer-divide-by-zero fault, as a test sees it.
#pragma once

#include <gtest/gtest.h>

#if defined(__EMSCRIPTEN__)

#include "tests/harness/fault_trap.h"

namespace harness {

// There is one process. The call is left where the fault is: its objects are not destroyed.
template <typename Call>
bool ends_in_division_fault(const Call& call) {
  return !FaultTrap().answers(call);
}

}  // namespace harness

#define EXPECT_DIVISION_FAULT(statement) \
  EXPECT_TRUE(harness::ends_in_division_fault([&] { statement; }))

#else

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace harness {

inline bool died_of_division_fault(int status) {
  if (!WIFSIGNALED(status)) return false;
#if defined(__x86_64__) || defined(__i386__)
  return WTERMSIG(status) == SIGFPE;
#else
  return WTERMSIG(status) == SIGTRAP;
#endif
}

// Calls in a process of its own, silently: neither a core file nor a sanitizer's report.
template <typename Call>
bool ends_in_division_fault(const Call& call) {
  const pid_t child = fork();
  if (child == 0) {
    call();
    _exit(0);
  }
  int status = 0;
  return waitpid(child, &status, 0) == child && died_of_division_fault(status);
}

}  // namespace harness

// Runs the statement in a process of its own.
#define EXPECT_DIVISION_FAULT(statement) EXPECT_EXIT(statement, harness::died_of_division_fault, "")

#endif
