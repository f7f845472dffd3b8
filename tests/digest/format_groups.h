// The formats in groups, so that a change of one kind of format shows in few lines of the digest.
#pragma once

#include <cstdint>
#include <vector>

#include "tests/harness/edges.h"

namespace digest {

struct FormatGroup {
  const char* name;
  uint32_t first;
  uint32_t last;
};

inline constexpr FormatGroup kFormatGroups[] = {
    {"0-69", 0, 69},       {"70-99", 70, 99},     {"100-132", 100, 132},
    {"133-187", 133, 187}, {"188-500", 188, 500}, {"501-567", 501, 567},
    {"568-609", 568, 609}, {"610-625", 610, 625}, {"626-645", 626, 645},
    {"646-680", 646, 680}, {"681-721", 681, 721}, {"others", 722, 0xFFFFFFFF},
};

inline std::vector<uint32_t> formats_of(const FormatGroup& group) {
  std::vector<uint32_t> formats;
  for (const uint32_t format : harness::format_edges()) {
    if (format >= group.first && format <= group.last) formats.push_back(format);
  }
  return formats;
}

}  // namespace digest
