// The platform's integer-divide-by-zero fault, as a test sees it.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

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

}  // namespace harness

// Runs the statement in a process of its own.
#define EXPECT_DIVISION_FAULT(statement) EXPECT_EXIT(statement, harness::died_of_division_fault, "")
