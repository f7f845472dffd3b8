// What the fixed rules of stored records cannot refuse, although it is wrong: buffers that overlap,
// levels that grow, and sizes below what the chip's rules ask for.
#pragma once

#include <string>
#include <vector>

#include <korvel_utils.h>
#include "tools/request/chip.h"

namespace tool {

// A sentence for each, of a record that its validator accepts. The rules of a chip that is not
// known are not asked.
std::vector<std::string> strict_findings(const MemoryLayout& record, const Chip& chip);
std::vector<std::string> strict_findings(const SurfaceMetadata& record, const Chip& chip);

}  // namespace tool
