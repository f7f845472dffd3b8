#include "tools/library/simulated_chip.h"

#include "hxl_sim.h"

namespace tool {

void simulate(const Chip& chip) {
  hxl_sim_set_capture(1);
  hxl_sim_set_failures(0);
  hxl_sim_set_chip(chip.chip_id);
}

Chip simulate_chip(const std::optional<std::string>& chip_text, bool unknown_too) {
  const Chip chip = chip_text ? parse_chip(*chip_text, unknown_too) : default_chip();
  simulate(chip);
  return chip;
}

}  // namespace tool
