// By the tests' own decoder: Debian has no libcapstone for programs that are built on another machine.

#include <cstdio>
#include <cstring>

#include "tests/fetches/arm64_access.h"
#include "tests/fetches/instruction_accesses.h"

namespace fetches {

namespace {

uint64_t index_value(const ucontext_t& at, const Arm64Access& access) {
  if (access.index == Arm64Index::none || access.index_register == 31) return 0;
  const uint64_t whole = at.uc_mcontext.regs[access.index_register];
  switch (access.index) {
    case Arm64Index::unsigned_word: return static_cast<uint32_t>(whole);
    case Arm64Index::signed_word:
      return static_cast<uint64_t>(int64_t{static_cast<int32_t>(static_cast<uint32_t>(whole))});
    default: return whole;
  }
}

}  // namespace

std::vector<Access> instruction_accesses(const ucontext_t& stopped_at, uintptr_t /*fault*/,
                                         std::string& refusal) {
  uint32_t instruction = 0;
  std::memcpy(&instruction, reinterpret_cast<const void*>(stopped_at.uc_mcontext.pc),
              sizeof instruction);
  const std::optional<Arm64Access> access = arm64_access(instruction);
  if (!access) {
    char text[64];
    std::snprintf(text, sizeof text, "the instruction word 0x%08X", instruction);
    refusal = text;
    return {};
  }
  const uint64_t base =
      access->base == 31 ? stopped_at.uc_mcontext.sp : stopped_at.uc_mcontext.regs[access->base];
  const uint64_t index = index_value(stopped_at, *access) << access->index_shift;
  return {{base + static_cast<uint64_t>(access->offset_bytes) + index, access->bytes, access->loads,
           access->stores}};
}

}  // namespace fetches
