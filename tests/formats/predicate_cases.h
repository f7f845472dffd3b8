// The arguments over which the format predicates are tried in whole.
#pragma once

#include <climits>
#include <cstdint>
#include <vector>

#include "tests/harness/chips.h"

namespace formats_test {

// -1 to 800, the ends of the range, and numbers whose low bits are a format that every family has.
inline std::vector<int32_t> format_arguments() {
  std::vector<int32_t> formats = {INT_MIN, INT_MAX, -2, -28, 0x37425857};
  for (int32_t id = -1; id <= 800; ++id) formats.push_back(id);
  for (const uint32_t id : {2U, 28U, 40U, 103U, 508U}) {
    for (uint32_t bit = 10; bit < 32; ++bit) {
      formats.push_back(static_cast<int32_t>(id | (1U << bit)));
    }
  }
  return formats;
}

inline constexpr int32_t kUsages[] = {0, 1, -1, INT_MIN, 0x10000};

// What a chip's row says about its formats.
struct ChipFormats {
  uint32_t family;
  bool yuv16_ext;
  bool p016;
  bool sample_excluded;

  explicit ChipFormats(const harness::ChipData& chip)
      : family(chip.family_id),
        yuv16_ext(harness::model_of(chip).yuv16_ext),
        p016(harness::model_of(chip).p016),
        sample_excluded(harness::model_of(chip).family5_sample_excluded) {}
};

}  // namespace formats_test
