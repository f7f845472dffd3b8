/* A services DLL for Windows, as small as a program of one GPU needs: the chip is in its device
 * record and nothing fails. The simulator, which tests use, keeps to ELF systems. */
#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>

__declspec(dllimport) int _vsnprintf(char* text, size_t size, const char* format,
                                     va_list arguments);
__declspec(dllimport) void* memset(void* destination, int value, size_t size);

uint32_t hxl_library_open(uint32_t flags) {
  return flags;
}

void hxl_library_close(void) {}

uint32_t hxl_device_open(uint32_t device_index, uint32_t flags) {
  return device_index == 1 && flags == 0 ? 77 : 0;
}

void hxl_device_close(uint32_t device) {
  (void)device;
}

uint32_t hxl_device_getinfo(uint32_t device, void* device_info) {
  if (device != 77) return 1;
  ((uint32_t*)device_info)[1] = 0x43010000;
  return 0;
}

uint32_t hxl_device_getinfo_ext(uint32_t device, void* device_info_ext) {
  (void)device_info_ext;
  return device == 77 ? 0 : 1;
}

void os_alog(uint32_t level, const char* tag, uint32_t zero, uint32_t line, const char* function,
             const char* format, ...) {
  (void)level, (void)tag, (void)zero, (void)line, (void)function, (void)format;
}

int32_t os_snprintf(char* text, size_t size, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int32_t length = _vsnprintf(text, size, format, arguments);
  va_end(arguments);
  return length;
}

void* os_memset(void* destination, int32_t value, size_t size) {
  return memset(destination, value, size);
}
