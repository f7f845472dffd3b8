// Instructions by themselves, and what they do to memory.
//
// There is one list for each kind of processor: instruction_cases_x86_64.cpp and
// instruction_cases_arm64.cpp.
#pragma once

#include <vector>

#include "tests/fetches/watched_memory.h"

namespace fetches {

struct InstructionCase {
  const char* assembly;
  void (*call)(unsigned char* memory);  // which is aligned to 16 bytes where `aligned` says so
  std::vector<Touch> expected;
  bool aligned = false;
};

std::vector<InstructionCase> instruction_cases();

constexpr Touch load(std::ptrdiff_t offset_bytes, std::size_t bytes) {
  return {offset_bytes, bytes, true, false};
}

constexpr Touch store(std::ptrdiff_t offset_bytes, std::size_t bytes) {
  return {offset_bytes, bytes, false, true};
}

constexpr Touch change(std::ptrdiff_t offset_bytes, std::size_t bytes) {
  return {offset_bytes, bytes, true, true};
}

}  // namespace fetches
