// The record that a caller of the two surface entries brings along: its header is set, the rest is
// anything.
#pragma once

#include <cstdint>

#include <korvel_utils.h>
#include "fuzz/input_bytes.h"
#include "fuzz/machine.h"
#include "fuzz/surface_arguments.h"

namespace fuzz {

struct CallerRecord {
  MemoryLayout record;
  bool zeroed;  // but for its header
};

CallerRecord draw_caller_record(InputBytes& input, const Machine& machine,
                                const SurfaceArguments& arguments);

}  // namespace fuzz
