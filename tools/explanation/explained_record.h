// The record of a laid-out surface, made of its explanation alone: for any chip, without a call of
// the library's exports.
#pragma once

#include <korvel_utils.h>
#include "identify/chip_row.h"
#include "tools/explanation/explanation.h"
#include "tools/request/surface_request.h"

namespace tool {

// Words that the library does not write are 0.
MemoryLayout explained_record(const korvel::ChipRow& chip, const SurfaceRequest& request,
                              const Explanation& explanation);

}  // namespace tool
