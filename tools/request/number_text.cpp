#include "tools/request/number_text.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "tools/output/standard_error.h"
#include "tools/request/bad_input.h"

namespace tool {
namespace {

struct Digits {
  std::string_view text;
  int base;
};

Digits digits_of(std::string_view text) {
  if (text.starts_with("0x") || text.starts_with("0X")) return {text.substr(2), 16};
  return {text, 10};
}

bool is_digit(char c, int base) {
  if (c >= '0' && c <= '9') return true;
  return base == 16 && ((c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'));
}

template <typename Number>
std::optional<Number> parsed(std::string_view text) {
  const Digits digits = digits_of(text);
  const char* const end = digits.text.data() + digits.text.size();
  Number number = 0;
  const auto [stop, error] = std::from_chars(digits.text.data(), end, number, digits.base);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

}  // namespace

std::optional<uint32_t> number_of(std::string_view text) {
  return parsed<uint32_t>(text);
}

std::optional<uint64_t> long_number_of(std::string_view text) {
  return parsed<uint64_t>(text);
}

bool is_written_as_number(std::string_view text) {
  const Digits digits = digits_of(text);
  return !digits.text.empty() &&
         std::all_of(digits.text.begin(), digits.text.end(),
                     [&digits](char c) { return is_digit(c, digits.base); });
}

uint32_t number_option(std::string_view option, std::string_view text,
                       const AllowedNumbers& allowed) {
  const std::optional<uint32_t> number = number_of(text);
  if (!number || *number < allowed.range.first || *number > allowed.range.last) {
    refuse("{}: {} is not {}; write for example {} {}", option, in_quotes(text), allowed.words,
           option, allowed.example);
  }
  return *number;
}

}  // namespace tool
