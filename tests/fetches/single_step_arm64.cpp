// Programs have no trap flag here. The instruction is executed elsewhere: copied in front of a
// breakpoint. Loads and stores do not branch, and those that are stepped are not relative to where
// they stand.

#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>

#include "tests/fetches/single_step.h"

namespace fetches {

namespace {

constexpr uint32_t kBreakpoint = 0xD4200000;  // brk #0
constexpr std::size_t kInstruction_bytes = 4;
constexpr std::size_t kSlot_bytes = 2 * kInstruction_bytes;
constexpr std::size_t kSlots = 8192;

// A slot for each instruction word that was met: emulators and processors take long to notice that
// code has changed.
class Slots {
 public:
  Slots() {
    void* mapped = mmap(nullptr, kSlots * kSlot_bytes, PROT_READ | PROT_WRITE | PROT_EXEC,
                        MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) std::abort();
    start_ = static_cast<char*>(mapped);
  }

  uintptr_t of(uint32_t instruction) {
    const auto found = made_.find(instruction);
    if (found != made_.end()) return found->second;
    if (made_.size() == kSlots) std::abort();
    char* slot = start_ + made_.size() * kSlot_bytes;
    std::memcpy(slot, &instruction, kInstruction_bytes);
    std::memcpy(slot + kInstruction_bytes, &kBreakpoint, kInstruction_bytes);
    __builtin___clear_cache(slot, slot + kSlot_bytes);
    const auto address = reinterpret_cast<uintptr_t>(slot);
    made_.emplace(instruction, address);
    return address;
  }

 private:
  char* start_;
  std::map<uint32_t, uintptr_t> made_;
};

// The step under way: where the breakpoint is, and where the program goes on. 0: none.
uintptr_t breakpoint = 0;
uintptr_t goes_on_at = 0;

}  // namespace

void begin_step(ucontext_t& stopped_at) {
  static Slots slots;
  const uintptr_t at = stopped_at.uc_mcontext.pc;
  uint32_t instruction = 0;
  std::memcpy(&instruction, reinterpret_cast<const void*>(at), sizeof instruction);
  const uintptr_t slot = slots.of(instruction);
  breakpoint = slot + kInstruction_bytes;
  goes_on_at = at + kInstruction_bytes;
  stopped_at.uc_mcontext.pc = slot;
}

bool end_step(ucontext_t& stopped_at) {
  if (breakpoint == 0 || stopped_at.uc_mcontext.pc != breakpoint) return false;
  stopped_at.uc_mcontext.pc = goes_on_at;
  breakpoint = 0;
  return true;
}

}  // namespace fetches
