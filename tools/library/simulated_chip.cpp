#include "tools/library/simulated_chip.h"

#include <fmt/core.h>

#include "hxl_sim.h"
#include "tools/request/number_text.h"

namespace tool {
namespace {

SimulatedChip chip_of(uint32_t chip_id) {
  for (std::size_t i = korvel::kRowFirstChip; i < korvel::kChipRows.size(); ++i) {
    if (korvel::kChipRows[i].chip_id == chip_id) return {chip_id, true, korvel::kChipRows[i]};
  }
  return {chip_id, false, korvel::kChipRows[korvel::kRowUnknownChip]};
}

}  // namespace

SimulatedChip simulate_chip(const std::optional<std::string>& chip_text) {
  const uint32_t chip_id = chip_text ? number_option("--chip", *chip_text) : HXL_SIM_DEFAULT_CHIP;
  hxl_sim_set_capture(1);
  hxl_sim_set_failures(0);
  hxl_sim_set_chip(chip_id);
  return chip_of(chip_id);
}

std::string chip_label(const SimulatedChip& chip) {
  if (!chip.has_row) return fmt::format("0x{:08X}, unknown: laid out with defaults", chip.chip_id);
  return fmt::format("0x{:08X}, family {}, model 0x{:06X}, revision 0x{:08X}{}", chip.chip_id,
                     chip.row.family_id, chip.row.model_code, chip.row.rev_id,
                     chip.row.supported ? "" : ", not in the supported list");
}

}  // namespace tool
