#include "device.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

#include "calls.h"
#include "hxl_sim.h"
#include "misuse.h"
#include "services.h"
#include "settings.h"

namespace simulator {
namespace {

// Byte offsets of the 32-bit words in the two device records.
constexpr std::size_t chip_id_offset = 0x4;
constexpr std::size_t secure_context_offset = 0x80;
constexpr std::size_t record_size_offset = 0x88;

using Record = std::array<unsigned char, HXL_SIM_RECORD_SIZE>;
using ExtRecord = std::array<unsigned char, HXL_SIM_EXT_RECORD_SIZE>;

constexpr std::uint32_t succeeded = 0;
constexpr std::uint32_t no_device = 0;

constinit std::size_t library_opens = 0;
constinit std::uint32_t library_flags = 0;

// The first `open_device_count` handles are open, in no order.
constinit std::array<std::uint32_t, 4096> open_devices{};
constinit std::size_t open_device_count = 0;

// Far from small numbers, so that an index or a count taken for a handle is found out.
constinit std::uint32_t next_device = 0x48580001;

// The place of the handle in the open ones.
std::optional<std::size_t> place_of(std::uint32_t device) {
  const auto* const end = open_devices.begin() + open_device_count;
  const auto* const found = std::find(open_devices.cbegin(), end, device);
  if (found == end) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(found - open_devices.cbegin());
}

// The same, of a handle that is to be open.
std::optional<std::size_t> find_device(const Lock& lock, const char* operation,
                                       std::uint32_t device) {
  if (const auto place = place_of(device)) {
    return place;
  }
  note_misuse(lock, "%s: device 0x%x is not open%s", operation, device,
              library_opens == 0 ? ", nor is the library" : "");
  return std::nullopt;
}

std::uint32_t open_library(const Lock& lock, std::uint32_t flags) {
  library_flags = flags;
  if (made_to_fail(lock, HXL_SIM_FAIL_LIBRARY_OPEN)) {
    return settings(lock).failure_result;
  }
  ++library_opens;
  return succeeded;
}

void close_library(const Lock& lock) {
  if (library_opens == 0) {
    note_misuse(lock, "hxl_library_close: the library is not open");
    return;
  }
  --library_opens;
  if (library_opens == 0 && open_device_count != 0) {
    note_misuse(lock, "hxl_library_close: devices are still open: %zu", open_device_count);
    open_device_count = 0;
  }
}

std::uint32_t open_device(const Lock& lock) {
  if (library_opens == 0) {
    note_misuse(lock, "hxl_device_open: the library is not open");
    return no_device;
  }
  if (made_to_fail(lock, HXL_SIM_FAIL_DEVICE_OPEN)) {
    return no_device;
  }
  if (open_device_count == open_devices.size()) {
    note_misuse(lock, "hxl_device_open: too many devices are open: %zu", open_device_count);
    return no_device;
  }
  while (next_device == no_device || place_of(next_device)) ++next_device;
  const std::uint32_t device = next_device++;
  open_devices[open_device_count++] = device;
  return device;
}

void close_device(const Lock& lock, std::uint32_t device) {
  if (const auto place = find_device(lock, "hxl_device_close", device)) {
    open_devices[*place] = open_devices[--open_device_count];
  }
}

std::uint32_t get_info(const Lock& lock, std::uint32_t device, void* device_info) {
  if (!find_device(lock, "hxl_device_getinfo", device)) {
    return HXL_SIM_MISUSED;
  }
  if (device_info == nullptr) {
    note_misuse(lock, "hxl_device_getinfo: null record");
    return HXL_SIM_MISUSED;
  }
  const bool fails = made_to_fail(lock, HXL_SIM_FAIL_GETINFO);
  if (fails && !settings(lock).failures_fill_records) {
    return settings(lock).failure_result;
  }
  Record record;
  record.fill(HXL_SIM_FILL_BYTE);
  const std::uint32_t chip_id = settings(lock).chip_id;
  std::memcpy(record.data() + chip_id_offset, &chip_id, sizeof chip_id);
  std::memcpy(device_info, record.data(), record.size());
  return fails ? settings(lock).failure_result : succeeded;
}

// 0 for a null record.
std::uint32_t size_word(const void* device_info_ext) {
  std::uint32_t size = 0;
  if (device_info_ext != nullptr) {
    std::memcpy(&size, static_cast<const unsigned char*>(device_info_ext) + record_size_offset,
                sizeof size);
  }
  return size;
}

bool check_ext_record(const Lock& lock, const void* device_info_ext) {
  if (device_info_ext == nullptr) {
    note_misuse(lock, "hxl_device_getinfo_ext: null record");
    return false;
  }
  if (const std::uint32_t size = size_word(device_info_ext); size != HXL_SIM_EXT_RECORD_SIZE) {
    note_misuse(lock, "hxl_device_getinfo_ext: size word is 0x%x, must be 0x%x", size,
                HXL_SIM_EXT_RECORD_SIZE);
    return false;
  }
  ExtRecord record;
  std::memcpy(record.data(), device_info_ext, record.size());
  std::memset(record.data() + record_size_offset, 0, sizeof(std::uint32_t));
  for (std::size_t offset = 0; offset < record.size(); ++offset) {
    if (record[offset] != 0) {
      note_misuse(lock, "hxl_device_getinfo_ext: byte 0x%zx is 0x%02x, must be 0", offset,
                  record[offset]);
      return false;
    }
  }
  return true;
}

std::uint32_t get_info_ext(const Lock& lock, std::uint32_t device, void* device_info_ext) {
  if (!find_device(lock, "hxl_device_getinfo_ext", device) ||
      !check_ext_record(lock, device_info_ext)) {
    return HXL_SIM_MISUSED;
  }
  const bool fails = made_to_fail(lock, HXL_SIM_FAIL_GETINFO_EXT);
  if (fails && !settings(lock).failures_fill_records) {
    return settings(lock).failure_result;
  }
  const std::uint32_t secure_context = settings(lock).secure_context;
  std::memcpy(static_cast<unsigned char*>(device_info_ext) + secure_context_offset, &secure_context,
              sizeof secure_context);
  return fails ? settings(lock).failure_result : succeeded;
}

}  // namespace

void clear_library_flags(const Lock& /*lock*/) {
  library_flags = 0;
}

}  // namespace simulator

