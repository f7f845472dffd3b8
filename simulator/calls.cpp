#include "calls.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>

namespace simulator {
namespace {

constinit std::atomic<bool> recording{true};

constinit std::array<hxl_sim_call_record, HXL_SIM_MAX_CALLS> records{};
constinit std::size_t record_count = 0;
constinit std::uint64_t dropped_count = 0;
constinit std::array<std::uint64_t, HXL_SIM_OPERATION_COUNT> operation_counts{};

constexpr std::array<const char*, HXL_SIM_OPERATION_COUNT> operation_names{
    "hxl_library_open", "hxl_library_close",  "hxl_device_open",
    "hxl_device_close", "hxl_device_getinfo", "hxl_device_getinfo_ext",
    "os_alog",          "os_snprintf",        "os_memset",
};

}  // namespace

bool calls_are_recorded() {
  return recording.load(std::memory_order_relaxed);
}

void record_call(const Lock& /*lock*/, hxl_sim_operation operation,
                 std::initializer_list<std::uint64_t> arguments, std::int64_t result) {
  if (!calls_are_recorded()) {
    return;
  }
  ++operation_counts[operation];
  if (record_count == records.size()) {
    ++dropped_count;
    return;
  }
  hxl_sim_call_record& record = records[record_count++];
  record = {};
  record.operation = operation;
  record.argument_count = static_cast<std::uint32_t>(arguments.size());
  std::copy(arguments.begin(), arguments.end(), record.arguments);
  record.result = result;
}

void set_recording(const Lock& /*lock*/, bool on) {
  recording.store(on, std::memory_order_relaxed);
}

void clear_calls(const Lock& /*lock*/) {
  record_count = 0;
  dropped_count = 0;
  operation_counts.fill(0);
}

}  // namespace simulator

void hxl_sim_set_recording(int on) {
  const simulator::Lock lock(simulator::state_mutex);
  simulator::set_recording(lock, on != 0);
}

std::uint64_t hxl_sim_call_count(std::uint32_t operation) {
  const simulator::Lock lock(simulator::state_mutex);
  return operation < HXL_SIM_OPERATION_COUNT ? simulator::operation_counts[operation] : 0;
}

std::size_t hxl_sim_calls_recorded() {
  const simulator::Lock lock(simulator::state_mutex);
  return simulator::record_count;
}

std::uint64_t hxl_sim_calls_dropped() {
  const simulator::Lock lock(simulator::state_mutex);
  return simulator::dropped_count;
}

int hxl_sim_call(std::size_t index, hxl_sim_call_record* call) {
  const simulator::Lock lock(simulator::state_mutex);
  if (index >= simulator::record_count) {
    return 0;
  }
  *call = simulator::records[index];
  return 1;
}

void hxl_sim_clear_calls() {
  const simulator::Lock lock(simulator::state_mutex);
  simulator::clear_calls(lock);
}

const char* hxl_sim_operation_name(std::uint32_t operation) {
  return operation < HXL_SIM_OPERATION_COUNT ? simulator::operation_names[operation] : "unknown";
}
