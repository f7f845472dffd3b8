// One call of every entry that aligns by format, on both sides of a machine.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "tests/harness/fault_trap.h"
#include "tests/reference/comparison.h"

namespace comparison {

// The arguments of the widest entry; the others take some of them.
struct AlignmentCall {
  int32_t width, height;
  uint32_t plane, format, samples, tiling_mode, tiling_allowed, selector;
  int32_t min_padded_row_bytes;
  uint32_t divisor, want_extra_padding;
};

std::ostream& operator<<(std::ostream& out, const AlignmentCall& call);

struct Counts {
  uint64_t calls = 0;
  uint64_t faults = 0;  // of them, on both sides
};

// Compares what both sides answer: stored words, or the division fault. False, with a test failure
// that names the entry, its arguments and the words that differ, when they do.
bool compare_alignments(Pair& pair, harness::FaultTrap& trap, const AlignmentCall& call,
                        Counts& counts);

}  // namespace comparison
