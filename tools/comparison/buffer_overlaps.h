// Buffers of a record that lie in the same bytes.
#pragma once

#include <string>
#include <vector>

#include <korvel_utils.h>

namespace tool {

// A sentence for each pair of buffers, of an accepted record; the first few of many.
std::vector<std::string> overlap_sentences(const MemoryLayout& record);
std::vector<std::string> overlap_sentences(const SurfaceMetadata& record);

}  // namespace tool
