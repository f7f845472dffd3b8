#include "tests/reference/layout_call.h"

#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <sstream>

#include "tests/reference/difference.h"

namespace comparison {

namespace {

constexpr int kMostWordsShown = 8;

uint32_t word_at(const LayoutMetadata& blob, std::size_t byte) {
  uint32_t word;
  std::memcpy(&word, reinterpret_cast<const unsigned char*>(&blob) + byte, sizeof word);
  return word;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const LayoutCall& c) {
  return out << "width " << c.width << ", height " << c.height << ", depth " << c.depth
             << ", format " << c.format << ", samples " << c.samples << ", tiling_mode "
             << c.tiling_mode << ", flags 0x" << std::hex << c.flags << std::dec << ", planes "
             << c.planes << ", levels " << c.levels;
}

bool expect_equal_blobs(const char* entry, const LayoutCall& call, const LayoutMetadata& actual,
                        const LayoutMetadata& expected) {
  if (std::memcmp(&actual, &expected, sizeof actual) == 0) return true;
  std::ostringstream text;
  text << entry << "(" << call << "):";
  int words = 0;
  for (std::size_t byte = 0; byte < sizeof actual; byte += sizeof(uint32_t)) {
    const uint32_t actual_word = word_at(actual, byte);
    const uint32_t expected_word = word_at(expected, byte);
    if (actual_word == expected_word) continue;
    if (++words > kMostWordsShown) continue;
    text << "\n  the word at byte " << byte << " " << difference(actual_word, expected_word);
  }
  if (words > kMostWordsShown) text << "\n  and " << words - kMostWordsShown << " words more";
  ADD_FAILURE() << text.str();
  return false;
}

}  // namespace comparison
