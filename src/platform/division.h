// Integer division whose divisor may be 0.
//
// A zero divisor must end in the platform's own fault on every target, never in a number: Arm's
// divide instruction returns 0 silently, and the language leaves the plain operator undefined.
#pragma once

#include <cstdint>

namespace korvel {

[[noreturn]] inline void raise_division_fault() {
#if defined(__x86_64__) || defined(__i386__)
  __asm__ volatile("xorl %%ecx, %%ecx\n\tdivl %%ecx" ::: "eax", "ecx", "edx", "cc");
  __builtin_unreachable();
#elif defined(_WIN32) && defined(__aarch64__)
  // What compilers for this platform emit for a zero divisor; the system turns it into its
  // integer-divide-by-zero exception.
  __asm__ volatile("brk #0xF004");
  __builtin_unreachable();
#elif defined(__wasm__)
  // The engine's trap of a division, which differs from the one of what is not reached.
  __asm__ volatile("i32.const 1\n\ti32.const 0\n\ti32.div_u\n\tdrop");
  __builtin_unreachable();
#else
  __builtin_trap();
#endif
}

constexpr uint32_t divide(uint32_t dividend, uint32_t divisor) {
  if (divisor == 0) [[unlikely]] {
    raise_division_fault();
  }
  return dividend / divisor;
}

}  // namespace korvel
