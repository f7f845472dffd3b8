// How much of the exhaustive comparison runs.
#pragma once

#include <cstdint>

namespace exhaustive {

// Of the formats, one in this many is compared: every one, unless a sanitizer or the coverage makes
// each call dear. KORVEL_EXHAUSTIVE=full in the environment compares every one there too, and takes
// sizes and sample counts together that the usual form takes one after the other.
uint32_t format_stride();
bool is_full();

}  // namespace exhaustive
