// The fields of a resource record and of its blob by name and place.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <korvel_utils.h>

namespace records {

struct Field {
  std::string name;  // as "image_offset of level 2 plane 0"
  std::size_t offset_bytes;
  std::size_t size_bytes;
};

// Every byte is in exactly one field. UUIDs are four words each. The argument says which record.
const std::vector<Field>& fields_of(const MemoryLayout*);
const std::vector<Field>& fields_of(const LayoutMetadata*);

}  // namespace records
