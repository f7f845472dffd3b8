// Answers of several numbers, compared number by number: a failure names each that is wrong and
// says by how much.
//
//   EXPECT_NUMBERS(actual, expected)
//
// takes any two records of a type whose namespace has
//
//   std::vector<harness::NamedNumber> numbers_of(const Record&);
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "tests/harness/off_by.h"

namespace harness {

struct NamedNumber {
  const char* name;
  uint32_t value;
};

template <typename Record>
testing::AssertionResult compare_records(const char* actual_text, const char* /*expected_text*/,
                                         const Record& actual, const Record& expected) {
  const std::vector<NamedNumber> got = numbers_of(actual);
  const std::vector<NamedNumber> wanted = numbers_of(expected);
  testing::AssertionResult result = testing::AssertionSuccess();
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    const testing::AssertionResult number =
        is_number(wanted[i].name, got[i].value, wanted[i].value);
    if (number) continue;
    if (result) result = testing::AssertionFailure() << actual_text;
    result << "\n  " << number.message();
  }
  return result;
}

}  // namespace harness

#define EXPECT_NUMBERS(actual, expected) \
  EXPECT_PRED_FORMAT2(harness::compare_records, actual, expected)
