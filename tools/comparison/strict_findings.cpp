#include "tools/comparison/strict_findings.h"

#include <fmt/core.h>

#include "tools/comparison/buffer_overlaps.h"
#include "tools/comparison/chip_findings.h"

namespace tool {
namespace {

using Sentences = std::vector<std::string>;

template <typename Record>
void add_level_sizes(Sentences& sentences, const Record& record) {
  for (uint32_t l = 1; l < record.levels; ++l) {
    const uint64_t bytes = record.level[l].size;
    const uint64_t before_bytes = record.level[l - 1].size;
    if (bytes <= before_bytes) continue;
    sentences.push_back(
        fmt::format("level {}: its size of {} bytes is {} more than the {} of level {}, which is "
                    "larger in texels",
                    l, bytes, bytes - before_bytes, before_bytes, l - 1));
  }
}

template <typename Record>
Sentences findings_of(const Record& record, const Chip& chip) {
  Sentences sentences = overlap_sentences(record);
  add_level_sizes(sentences, record);
  if (chip.has_row) {
    const Sentences further = chip_findings(record, chip);
    sentences.insert(sentences.end(), further.begin(), further.end());
  }
  return sentences;
}

}  // namespace

Sentences strict_findings(const MemoryLayout& record, const Chip& chip) {
  return findings_of(record, chip);
}

Sentences strict_findings(const SurfaceMetadata& record, const Chip& chip) {
  return findings_of(record, chip);
}

}  // namespace tool
