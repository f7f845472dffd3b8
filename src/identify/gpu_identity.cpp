#include "identify/gpu_identity.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "platform/hxluser.h"
#include "platform/log.h"

namespace korvel {

constinit GpuIdentity gpu_identity;

namespace {

constexpr std::size_t kDeviceInfoBytes = 32;
constexpr std::size_t kDeviceInfoChipIdOffset = 4;

// The device record belongs to the services library; one word of it is known here.
uint32_t device_chip_id(uint32_t device) {
  alignas(uint64_t) unsigned char device_info[kDeviceInfoBytes];
  if (hxl_device_getinfo(device, device_info) != 0) return kChipIdQueryFailed;
  uint32_t chip_id;
  std::memcpy(&chip_id, device_info + kDeviceInfoChipIdOffset, sizeof chip_id);
  return chip_id;
}

void read_chip_id() {
  if (hxl_library_open(0) != 0) {
    KORVEL_LOG("ReadGpuID_from_khxl", "Failed to open HXL Library!!!!");
    return;
  }
  uint32_t chip_id = kChipIdQueryFailed;
  const uint32_t device = hxl_device_open(kHxlGpuDevice, 0);
  if (device != 0) {
    chip_id = device_chip_id(device);
    hxl_device_close(device);
  }
  hxl_library_close();
  gpu_identity.chip_id.store(chip_id, std::memory_order_relaxed);
}

std::size_t find_row(uint32_t chip_id) {
  const auto first = kChipRows.begin() + kRowFirstChip;
  const auto found =
      std::lower_bound(first, kChipRows.end(), chip_id,
                       [](const ChipRow& row, uint32_t sought) { return row.chip_id < sought; });
  if (found == kChipRows.end() || found->chip_id != chip_id) return kRowUnknownChip;
  return static_cast<std::size_t>(found - kChipRows.begin());
}

}  // namespace

std::size_t identify_gpu() {
  read_chip_id();
  const uint32_t chip_id = reported_chip_id();
  const std::size_t row = find_row(chip_id);
  if (row == kRowUnknownChip) {
    // Family, model and revision are three questions to whoever reads the log.
    constexpr static const char* kSteps[] = {"korvel_get_family_id", "korvel_get_chip_id",
                                             "korvel_get_rev_id"};
    for (const char* step : kSteps) {
      KORVEL_LOG(step, "Unknown HXL chip ID %u", chip_id);
    }
    if (chip_id == kChipIdNotIdentified) return kRowNotIdentified;
  }
  gpu_identity.row.store(static_cast<uint32_t>(row), std::memory_order_release);
  return row;
}

}  // namespace korvel