std::uint32_t hxl_library_open(std::uint32_t flags) noexcept {
  const simulator::Lock lock(simulator::state_mutex);
  const std::uint32_t result = simulator::open_library(lock, flags);
  simulator::record_call(lock, HXL_SIM_LIBRARY_OPEN, {flags}, result);
  return result;
}

void hxl_library_close() noexcept {
  const simulator::Lock lock(simulator::state_mutex);
  simulator::close_library(lock);
  simulator::record_call(lock, HXL_SIM_LIBRARY_CLOSE, {}, 0);
}

std::uint32_t hxl_device_open(std::uint32_t device_index, std::uint32_t flags) noexcept {
  const simulator::Lock lock(simulator::state_mutex);
  const std::uint32_t device = simulator::open_device(lock);
  simulator::record_call(lock, HXL_SIM_DEVICE_OPEN, {device_index, flags}, device);
  return device;
}

void hxl_device_close(std::uint32_t device) noexcept {
  const simulator::Lock lock(simulator::state_mutex);
  simulator::close_device(lock, device);
  simulator::record_call(lock, HXL_SIM_DEVICE_CLOSE, {device}, 0);
}

std::uint32_t hxl_device_getinfo(std::uint32_t device, void* device_info) noexcept {
  const simulator::Lock lock(simulator::state_mutex);
  const std::uint32_t result = simulator::get_info(lock, device, device_info);
  simulator::record_call(lock, HXL_SIM_DEVICE_GETINFO, {device}, result);
  return result;
}

std::uint32_t hxl_device_getinfo_ext(std::uint32_t device, void* device_info_ext) noexcept {
  const simulator::Lock lock(simulator::state_mutex);
  const std::uint32_t size = simulator::size_word(device_info_ext);
  const std::uint32_t result = simulator::get_info_ext(lock, device, device_info_ext);
  simulator::record_call(lock, HXL_SIM_DEVICE_GETINFO_EXT, {device, size}, result);
  return result;
}

void hxl_sim_set_next_device(std::uint32_t device) {
  const simulator::Lock lock(simulator::state_mutex);
  simulator::next_device = device;
}

std::size_t hxl_sim_open_libraries() {
  const simulator::Lock lock(simulator::state_mutex);
  return simulator::library_opens;
}

std::size_t hxl_sim_open_devices() {
  const simulator::Lock lock(simulator::state_mutex);
  return simulator::open_device_count;
}

std::uint32_t hxl_sim_library_flags() {
  const simulator::Lock lock(simulator::state_mutex);
  return simulator::library_flags;
}
