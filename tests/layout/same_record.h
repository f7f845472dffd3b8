// Records compared byte for byte.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

#include "tests/harness/off_by.h"
#include "tests/records/fields.h"

namespace layout_test {

// Every byte differs from its neighbours and from what the library stores there.
template <typename Record>
Record canary() {
  Record record;
  auto* bytes = reinterpret_cast<unsigned char*>(&record);
  for (std::size_t i = 0; i < sizeof record; ++i) {
    bytes[i] = static_cast<unsigned char>(i * 37 + 0x5B);
  }
  return record;
}

inline uint64_t number_at(const void* record, const records::Field& field) {
  uint64_t number = 0;
  std::memcpy(&number, static_cast<const unsigned char*>(record) + field.offset_bytes,
              field.size_bytes);
  return number;
}

// Field by field, the bytes that nobody writes among them.
template <typename Record>
void expect_same_record(const Record& actual, const Record& expected, const std::string& what) {
  if (std::memcmp(&actual, &expected, sizeof actual) == 0) return;
  constexpr int kMostReports = 8;
  int reports = 0;
  for (const records::Field& field : records::fields_of(&actual)) {
    const uint64_t number = number_at(&actual, field);
    const uint64_t expected_number = number_at(&expected, field);
    if (number == expected_number) continue;
    EXPECT_NUMBER_NAMED(what + ": " + field.name, number, expected_number);
    if (++reports == kMostReports) return;
  }
  if (reports == 0) ADD_FAILURE() << what << ": bytes differ that are in no field";
}

}  // namespace layout_test
