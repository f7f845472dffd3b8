// The state the stand-in starts from, at load and on demand.
#include "calls.h"
#include "device.h"
#include "environment.h"
#include "hxl_sim.h"
#include "lock.h"
#include "messages.h"
#include "misuse.h"
#include "settings.h"

void hxl_sim_reset() {
  const simulator::Settings chosen = simulator::settings_of_environment();
  const simulator::Lock lock(simulator::state_mutex);
  simulator::choose_settings(lock, chosen);
  simulator::set_recording(lock, true);
  simulator::clear_calls(lock);
  simulator::clear_messages(lock);
  simulator::clear_misuse(lock);
  simulator::clear_library_flags(lock);
}

namespace simulator {
namespace {

__attribute__((constructor)) void read_environment_at_load() {
  hxl_sim_reset();
}

}  // namespace
}  // namespace simulator
