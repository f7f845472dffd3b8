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
  // Whether messages that are not captured are printed.
  bool print_messages = true;
  bool capture_messages = false;
};

Settings& settings(const Lock& lock);

bool made_to_fail(const Lock& lock, std::uint32_t failure);

}  // namespace simulator
