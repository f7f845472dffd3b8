// One access of one instruction to memory.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fetches {

struct Access {
  uintptr_t address;
  std::size_t bytes;
  bool loads;
  bool stores;  // an instruction that changes memory in place does both
};

}  // namespace fetches
