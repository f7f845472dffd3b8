// Both validators against the reference on mutated records.

#include <gtest/gtest.h>

#include <cstring>

#include "tests/harness/chips.h"
#include "tests/records/valid_record.h"
#include "tests/reference/comparison.h"

using comparison::Arguments;
using comparison::Pair;

namespace {

records::Uuids make_uuids(Pair& pair) {
  records::Uuids uuids;
  pair.gpu->get_device_uuid(uuids.device, KORVEL_UUID_BYTES, 6, 7, 8);
  pair.gpu->get_driver_uuid(uuids.driver, KORVEL_UUID_BYTES);
  return uuids;
}

// A record that passes every check, with any numbers of slices and planes in each level.
template <typename Kind>
typename Kind::Record draw_valid_record(uint32_t levels, const records::Uuids& uuids,
                                        Arguments& a) {
  const uint32_t linear_fallback = a.below(2);
  auto record = records::valid_record<Kind>(
      {.levels = levels,
       .first_linear_level = linear_fallback != 0 ? 2U : uint32_t{KORVEL_MAX_LEVELS},
       .lrz = a.below(2) != 0,
       .uuids = uuids});
  record.linear_fallback = linear_fallback;  // also with no level beyond the second
  for (uint32_t l = 0; l < levels; ++l) {
    record.level[l].slices = 1 + a.below(3);
    record.level[l].planes = 1 + a.below(3);
  }
  return record;
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
void compare(Pair& pair, const void* record, const records::Uuids& uuids, Validate validate,
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
  const records::Uuids uuids = make_uuids(pair);
  Arguments a(1);
  for (uint32_t i = 0; i < 30000 * comparison::factor(); ++i) {
    const uint32_t levels = 1 + a.below(15);
    auto record = draw_valid_record<records::ResourceKind>(levels, uuids, a);
    mutate(reinterpret_cast<unsigned char*>(&record), counted_bytes<MemoryLayout>(levels), a);
    compare(pair, &record, uuids, pair.gpu->validate_resource_memory_layout_metadata,
            reference::validate_resource_memory_layout_metadata);
    if (HasFailure()) return;
  }
}

TEST(ValidationComparison, MutatedSurfaceRecords) {
  Pair pair(harness::full_chip(6));
  const records::Uuids uuids = make_uuids(pair);
  Arguments a(2);
  for (uint32_t i = 0; i < 30000 * comparison::factor(); ++i) {
    const uint32_t levels = 1 + a.below(15);
    auto record = draw_valid_record<records::SurfaceKind>(levels, uuids, a);
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
