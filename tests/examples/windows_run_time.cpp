#include "tests/examples/windows_run_time.h"

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "tests/harness/windows_arguments.h"
#include "tests/harness/windows_convention.h"

namespace examples {

namespace {

std::string output;

// Longer than any line of the examples.
using Line = char[256];

int32_t print_line(const Line& line, int length) {
  if (length < 0 || static_cast<std::size_t>(length) >= sizeof line) {
    std::fprintf(stderr, "a line of %d bytes\n", length);
    std::abort();
  }
  output += line;
  return length;
}

#if defined(__x86_64__)

WINDOWS_CONVENTION int32_t print(const char* format, ...) {
  __builtin_ms_va_list arguments;
  __builtin_ms_va_start(arguments, format);
  const harness::Slots slots = harness::take_slots(format, arguments);
  __builtin_ms_va_end(arguments);
  Line line;
  return print_line(line, std::snprintf(line, sizeof line, format, KORVEL_ALL_SLOTS(slots)));
}

#else

int32_t print(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  Line line;
  const int length = std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  return print_line(line, length);
}

#endif

WINDOWS_CONVENTION void* copy_memory(void* destination, const void* source, std::size_t bytes) {
  return std::memcpy(destination, source, bytes);
}

WINDOWS_CONVENTION void* set_memory(void* destination, int32_t value, std::size_t bytes) {
  return std::memset(destination, value, bytes);
}

}  // namespace

uintptr_t run_time_function(const std::string& function) {
  if (function == "memcpy") return reinterpret_cast<uintptr_t>(&copy_memory);
  if (function == "memset") return reinterpret_cast<uintptr_t>(&set_memory);
  if (function == "printf") return reinterpret_cast<uintptr_t>(&print);
  return 0;
}

std::string take_output() {
  return std::exchange(output, {});
}

}  // namespace examples
