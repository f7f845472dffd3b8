// How much of the exhaustive comparison runs.
#pragma once

#include <cstdint>
#include <vector>

namespace exhaustive {

// Of the formats, one in this many is compared: every one, unless a sanitizer, the coverage or an
// emulator makes each call slow. KORVEL_EXHAUSTIVE=full in the environment compares every one there
// too, and takes sizes and sample counts together that the usual form takes one after the other. Any
// other value ends the test program.
uint32_t format_stride();
bool is_full();

// Those formats, of harness::format_edges(), and some of every block height.
std::vector<uint32_t> formats_of_every_block_height();

}  // namespace exhaustive
