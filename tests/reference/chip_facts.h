// A chip of the hardware data as the reference knows it, from chip_rows.txt.
#pragma once

#include <cstdint>

#include "identify/hardware_data.h"
#include "tests/reference/reference.h"

namespace comparison {

// The row says which chip it is, and nothing else.
reference::ChipFacts facts_of(const korvel::ChipData& chip);
reference::ChipFacts facts_of_unknown_chip(uint32_t chip_id);

}  // namespace comparison
