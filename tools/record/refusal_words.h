// Why the library's validators refuse a record, in words with the record's own numbers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tool {

// `message` is the validator's, `record_bytes` what the record's version or kind has. The library's
// own words follow in brackets; those of a rule that is not known here stand alone.
std::string refusal_words(std::string_view message, uint32_t record_bytes);

}  // namespace tool
