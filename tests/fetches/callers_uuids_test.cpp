// The UUIDs that a caller hands to the validators are read once, too: a mismatch is reported with
// the numbers that were compared.
#include <gtest/gtest.h>

#include "tests/fetches/single_faults.h"
#include "tests/fetches/trace_rules.h"

namespace fetches {
namespace {

template <typename Kind>
class CallersUuids : public testing::Test {};

using Kinds = testing::Types<ResourceKind, SurfaceKind>;
TYPED_TEST_SUITE(CallersUuids, Kinds, KindName);

constexpr std::size_t kWord_bytes = 4;

// Both, one behind the other.
void put_uuids(WatchedMemory& memory) {
  std::memcpy(memory.data(), kUuids.device, sizeof kUuids.device);
  std::memcpy(memory.data() + KORVEL_UUID_BYTES, kUuids.driver, sizeof kUuids.driver);
}

std::string name_of_uuid_byte(std::size_t offset_bytes) {
  return "byte " + std::to_string(offset_bytes % KORVEL_UUID_BYTES) + " of the caller's " +
         (offset_bytes < KORVEL_UUID_BYTES ? "device_uuid" : "driver_uuid");
}

template <typename Kind>
WatchedVerdict watched_uuids(harness::Gpu& gpu, WatchedMemory& memory,
                             const typename Kind::Record& record) {
  uint32_t result = 0;
  const auto validate = Kind::entry(gpu);
  Trace trace = memory.watch(
      [&] { result = validate(&record, memory.data(), memory.data() + KORVEL_UUID_BYTES); });
  return {verdict_of(gpu, result), std::move(trace)};
}

// A record that is accepted, and one for each message that prints the UUIDs.
template <typename Kind>
std::vector<typename Kind::Record> records_of_each_verdict() {
  std::vector<typename Kind::Record> all = {full_record<Kind>()};
  for (const SingleFault<Kind>& fault : header_faults<Kind>()) {
    if (fault.message_begins.find("version mismatch") == std::string::npos) continue;
    all.push_back(full_record<Kind>());
    fault.change(all.back());
  }
  return all;
}

TYPED_TEST(CallersUuids, NoByteTwice) {
  using Kind = TypeParam;
  harness::Gpu gpu(harness::kUnknownChip);
  const auto records = records_of_each_verdict<Kind>();
  // valid; four words of the device; one of the driver; and the layout version of a MemoryLayout
  EXPECT_EQ(records.size(), (std::is_same_v<Kind, ResourceKind> ? 7U : 6U));
  for (const auto& record : records) {
    for (std::size_t shift_bytes = 0; shift_bytes < 8; ++shift_bytes) {
      WatchedMemory memory(2 * KORVEL_UUID_BYTES, 0, shift_bytes);
      put_uuids(memory);
      const WatchedVerdict seen = watched_uuids<Kind>(gpu, memory, record);
      EXPECT_EQ(seen.verdict, unwatched_verdict<Kind>(gpu, record));
      EXPECT_EQ(broken_rule(seen.trace, memory.size(), name_of_uuid_byte), "") << seen.verdict;
      EXPECT_GT(count_loads(seen.trace), 0U) << seen.verdict;
      if (this->HasFailure()) return;  // one is enough
    }
  }
}

// Words that make the record one of another machine, and are put right as soon as they are read.
TYPED_TEST(CallersUuids, MismatchIsThatOfTheWordsRead) {
  using Kind = TypeParam;
  harness::Gpu gpu(harness::kUnknownChip);
  const auto record = full_record<Kind>();
  std::size_t mismatches = 0;
  for (std::size_t word = 0; word < 8; ++word) {
    uint8_t uuids[2 * KORVEL_UUID_BYTES];
    std::memcpy(uuids, kUuids.device, KORVEL_UUID_BYTES);
    std::memcpy(uuids + KORVEL_UUID_BYTES, kUuids.driver, KORVEL_UUID_BYTES);
    const std::size_t at = word * kWord_bytes;
    const std::vector<unsigned char> right(uuids + at, uuids + at + kWord_bytes);
    uuids[at] ^= 0xFF;
    const Verdict expected =
        verdict_of(gpu, Kind::entry(gpu)(&record, uuids, uuids + KORVEL_UUID_BYTES));
    if (!expected.accepted()) ++mismatches;

    WatchedMemory memory(sizeof uuids);
    std::memcpy(memory.data(), uuids, sizeof uuids);
    memory.flip_after_first_load({{at, right}}, AfterFlips::kWatchOn);
    const WatchedVerdict seen = watched_uuids<Kind>(gpu, memory, record);
    EXPECT_EQ(seen.verdict, expected) << "word " << word;
    EXPECT_EQ(broken_rule(seen.trace, memory.size(), name_of_uuid_byte), "") << "word " << word;
    if (!expected.accepted()) {
      EXPECT_EQ(seen.trace.flips, 1U) << "word " << word;
    }
  }
  // The device's four words, and of the driver's those that are compared. A caller with another
  // layout version reads a record of version 3 as well.
  EXPECT_EQ(mismatches, 5U);
}

}  // namespace
}  // namespace fetches
