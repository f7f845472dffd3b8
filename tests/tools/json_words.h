// Numbers in the JSON that the program prints.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/harness/off_by.h"

namespace tool_test {

inline void expect_word(const nlohmann::json& object, const std::string& name, uint64_t expected) {
  const nlohmann::json& word = object.at(name);
  ASSERT_TRUE(word.is_number_unsigned()) << name << " is " << word;
  EXPECT_NUMBER_NAMED(name, word.get<uint64_t>(), expected);
}

// Words of one object, under the names of the record's fields: numbers, true or false, and null for
// those that have no number.
inline void expect_words(const nlohmann::json& object, const nlohmann::json& expected) {
  for (const auto& [name, value] : expected.items()) {
    if (value.is_number()) {
      expect_word(object, name, value.get<uint64_t>());
    } else {
      EXPECT_EQ(object.at(name), value) << name;
    }
  }
}

}  // namespace tool_test
