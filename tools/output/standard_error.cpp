#include "tools/output/standard_error.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdio>

namespace tool {
namespace {

constexpr std::size_t kLongestQuote = 200;

}  // namespace

std::string without_controls(std::string_view text) {
  std::string line(text);
  std::replace_if(
      line.begin(), line.end(),
      [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
  return line;
}

void print_error(std::string_view reason) {
  fmt::print(stderr, "korvel-layout: {}\n", without_controls(reason));
}

void print_warning(std::string_view text) {
  fmt::print(stderr, "korvel-layout: warning: {}\n", without_controls(text));
}

void print_warnings(const std::vector<std::string>& texts) {
  for (const std::string& text : texts) print_warning(text);
}

std::string in_quotes(std::string_view text) {
  if (text.size() <= kLongestQuote) return fmt::format("\"{}\"", text);
  return fmt::format("\"{}...\"", text.substr(0, kLongestQuote));
}

}  // namespace tool
