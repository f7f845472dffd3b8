// The services library as the process sees it: answers from Process::device, everything recorded.
#include <cstdarg>
#include <cstdio>
#include <string>

#include "rules.h"

namespace reference {

namespace {

void record(Process& process, const std::string& call) {
  process.service_calls.push_back(call);
}

}  // namespace

void log_message(Process& process, const char* function, const char* format, ...) {
  char text[1024];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof(text), format, arguments);
  va_end(arguments);
  process.messages.push_back({function, format, text, process.service_calls.size()});
}

uint32_t call_library_open(Process& process, uint32_t flags) {
  record(process, "hxl_library_open(" + std::to_string(flags) + ")");
  return process.device.library_open_result;
}

void call_library_close(Process& process) {
  record(process, "hxl_library_close()");
}

uint32_t call_device_open(Process& process, uint32_t index, uint32_t flags) {
  record(process, "hxl_device_open(" + std::to_string(index) + ", " + std::to_string(flags) + ")");
  return process.device.handle;
}

void call_device_close(Process& process, uint32_t handle) {
  record(process, "hxl_device_close(" + std::to_string(handle) + ")");
}

uint32_t call_device_getinfo(Process& process, uint32_t handle, uint32_t* chip_id) {
  record(process, "hxl_device_getinfo(" + std::to_string(handle) + ")");
  *chip_id = process.chip.chip_id;
  return process.device.getinfo_result;
}

uint32_t call_device_getinfo_ext(Process& process, uint32_t handle, uint32_t* secure_word) {
  record(process, "hxl_device_getinfo_ext(" + std::to_string(handle) + ")");
  *secure_word = process.device.secure_word;
  return process.device.getinfo_ext_result;
}

void call_memset(Process& process, int32_t value, uint64_t size) {
  record(process, "os_memset(" + std::to_string(value) + ", " + std::to_string(size) + ")");
}

int32_t call_snprintf_uuid(Process& process, char* text, uint64_t size, const uint8_t* uuid) {
  record(process, "os_snprintf(" + std::to_string(size) + ")");
  if (process.device.snprintf_fails) {
    return -1;
  }
  std::string whole;
  for (uint32_t i = 0; i < 16; ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) {
      whole += '-';
    }
    const char digits[] = "0123456789abcdef";
    whole += digits[uuid[i] / 16];
    whole += digits[uuid[i] % 16];
  }
  if (size > 0) {
    uint64_t copied = 0;
    while (copied < whole.size() && copied < size - 1) {
      text[copied] = whole[copied];
      ++copied;
    }
    text[copied] = '\0';
  }
  return static_cast<int32_t>(whole.size());
}

}  // namespace reference
