#include "settings.h"

namespace simulator {
namespace {

constinit Settings current_settings;

}  // namespace

Settings& settings(const Lock& /*lock*/) {
  return current_settings;
}

bool made_to_fail(const Lock& lock, std::uint32_t failure) {
  return (settings(lock).failures & failure) != 0;
}

}  // namespace simulator

void hxl_sim_set_chip(std::uint32_t chip_id) {
  const simulator::Lock lock(simulator::state_mutex);
  simulator::settings(lock).chip_id = chip_id;
}

void hxl_sim_set_secure_context(std::uint32_t word) {
  const simulator::Lock lock(simulator::state_mutex);
  simulator::settings(lock).secure_context = word;
}

void hxl_sim_set_failures(std::uint32_t mask) {
  const simulator::Lock lock(simulator::state_mutex);
  simulator::settings(lock).failures = mask;
}

void hxl_sim_set_capture(int on) {
  const simulator::Lock lock(simulator::state_mutex);
  simulator::settings(lock).capture_messages = on != 0;
}
