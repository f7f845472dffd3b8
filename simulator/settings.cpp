#include "settings.h"

#include <atomic>

namespace simulator {
namespace {

constinit Settings current_settings;
constinit std::atomic<bool> printing_fails{false};

// Changes one setting.
template <typename Value>
void choose(Value Settings::*setting, Value value) {
  const Lock lock(state_mutex);
  Settings chosen = current_settings;
  chosen.*setting = value;
  choose_settings(lock, chosen);
}

}  // namespace

const Settings& settings(const Lock& /*lock*/) {
  return current_settings;
}

void choose_settings(const Lock& /*lock*/, const Settings& chosen) {
  current_settings = chosen;
  printing_fails.store((chosen.failures & HXL_SIM_FAIL_SNPRINTF) != 0, std::memory_order_relaxed);
}

bool made_to_fail(const Lock& lock, std::uint32_t failure) {
  return (settings(lock).failures & failure) != 0;
}

bool printing_is_made_to_fail() {
  return printing_fails.load(std::memory_order_relaxed);
}

}  // namespace simulator

using simulator::choose;
using simulator::Settings;

void hxl_sim_set_chip(std::uint32_t chip_id) {
  choose(&Settings::chip_id, chip_id);
}

void hxl_sim_set_secure_context(std::uint32_t word) {
  choose(&Settings::secure_context, word);
}

void hxl_sim_set_failures(std::uint32_t mask) {
  choose(&Settings::failures, mask);
}

void hxl_sim_set_failure_result(std::uint32_t result) {
  choose(&Settings::failure_result, result);
}

void hxl_sim_set_failures_fill_records(int on) {
  choose(&Settings::failures_fill_records, on != 0);
}

void hxl_sim_set_capture(int on) {
  choose(&Settings::capture_messages, on != 0);
}
