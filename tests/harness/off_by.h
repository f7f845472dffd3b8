// Numbers compared so that a failure says which number is wrong and by how much:
//   plane.image_offset: expected 8192 (0x2000), got 8256 (0x2040): off by 64
//
//   EXPECT_NUMBER(actual, expected)              named by the text of `actual`
//   EXPECT_NUMBER_NAMED(name, actual, expected)  for a name put together while the test runs
//
// Both take more text by <<, as gtest's own expectations do.
#pragma once

#include <gtest/gtest.h>

#include <concepts>
#include <cstdint>
#include <ios>
#include <sstream>
#include <string>
#include <utility>

namespace harness {

// Decimal and, from 10 on, hexadecimal; a negative number's digits are those of its own width.
template <std::integral Number>
std::string number_text(Number number) {
  // Added to 0, so that an 8-bit number is printed as one and not as a character.
  std::ostringstream text;
  text << number + 0;
  if (std::cmp_less(number, 0) || std::cmp_greater(number, 9)) {
    const uint64_t unused_bits = 64 - 8 * sizeof number;
    text << " (0x" << std::uppercase << std::hex
         << (static_cast<uint64_t>(number) << unused_bits >> unused_bits) << ")";
  }
  return text.str();
}

// What is to be added to the expected number to get the actual one.
template <std::integral Actual, std::integral Expected>
std::string difference_text(Actual actual, Expected expected) {
  const bool less = std::cmp_less(actual, expected);
  const auto a = static_cast<uint64_t>(actual);
  const auto e = static_cast<uint64_t>(expected);
  std::ostringstream text;
  text << (less ? "-" : "") << (less ? e - a : a - e);
  return text.str();
}

template <std::integral Actual, std::integral Expected>
testing::AssertionResult is_number(const std::string& name, Actual actual, Expected expected) {
  if (std::cmp_equal(actual, expected)) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << name << ": expected " << number_text(expected) << ", got " << number_text(actual)
         << ": off by " << difference_text(actual, expected);
}

// The shapes in which gtest hands over the texts of a macro's arguments.
template <std::integral Actual, std::integral Expected>
testing::AssertionResult compare_numbers(const char* actual_text, const char* /*expected_text*/,
                                         Actual actual, Expected expected) {
  return is_number(actual_text, actual, expected);
}

template <std::integral Actual, std::integral Expected>
testing::AssertionResult compare_named_numbers(const char* /*name_text*/,
                                               const char* /*actual_text*/,
                                               const char* /*expected_text*/,
                                               const std::string& name, Actual actual,
                                               Expected expected) {
  return is_number(name, actual, expected);
}

}  // namespace harness

#define EXPECT_NUMBER(actual, expected) \
  EXPECT_PRED_FORMAT2(harness::compare_numbers, actual, expected)

#define EXPECT_NUMBER_NAMED(name, actual, expected) \
  EXPECT_PRED_FORMAT3(harness::compare_named_numbers, name, actual, expected)
