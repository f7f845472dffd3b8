// The chip that the services stand-in reports to the library in this process.
#pragma once

#include <optional>
#include <string>

#include "tools/request/chip.h"

namespace tool {

// Before the first call of the library, which learns its chip once. Messages are kept from here on
// instead of printed.
void simulate(const Chip& chip);

// The chip of the option, by default the stand-in's own, simulated. Throws BadInput.
Chip simulate_chip(const std::optional<std::string>& chip_text, bool unknown_too);

}  // namespace tool
