#include "tests/harness/windows_services.h"

#include <cstddef>

#include "platform/hxluser.h"
#include "tests/harness/windows_arguments.h"
#include "tests/harness/windows_convention.h"

namespace harness {

namespace {

#if defined(__x86_64__)

WINDOWS_CONVENTION void log(uint32_t level, const char* tag, uint32_t zero, uint32_t line,
                            const char* function, const char* format, ...) {
  __builtin_ms_va_list arguments;
  __builtin_ms_va_start(arguments, format);
  const Slots slots = take_slots(format, arguments);
  __builtin_ms_va_end(arguments);
  os_alog(level, tag, zero, line, function, format, KORVEL_ALL_SLOTS(slots));
}

WINDOWS_CONVENTION int32_t print(char* text, std::size_t text_size, const char* format, ...) {
  __builtin_ms_va_list arguments;
  __builtin_ms_va_start(arguments, format);
  const Slots slots = take_slots(format, arguments);
  __builtin_ms_va_end(arguments);
  return os_snprintf(text, text_size, format, KORVEL_ALL_SLOTS(slots));
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
