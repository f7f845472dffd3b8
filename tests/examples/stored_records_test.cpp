// What docs/stored-records.md shows, on records that come from elsewhere.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>

#include <korvel_utils.h>
#include "tests/records/valid_record.h"

extern "C" int take_layout(const void* stored, size_t stored_bytes, uint64_t allocation_bytes,
                           const uint8_t* device_uuid, const uint8_t* driver_uuid,
                           MemoryLayout* copy);

namespace {

constexpr uint64_t kSurfaceBytes = 0x100000;
constexpr uint64_t kTwoTo31 = uint64_t{1} << 31;
constexpr uint64_t kTwoTo63 = uint64_t{1} << 63;
const records::Uuids kUuids = records::make_uuids({.family_id = 6, .model_code = 7, .rev_id = 8});

MemoryLayout stored_layout() {
  MemoryLayout record = records::valid_record<records::ResourceKind>(
      {.levels = 2, .slices = 4, .surface_bytes = kSurfaceBytes, .uuids = kUuids});
  record.alignment = 1;
  record.extra_valid = 1;
  record.extra_offset = kSurfaceBytes - 32896;
  record.extra_size = 32896;  // 4 slices
  record.extra_slice_pitch = 8224;
  return record;
}

bool is_taken(const MemoryLayout& stored, std::size_t bytes = sizeof(MemoryLayout),
              uint64_t allocation_bytes = UINT64_MAX) {
  MemoryLayout copy;
  const int taken =
      take_layout(&stored, bytes, allocation_bytes, kUuids.device, kUuids.driver, &copy);
  if (taken != 0) {
    EXPECT_EQ(std::memcmp(&copy, &stored, stored.size), 0);
  }
  return taken != 0;
}

bool is_accepted(const MemoryLayout& record) {
  return validate_resource_memory_layout_metadata(&record, kUuids.device, kUuids.driver) ==
         KORVEL_SUCCESS;
}

TEST(StoredRecords, ALayoutIsTaken) {
  EXPECT_TRUE(is_taken(stored_layout()));
  EXPECT_TRUE(is_taken(stored_layout(), sizeof(MemoryLayout), kSurfaceBytes));
  EXPECT_FALSE(is_taken(stored_layout(), sizeof(MemoryLayout), kSurfaceBytes - 1));
  EXPECT_FALSE(is_taken(stored_layout(), sizeof(MemoryLayout) - 1));
  EXPECT_FALSE(is_taken(stored_layout(), 0));
}

TEST(StoredRecords, ALayoutOfVersion1IsTakenWithWhateverStandsBehindIt) {
  MemoryLayout record = stored_layout();
  records::put_words(record.driver_uuid, records::DriverWords{.layout_version = 1});
  record.size = KORVEL_LAYOUT_BYTES_VERSION_1;
  record.total_size = record.size + kSurfaceBytes;
  record.extra_offset = UINT64_MAX;
  EXPECT_TRUE(is_taken(record));
  EXPECT_TRUE(is_taken(record, KORVEL_LAYOUT_BYTES_VERSION_1));
}

TEST(StoredRecords, WhatTheValidatorRefusesIsNotTaken) {
  MemoryLayout record = stored_layout();
  record.samples = 3;
  EXPECT_FALSE(is_accepted(record));
  EXPECT_FALSE(is_taken(record));
}

// Records that the validator accepts, each with one thing that does not lie inside.
TEST(StoredRecords, WhatDoesNotLieInsideIsNotTaken) {
  struct Row {
    const char* what;
    std::function<void(MemoryLayout&)> change;
  };
  const Row rows[] = {
      {"total_size below the record's own",
       [](MemoryLayout& r) {
         r.total_size = 100;
         for (LevelLayout& level : r.level) level.size = 1;
       }},
      {"2^31 bytes",
       [](MemoryLayout& r) {
         r.total_size = r.size + kTwoTo31;
         r.level[1].plane[2].image_offset = uint64_t{1} << 40;
       }},
      {"rows", [](MemoryLayout& r) { r.level[1].plane[2].image_height += 1U << 24; }},     // x 256
      {"elements", [](MemoryLayout& r) { r.level[1].plane[2].image_width += 1U << 30; }},  // x 4
      {"the extra buffer's end", [](MemoryLayout& r) { ++r.extra_offset; }},
      {"the extra buffer's slices", [](MemoryLayout& r) { ++r.extra_slice_pitch; }},
      {"the extra buffer's slice pitch", [](MemoryLayout& r) { r.extra_slice_pitch = kTwoTo63; }},
      {"the extra buffer's start", [](MemoryLayout& r) { r.extra_offset = UINT64_MAX; }},
  };
  for (const Row& row : rows) {
    MemoryLayout record = stored_layout();
    row.change(record);
    EXPECT_TRUE(is_accepted(record)) << row.what;
    EXPECT_FALSE(is_taken(record)) << row.what;
  }
  MemoryLayout largest = stored_layout();
  largest.total_size = largest.size + kTwoTo31 - 1;
  EXPECT_TRUE(is_taken(largest));
}

}  // namespace
