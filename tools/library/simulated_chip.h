// The chip that the services stand-in reports to the library in this process.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "identify/chip_row.h"

namespace tool {

struct SimulatedChip {
  uint32_t chip_id;
  bool has_row;
  korvel::ChipRow row;  // the defaults that the library uses when the chip has no row
};

// Before the first call of the library, which learns its chip once. Messages are kept from here on
// instead of printed. Without a text it is the stand-in's default chip. Throws BadInput.
SimulatedChip simulate_chip(const std::optional<std::string>& chip_text);

// "0x43010000, family 6, model 0x060316, revision 0x0316000A"
std::string chip_label(const SimulatedChip& chip);

}  // namespace tool
