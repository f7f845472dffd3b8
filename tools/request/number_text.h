// Numbers as users write them: decimal, or 0x and hexadecimal.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace tool {

// Nothing when the text is no number of at most 32 bits.
std::optional<uint32_t> number_of(std::string_view text);

// The same for 64 bits.
std::optional<uint64_t> long_number_of(std::string_view text);

// Digits only, whether or not their number fits 32 bits.
bool is_written_as_number(std::string_view text);

struct NumberRange {
  uint32_t first = 0;
  uint32_t last = std::numeric_limits<uint32_t>::max();
};

// What an option takes.
struct AllowedNumbers {
  std::string_view words;    // "a number from 1 to 15"
  std::string_view example;  // "12"
  NumberRange range = {};
};

// The value of an option. Throws BadInput, naming the option, for anything outside the range.
uint32_t number_option(std::string_view option, std::string_view text,
                       const AllowedNumbers& allowed);

}  // namespace tool
