#include "tools/record/record_text.h"

#include <cstddef>
#include <cstdint>

namespace tool {
namespace {

using Bytes = std::vector<unsigned char>;

bool is_blank(unsigned char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::optional<uint32_t> hex_digit(unsigned char c) {
  if (c >= '0' && c <= '9') return c - uint32_t{'0'};
  if (c >= 'a' && c <= 'f') return c - uint32_t{'a'} + 10;
  if (c >= 'A' && c <= 'F') return c - uint32_t{'A'} + 10;
  return std::nullopt;
}

std::optional<uint32_t> base64_digit(unsigned char c) {
  if (c >= 'A' && c <= 'Z') return c - uint32_t{'A'};
  if (c >= 'a' && c <= 'z') return c - uint32_t{'a'} + 26;
  if (c >= '0' && c <= '9') return c - uint32_t{'0'} + 52;
  if (c == '+' || c == '-') return 62;
  if (c == '/' || c == '_') return 63;
  return std::nullopt;
}

}  // namespace

std::optional<Bytes> bytes_of_hex(std::span<const unsigned char> text) {
  Bytes bytes;
  for (std::size_t i = 0; i < text.size();) {
    const unsigned char c = text[i];
    if (is_blank(c) || c == ',') {
      ++i;
      continue;
    }
    if (i + 1 == text.size()) return std::nullopt;
    const unsigned char next = text[i + 1];
    if (c == '0' && (next == 'x' || next == 'X')) {
      i += 2;
      continue;
    }
    const std::optional<uint32_t> high = hex_digit(c);
    const std::optional<uint32_t> low = hex_digit(next);
    if (!high || !low) return std::nullopt;
    bytes.push_back(static_cast<unsigned char>(*high << 4 | *low));
    i += 2;
  }
  return bytes;
}

std::optional<Bytes> bytes_of_base64(std::span<const unsigned char> text) {
  Bytes bytes;
  uint32_t bits = 0;
  std::size_t digits = 0;
  std::size_t fillers = 0;
  for (const unsigned char c : text) {
    if (is_blank(c)) continue;
    if (c == '=') {
      ++fillers;
      continue;
    }
    const std::optional<uint32_t> digit = base64_digit(c);
    if (!digit || fillers > 0) return std::nullopt;
    bits = bits << 6 | *digit;
    if (++digits % 4 == 0) {
      for (const int shift : {16, 8, 0}) bytes.push_back(static_cast<unsigned char>(bits >> shift));
      bits = 0;
    }
  }
  const std::size_t rest = digits % 4;
  if (rest == 1 || (fillers != 0 && rest + fillers != 4)) return std::nullopt;
  if (rest >= 2) bytes.push_back(static_cast<unsigned char>(bits >> (rest == 2 ? 4 : 10)));
  if (rest == 3) bytes.push_back(static_cast<unsigned char>(bits >> 2));
  return bytes;
}

}  // namespace tool
