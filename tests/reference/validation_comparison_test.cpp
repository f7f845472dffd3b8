// Both validators against the reference on mutated records.

#include <gtest/gtest.h>

#include <cstring>

#include "tests/harness/chips.h"
#include "tests/reference/comparison.h"

using comparison::Arguments;
using comparison::Pair;

namespace {

struct Uuids {
  uint8_t device[KORVEL_UUID_BYTES];
  uint8_t driver[KORVEL_UUID_BYTES];
};

Uuids make_uuids(Pair& pair) {
  Uuids uuids;
  pair.gpu->get_device_uuid(uuids.device, KORVEL_UUID_BYTES, 6, 7, 8);
  pair.gpu->get_driver_uuid(uuids.driver, KORVEL_UUID_BYTES);
  return uuids;
}

// A record of `levels` levels that passes every check, in either layout.
template <typename Record>
void fill_valid(Record& record, uint32_t levels, uint32_t size, const Uuids& uuids, Arguments& a) {
  record.size = size;
  std::memcpy(record.device_uuid, uuids.device, sizeof uuids.device);
  std::memcpy(record.driver_uuid, uuids.driver, sizeof uuids.driver);
  record.total_size = size + 0x100000;
  record.alignment = 4096;
  record.format = 28;
  record.samples = 4;
  record.levels = levels;
  record.linear_fallback = a.below(2);
  const uint32_t lrz = a.below(2);
  for (uint32_t l = 0; l < levels; ++l) {
    auto& level = record.level[l];
    level.slices = 1 + a.below(3);
    level.tiled = record.linear_fallback != 0 && l >= 2 ? 0 : 1;
    level.size = 0x4000;
    level.planes = 1 + a.below(3);
    level.lrz_valid = level.lrz_fc_valid = lrz;
    level.lrz_offset = 0x1000;
    level.lrz_size = 0x800;
    level.lrz_pitch = 64;
    level.lrz_slice_pitch = 0x1000;
    level.lrz_width = 60;
    level.lrz_height = 32;
    level.lrz_fc_offset = 0;
    level.lrz_fc_size = 512;
    for (auto& plane : level.plane) {
      plane.image_offset = 0x2000;
      plane.image_size = 0x1000;
      plane.image_pitch = 256;
      plane.image_slice_pitch = 0x2000;
      plane.image_element_size = 4;
      plane.image_width = 64;
      plane.image_height = 16;
      plane.flag_valid = level.tiled;
      plane.flag_offset = 0x8000;
      plane.flag_size = 0x1000;
      plane.flag_pitch = 64;
      plane.flag_slice_pitch = 0x1000;
    }
  }
}

uint32_t interesting_word(Arguments& a, uint32_t old) {
  switch (a.below(8)) {
    case 0: return 0;
    case 1: return 1;
    case 2: return old + 1;
    case 3: return old - 1;
    case 4: return 0xFFFFFFFF;
    case 5: return 1U << a.below(32);
    case 6: return old ^ (1U << a.below(32));
    default: return static_cast<uint32_t>(a.any());
  }
}

// Changes up to three words anywhere in the part that counts.
void mutate(unsigned char* record, std::size_t bytes, Arguments& a) {
  for (uint32_t changes = a.below(4); changes > 0; --changes) {
    const std::size_t offset = 4 * a.below(static_cast<uint32_t>(bytes / 4));
    uint32_t word;
    std::memcpy(&word, record + offset, sizeof word);
    word = interesting_word(a, word);
    std::memcpy(record + offset, &word, sizeof word);
  }
}

template <typename Validate, typename Reference>
void compare(Pair& pair, const void* record, const Uuids& uuids, Validate validate,
             Reference expected) {
  EXPECT_EQ(validate(record, uuids.device, uuids.driver),
            expected(pair.process, record, uuids.device, uuids.driver));
  pair.expect_equal_reports();
}

// Bytes of a record up to the end of its last counted level.
template <typename Record>
std::size_t counted_bytes(uint32_t levels) {
  return offsetof(Record, level) + levels * sizeof(Record{}.level[0]);
}

}  // namespace

TEST(ValidationComparison, MutatedLayoutRecords) {
  Pair pair(harness::full_chip(6));
  const Uuids uuids = make_uuids(pair);
  Arguments a(1);
  for (uint32_t i = 0; i < 30000 * comparison::factor(); ++i) {
    const uint32_t levels = 1 + a.below(15);
    MemoryLayout record{};
    record.signature = KORVEL_LAYOUT_SIGNATURE;
    fill_valid(record, levels, 5512, uuids, a);
    mutate(reinterpret_cast<unsigned char*>(&record), counted_bytes<MemoryLayout>(levels), a);
    compare(pair, &record, uuids, pair.gpu->validate_resource_memory_layout_metadata,
            reference::validate_resource_memory_layout_metadata);
    if (HasFailure()) return;
  }
}

TEST(ValidationComparison, MutatedSurfaceRecords) {
  Pair pair(harness::full_chip(6));
  const Uuids uuids = make_uuids(pair);
  Arguments a(2);
  for (uint32_t i = 0; i < 30000 * comparison::factor(); ++i) {
    const uint32_t levels = 1 + a.below(15);
    SurfaceMetadata record{};
    record.signature = KORVEL_SURFACE_SIGNATURE;
    record.guid = 0x100000000;
    fill_valid(record, levels, 5300, uuids, a);
    for (auto& level : record.level) {
      for (auto& plane : level.plane) {
        plane.actual_width = 60;
        plane.actual_height = 15;
      }
    }
    // The identity stands at the end of this record.
    const bool at_end = a.one_in(8);
    auto* bytes = reinterpret_cast<unsigned char*>(&record);
    if (at_end) {
      mutate(bytes + offsetof(SurfaceMetadata, device_uuid), 40, a);
    } else {
      mutate(bytes, counted_bytes<SurfaceMetadata>(levels), a);
    }
    compare(pair, &record, uuids, pair.gpu->validate_surface_metadata,
            reference::validate_surface_metadata);
    if (HasFailure()) return;
  }
}
