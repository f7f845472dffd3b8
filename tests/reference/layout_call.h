// One call that lays out a surface, in the words of a failure.
#pragma once

#include <cstdint>
#include <iosfwd>

#include <korvel_utils.h>

namespace comparison {

struct LayoutCall {
  int32_t width, height, depth;
  uint32_t format, samples, tiling_mode;
  uint64_t flags;
  uint32_t planes;
  uint32_t levels = 1;  // in the record that the surface entries are given
};

std::ostream& operator<<(std::ostream& out, const LayoutCall& call);

// True when both blobs hold the same bytes. Else false, with a test failure that names the entry,
// its arguments and the first words that differ.
bool expect_equal_blobs(const char* entry, const LayoutCall& call, const LayoutMetadata& actual,
                        const LayoutMetadata& expected);

}  // namespace comparison
