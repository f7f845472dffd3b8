#include <korvel_utils.h>

#include <cstddef>
#include <cstring>

#include "platform/hxluser.h"
#include "platform/log.h"

namespace {

constexpr uint32_t kSecureContextLibraryFlags = 0x800;

// The extended device record belongs to the services library; two words of it are known here.
constexpr uint32_t kDeviceInfoExtBytes = 0x118;
constexpr std::size_t kSecureContextOffset = 0x80;
constexpr std::size_t kRecordSizeOffset = 0x88;

}  // namespace

uint32_t isSecureContextSupportedByGpu() {
  if (hxl_library_open(kSecureContextLibraryFlags) != 0) {
    KORVEL_LOG("isSecureContextSupportedByGpu", "Failed to open HXL Library!!!!");
    return 0;
  }
  const uint32_t device = hxl_device_open(korvel::kHxlGpuDevice, 0);

  alignas(uint64_t) unsigned char device_info_ext[kDeviceInfoExtBytes];
  os_memset(device_info_ext, 0, sizeof device_info_ext);
  std::memcpy(device_info_ext + kRecordSizeOffset, &kDeviceInfoExtBytes,
              sizeof kDeviceInfoExtBytes);

  uint32_t secure_context = 0;
  if (device != 0) {
    if (hxl_device_getinfo_ext(device, device_info_ext) == 0) {
      std::memcpy(&secure_context, device_info_ext + kSecureContextOffset, sizeof secure_context);
    }
    hxl_device_close(device);
  }
  hxl_library_close();
  return secure_context;
}
