// The arguments of variadic calls with the Windows calling convention, for Linux functions that
// take them on. On Arm both systems pass them alike, so that this is for x86-64 alone.
#pragma once

#if defined(__x86_64__)

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace harness {

// The longest argument list is that of a UUID's text: its 16 bytes.
inline constexpr std::size_t kMaxSlots = 16;
using Slots = std::array<uint64_t, kMaxSlots>;

// Every conversion of a message takes one 8-byte slot of the caller's list.
inline std::size_t slots_of(const char* format) {
  std::size_t slots = 0;
  for (const char* at = format; *at != '\0'; ++at) {
    if (*at != '%') continue;
    if (at[1] == '%') {
      ++at;
    } else {
      ++slots;
    }
  }
  if (slots > kMaxSlots) {
    std::fprintf(stderr, "more arguments than the loader hands on: %s\n", format);
    std::abort();
  }
  return slots;
}

inline Slots take_slots(const char* format, __builtin_ms_va_list arguments) {
  Slots slots{};
  if (format == nullptr) return slots;
  const std::size_t count = slots_of(format);
  for (std::size_t i = 0; i < count; ++i) slots[i] = __builtin_va_arg(arguments, uint64_t);
  return slots;
}

// Arguments that the format does not ask for are allowed, and ignored.
#define KORVEL_ALL_SLOTS(s)                                                                      \
  s[0], s[1], s[2], s[3], s[4], s[5], s[6], s[7], s[8], s[9], s[10], s[11], s[12], s[13], s[14], \
      s[15]

}  // namespace harness

#endif
