// The record of the operations that were called.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "hxl_sim.h"
#include "lock.h"

namespace simulator {

// Read without the lock, so that operations that need no other state can go without it.
bool calls_are_recorded();

// Does nothing while calls are not recorded. Up to 3 arguments.
void record_call(const Lock& lock, hxl_sim_operation operation,
                 std::initializer_list<std::uint64_t> arguments, std::int64_t result);

void set_recording(const Lock& lock, bool on);
void clear_calls(const Lock& lock);

}  // namespace simulator
