#include "tests/harness/windows_services.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include "platform/hxluser.h"
#include "tests/harness/windows_convention.h"

namespace harness {

namespace {

#if defined(__x86_64__)

// The longest argument list is that of a UUID's text: its 16 bytes.
constexpr std::size_t kMaxSlots = 16;
using Slots = std::array<uint64_t, kMaxSlots>;

// Every conversion of a message takes one 8-byte slot of the caller's list.
std::size_t slots_of(const char* format) {
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

Slots take_slots(const char* format, __builtin_ms_va_list arguments) {
  Slots slots{};
  if (format == nullptr) return slots;
  const std::size_t count = slots_of(format);
  for (std::size_t i = 0; i < count; ++i) slots[i] = __builtin_va_arg(arguments, uint64_t);
  return slots;
}

// Arguments that the format does not ask for are allowed, and ignored.
#define ALL_SLOTS(s)                                                                             \
  s[0], s[1], s[2], s[3], s[4], s[5], s[6], s[7], s[8], s[9], s[10], s[11], s[12], s[13], s[14], \
      s[15]

WINDOWS_CONVENTION void log(uint32_t level, const char* tag, uint32_t zero, uint32_t line,
                            const char* function, const char* format, ...) {
  __builtin_ms_va_list arguments;
  __builtin_ms_va_start(arguments, format);
  const Slots slots = take_slots(format, arguments);
  __builtin_ms_va_end(arguments);
  os_alog(level, tag, zero, line, function, format, ALL_SLOTS(slots));
}

WINDOWS_CONVENTION int32_t print(char* text, std::size_t text_size, const char* format, ...) {
  __builtin_ms_va_list arguments;
  __builtin_ms_va_start(arguments, format);
  const Slots slots = take_slots(format, arguments);
  __builtin_ms_va_end(arguments);
  return os_snprintf(text, text_size, format, ALL_SLOTS(slots));
}

WINDOWS_CONVENTION uint32_t open_library(uint32_t flags) {
  return hxl_library_open(flags);
}
WINDOWS_CONVENTION void close_library() {
  hxl_library_close();
}
WINDOWS_CONVENTION uint32_t open_device(uint32_t device_index, uint32_t flags) {
  return hxl_device_open(device_index, flags);
}
WINDOWS_CONVENTION void close_device(uint32_t device) {
  hxl_device_close(device);
}
WINDOWS_CONVENTION uint32_t get_info(uint32_t device, void* device_info) {
  return hxl_device_getinfo(device, device_info);
}
WINDOWS_CONVENTION uint32_t get_info_ext(uint32_t device, void* device_info_ext) {
  return hxl_device_getinfo_ext(device, device_info_ext);
}
WINDOWS_CONVENTION void* set_memory(void* destination, int32_t value, std::size_t size) {
  return os_memset(destination, value, size);
}

#else

// One convention: the operations themselves.
constexpr auto& log = os_alog;
constexpr auto& print = os_snprintf;
constexpr auto& open_library = hxl_library_open;
constexpr auto& close_library = hxl_library_close;
constexpr auto& open_device = hxl_device_open;
constexpr auto& close_device = hxl_device_close;
constexpr auto& get_info = hxl_device_getinfo;
constexpr auto& get_info_ext = hxl_device_getinfo_ext;
constexpr auto& set_memory = os_memset;

#endif

template <typename Function>
uintptr_t address(Function* function) {
  return reinterpret_cast<uintptr_t>(function);
}

}  // namespace

uintptr_t windows_service(const std::string& name) {
  if (name == "hxl_library_open") return address(&open_library);
  if (name == "hxl_library_close") return address(&close_library);
  if (name == "hxl_device_open") return address(&open_device);
  if (name == "hxl_device_close") return address(&close_device);
  if (name == "hxl_device_getinfo") return address(&get_info);
  if (name == "hxl_device_getinfo_ext") return address(&get_info_ext);
  if (name == "os_alog") return address(&log);
  if (name == "os_snprintf") return address(&print);
  if (name == "os_memset") return address(&set_memory);
  return 0;
}

}  // namespace harness
