#include "tests/digest/line.h"

#include <cinttypes>
#include <cstdio>

namespace digest {

std::string Line::text() const {
  char numbers[64];
  std::snprintf(numbers, sizeof numbers, "%9" PRIu64 " %016" PRIx64 "  ", cases_, hash_);
  return numbers + name_;
}

std::vector<std::string> computed_lines() {
  Lines lines;
  add_identity_lines(lines);
  add_capability_lines(lines);
  add_alignment_lines(lines);
  add_layout_lines(lines);
  add_validation_lines(lines);
  std::vector<std::string> texts;
  for (const Line& line : lines) texts.push_back(line.text());
  return texts;
}

}  // namespace digest
