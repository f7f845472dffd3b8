// What these tests say of a record that is not the expected one.
#include <gtest/gtest-spi.h>

#include <gmock/gmock.h>

#include "tests/layout/same_record.h"

namespace layout_test {
namespace {

TEST(Reports, AWrongFieldIsNamedWithItsDistance) {
  const auto expected = canary<LayoutMetadata>();
  LayoutMetadata actual = expected;
  actual.layout.level[2].plane[0].image_offset += 64;
  EXPECT_NONFATAL_FAILURE(expect_same_record(actual, expected, "chain"),
                          "chain: image_offset of level 2 plane 0: expected ");
  EXPECT_NONFATAL_FAILURE(expect_same_record(actual, expected, "chain"), ": off by 64");
  actual = expected;
  actual.header.blob_size -= 1;
  EXPECT_NONFATAL_FAILURE(expect_same_record(actual, expected, "head"),
                          "head: blob_size of the header: expected ");
  EXPECT_NONFATAL_FAILURE(expect_same_record(actual, expected, "head"), ": off by -1");
}

TEST(Reports, NumbersAreDecimalAndHexadecimal) {
  const uint64_t image_offset = 8256;
  EXPECT_NONFATAL_FAILURE(EXPECT_NUMBER(image_offset, 8192),
                          "image_offset: expected 8192 (0x2000), got 8256 (0x2040): off by 64");
  const int32_t height = -3;
  EXPECT_NONFATAL_FAILURE(EXPECT_NUMBER(height, 4),
                          "height: expected 4, got -3 (0xFFFFFFFD): off by -7");
  // Equal bits of another sign are another number.
  EXPECT_NONFATAL_FAILURE(EXPECT_NUMBER(height, 0xFFFFFFFD), "off by -4294967296");
}

template <typename Record>
void expect_every_byte_in_one_field() {
  const auto record = canary<Record>();
  std::vector<int> fields_of_byte(sizeof record, 0);
  for (const records::Field& field : records::fields_of(&record)) {
    for (std::size_t i = 0; i < field.size_bytes; ++i) {
      ++fields_of_byte.at(field.offset_bytes + i);
    }
  }
  EXPECT_THAT(fields_of_byte, testing::Each(1));
}

TEST(Reports, EveryByteIsInOneField) {
  expect_every_byte_in_one_field<MemoryLayout>();
  expect_every_byte_in_one_field<LayoutMetadata>();
}

}  // namespace
}  // namespace layout_test
