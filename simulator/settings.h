// What the imagined GPU is, and how its services behave.
#pragma once

#include <cstdint>

#include "hxl_sim.h"
#include "lock.h"

namespace simulator {

struct Settings {
  std::uint32_t chip_id = HXL_SIM_DEFAULT_CHIP;
  std::uint32_t secure_context = 0;
  // HXL_SIM_FAIL_ bits.
  std::uint32_t failures = 0;
  // What operations that are made to fail return.
  std::uint32_t failure_result = HXL_SIM_FAILED;
  // Whether they fill the caller's record all the same.
  bool failures_fill_records = false;
  // Whether messages that are not captured are printed.
  bool print_messages = true;
  bool capture_messages = false;
};

// Read only: the functions below change them.
const Settings& settings(const Lock& lock);
void choose_settings(const Lock& lock, const Settings& chosen);

bool made_to_fail(const Lock& lock, std::uint32_t failure);

// The same of HXL_SIM_FAIL_SNPRINTF without the lock.
bool printing_is_made_to_fail();

}  // namespace simulator
