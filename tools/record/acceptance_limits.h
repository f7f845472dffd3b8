// What a validator's acceptance of a record does not mean. The rules count in 32 bits here and
// there, and leave some words out; where that hides something from them, the words of the record
// itself say so.
#pragma once

#include <string>
#include <vector>

#include <korvel_utils.h>

namespace tool {

// A sentence for each thing of an accepted record that lies outside the surface or its buffer; none
// when every buffer of every level lies inside the surface and every row inside its buffer.
std::vector<std::string> limits_of_acceptance(const MemoryLayout& record);
std::vector<std::string> limits_of_acceptance(const SurfaceMetadata& record);

}  // namespace tool
