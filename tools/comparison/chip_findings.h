// Where a stored record is smaller than the rules of its chip make it.
#pragma once

#include <string>
#include <vector>

#include <korvel_utils.h>
#include "tools/request/chip.h"

namespace tool {

// A sentence for each number that is below what the chip's rules make of the record's own widths and
// heights. The record is one that its validator accepts, the chip one that is known.
std::vector<std::string> chip_findings(const MemoryLayout& record, const Chip& chip);
std::vector<std::string> chip_findings(const SurfaceMetadata& record, const Chip& chip);

}  // namespace tool
