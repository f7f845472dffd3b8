#include "fuzz/caught_fault.h"

#include <csetjmp>
#include <csignal>
#include <cstdlib>

namespace fuzz {
namespace {

// Integer division by zero, and the trap that stands for it where the processor has no such fault.
constexpr int kFaultSignals[] = {SIGFPE, SIGTRAP};

sigjmp_buf way_out;
sigset_t usual_mask;
volatile sig_atomic_t call_runs = 0;

extern "C" void leave_call(int /*signal*/) {
  if (call_runs != 0) siglongjmp(way_out, 1);
  std::abort();  // anything else that faults is a finding like every crash
}

void catch_faults() {
  sigprocmask(SIG_SETMASK, nullptr, &usual_mask);
  struct sigaction action = {};
  action.sa_handler = leave_call;
  action.sa_flags = SA_NODEFER;  // the handler is left by a jump
  sigemptyset(&action.sa_mask);
  for (const int signal_number : kFaultSignals) sigaction(signal_number, &action, nullptr);
}

}  // namespace

bool ends_in_division_fault(void (*call)(void*), void* context) {
  [[maybe_unused]] static const bool ready = (catch_faults(), true);
  if (sigsetjmp(way_out, 0) != 0) {
    call_runs = 0;
    // A sanitizer blocks signals while a handler runs; a blocked fault would end the process.
    sigprocmask(SIG_SETMASK, &usual_mask, nullptr);
    return true;
  }
  call_runs = 1;
  call(context);
  call_runs = 0;
  return false;
}

}  // namespace fuzz
