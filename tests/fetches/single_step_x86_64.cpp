// By the processor's trap flag.

#include "tests/fetches/single_step.h"

namespace fetches {

namespace {

constexpr greg_t kTrapFlag = 0x100;

}  // namespace

void begin_step(ucontext_t& stopped_at) {
  stopped_at.uc_mcontext.gregs[REG_EFL] |= kTrapFlag;
}

bool end_step(ucontext_t& stopped_at) {
  const bool stepped = (stopped_at.uc_mcontext.gregs[REG_EFL] & kTrapFlag) != 0;
  stopped_at.uc_mcontext.gregs[REG_EFL] &= ~kTrapFlag;
  return stepped;
}

}  // namespace fetches
