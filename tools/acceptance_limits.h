// What a validator's acceptance of a record does not mean. The rules count in 32 bits here and
// there, and leave some words out; where that hides something from them, the words of the record
// itself say so.
#pragma once

#include <string>
#include <vector>

#include <korvel_utils.h>

namespace tool {

// A sentence for each thing that does not lie where an accepted record's reader would take it to
// lie; none when every buffer of every level lies inside the surface and every row inside its
// buffer.
std::vector<std::string> limits_of_acceptance(const MemoryLayout& record);
std::vector<std::string> limits_of_acceptance(const SurfaceMetadata& record);

}  // namespace tool
