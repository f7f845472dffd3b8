// The division fault where it is a signal (fault_trap.h).
#pragma once

#include <csetjmp>
#include <csignal>

namespace harness {

class FaultTrap {
 public:
  FaultTrap() {
    struct sigaction action = {};
    action.sa_handler = come_back;
    // The handler is left by a jump: the signal must not stay blocked.
    action.sa_flags = SA_NODEFER;
    sigaction(kSignal, &action, &before_);
  }
  ~FaultTrap() { sigaction(kSignal, &before_, nullptr); }
  FaultTrap(const FaultTrap&) = delete;
  FaultTrap& operator=(const FaultTrap&) = delete;

  // Never inlined: what the caller keeps in registers survives the jump.
  template <typename Call>
  [[gnu::noinline]] bool answers(const Call& call) {
    if (sigsetjmp(return_point_, 0) != 0) return false;
    armed_ = 1;
    call();
    armed_ = 0;
    return true;
  }

 private:
#if defined(__x86_64__) || defined(__i386__)
  static constexpr int kSignal = SIGFPE;
#else
  static constexpr int kSignal = SIGTRAP;
#endif

  static void come_back(int signal) {
    if (armed_ == 0) {
      // Not a call's fault. It comes again, and ends the program.
      std::signal(signal, SIG_DFL);
      return;
    }
    armed_ = 0;
    siglongjmp(return_point_, 1);
  }

  static inline sigjmp_buf return_point_;
  static inline volatile std::sig_atomic_t armed_ = 0;
  struct sigaction before_;
};

}  // namespace harness
