// The value of a stored field as JSON.
#pragma once

#include <nlohmann/json.hpp>

#include "tools/record/stored_field.h"

namespace tool {

// A number; true or false for what is yes or no, unless the word is neither 0 nor 1; the text of a
// UUID; null for longer words, which nobody reads.
nlohmann::ordered_json stored_value_json(const StoredField& field, const unsigned char* bytes);

// "bytes", "elements" or "rows"; null for a field that measures nothing.
nlohmann::ordered_json stored_unit_json(const StoredField& field);

// Of ids alone, as hex text; else null.
nlohmann::ordered_json stored_hex_json(const StoredField& field, const unsigned char* bytes);

}  // namespace tool
