// The value of a stored field with its meaning.
#pragma once

#include <cstdint>
#include <string>

#include "tools/record/stored_field.h"

namespace tool {

// For example "28  R8G8B8A8_UNORM" or "20  invalid: 1 to 15". `bytes` are those of the field,
// `record_size` is what the record says of its own size in bytes.
std::string field_value(const StoredField& field, const unsigned char* bytes, uint32_t record_size);

}  // namespace tool
