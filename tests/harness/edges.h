// Arguments at which the rules change: just below, at and just above every step that they take.
#pragma once

#include <cstdint>
#include <limits>
#include <set>
#include <vector>

namespace harness {

// The ids of the table, the first ones beyond it, the largest number, and the one four-character
// code.
inline std::vector<uint32_t> format_edges() {
  std::vector<uint32_t> formats;
  for (uint32_t id = 0; id < 725; ++id) formats.push_back(id);
  for (const uint32_t id : {1024U, 0x37425856U, 0x37425857U, 0x80000000U, 0xFFFFFFFFU}) {
    formats.push_back(id);
  }
  return formats;
}

// Counts of elements, below 2^31: the tiles' and units' sizes (powers of two), blocks of 3, 5, 6,
// 10 and 12 texels, the pitches from which padding repeats, the limits of pitches, and
// where products with element sizes wrap 32 bits or change their sign.
inline std::vector<int32_t> size_edges() {
  constexpr int64_t kLargest = std::numeric_limits<int32_t>::max();
  std::set<int64_t> sizes = {0, 1, 2, 3, kLargest - 63, kLargest - 62, kLargest - 1, kLargest};
  const auto around = [&sizes](int64_t step) {
    for (int64_t size = step - 1; size <= step + 1; ++size) {
      if (size >= 0 && size <= kLargest) sizes.insert(size);
    }
  };
  for (int64_t step = 4; step <= 32768; step *= 2) around(step);
  for (const int64_t block : {3, 5, 6, 10, 12}) around(block * 64);
  for (const int64_t pitch : {192, 320, 448, 1088, 1984, 2112, 6144, 6208, 18432}) around(pitch);
  for (int64_t wrap = 1 << 24; wrap <= 1 << 30; wrap *= 2) around(wrap);
  for (const int64_t odd : {3, 6, 12}) around((int64_t{1} << 31) / odd);
  return {sizes.begin(), sizes.end()};
}

// A few of them, for sweeps whose other arguments are many.
inline constexpr int32_t kFewSizes[] = {0,   1,    15,   16,   17,   63,   64,    65,
                                        129, 1023, 1921, 2048, 2049, 4160, 16385, 0x10000000};

// All sample counts that tile and element sizes tell apart, and some that they do not know.
inline constexpr uint32_t kSampleEdges[] = {1, 2, 4, 8, 0, 3, 5, 6, 7, 9, 16, 32, 64, 0xFFFFFFFF};

}  // namespace harness
