// The loads and stores of 64-bit Arm, as their instruction words say them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace fetches {

// How a register that is added to an address is widened to 64 bits.
enum class Arm64Index { none, whole, unsigned_word, signed_word };

// An access of one range of bytes, from `base` + `offset_bytes` + the index shifted left on.
struct Arm64Access {
  std::size_t bytes;  // of all registers together
  bool loads;
  bool stores;
  unsigned base;  // number of a register; 31 is the stack pointer
  int64_t offset_bytes = 0;
  Arm64Index index = Arm64Index::none;
  unsigned index_register = 0;  // 31 is 0
  unsigned index_shift = 0;
};

// Nothing for an instruction that is no load or store, or is none that arm64_access.cpp lists:
// literals, atomic and exclusive accesses, prefetches, tags.
std::optional<Arm64Access> arm64_access(uint32_t instruction);

}  // namespace fetches
