// The operations of the driver stack's graphics services library that this library imports.
//
// The services library ships with the driver and is closed: only what is called is declared, and
// the records it fills are described where they are read.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(_WIN32)
#define HXL_IMPORT __declspec(dllimport)
#else
#define HXL_IMPORT
#endif

#if defined(__GNUC__)
#define HXL_PRINTF(format_index, first_argument) \
  __attribute__((format(printf, format_index, first_argument)))
#define HXL_COLD __attribute__((cold))
#else
#define HXL_PRINTF(format_index, first_argument)
#define HXL_COLD
#endif

extern "C" {

// Opens the services for this process. Returns 0 on success.
HXL_IMPORT std::uint32_t hxl_library_open(std::uint32_t flags) noexcept;

// Undoes one successful hxl_library_open.
HXL_IMPORT void hxl_library_close() noexcept;

// Opens a GPU. Returns its handle, 0 on failure.
HXL_IMPORT std::uint32_t hxl_device_open(std::uint32_t device_index, std::uint32_t flags) noexcept;

// Closes a handle of hxl_device_open.
HXL_IMPORT void hxl_device_close(std::uint32_t device) noexcept;

// Fills the 32-byte device record. Returns 0 on success.
HXL_IMPORT std::uint32_t hxl_device_getinfo(std::uint32_t device, void* device_info) noexcept;

// Fills the 280-byte extended device record, whose size word the caller sets. Returns 0 on success.
HXL_IMPORT std::uint32_t hxl_device_getinfo_ext(std::uint32_t device,
                                                void* device_info_ext) noexcept;

// Reports one diagnostic. The third argument is 0 in every call of this library. Cold: the compiler
// keeps what leads here out of the way of calls that succeed.
HXL_IMPORT void os_alog(std::uint32_t level, const char* tag, std::uint32_t zero,
                        std::uint32_t line, const char* function, const char* format, ...) noexcept
    HXL_PRINTF(6, 7) HXL_COLD;

// snprintf: returns the length of the whole text without its terminator, negative on failure.
HXL_IMPORT std::int32_t os_snprintf(char* text, std::size_t text_size, const char* format,
                                    ...) noexcept HXL_PRINTF(3, 4);

// memset.
HXL_IMPORT void* os_memset(void* destination, std::int32_t value, std::size_t size) noexcept;

}  // extern "C"

namespace korvel {

// The device index under which the services know the GPU.
inline constexpr std::uint32_t kHxlGpuDevice = 1;

}  // namespace korvel
