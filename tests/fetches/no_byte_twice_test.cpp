// The validators load no byte of a stored record twice: a record that others write to meanwhile
// cannot be one thing to a check and another to what relies on the check.
#include <gtest/gtest.h>

#include <set>

#include "tests/fetches/single_faults.h"
#include "tests/fetches/trace_rules.h"

namespace fetches {
namespace {

template <typename Kind>
class ValidatorLoads : public testing::Test {
 public:
  // Watches one call, expects what holds for every call, and returns what there was to see. Only
  // the first `readable_bytes` of the record exist.
  WatchedVerdict check(const typename Kind::Record& record, const std::string& what,
                       std::size_t readable_bytes = Kind::kBytes, std::size_t shift_bytes = 0) {
    WatchedMemory memory(readable_bytes, 0, shift_bytes);
    std::memcpy(memory.data(), &record, readable_bytes);
    WatchedVerdict seen = watched_verdict<Kind>(gpu_, memory);
    EXPECT_EQ(broken_rule(seen.trace, readable_bytes, name_of_byte<Kind>), "") << what;
    EXPECT_FALSE(seen.trace.touches.empty()) << what;
    for (const Touch& touch : seen.trace.touches) {
      EXPECT_FALSE(touch.stores) << what << ": " << text_of(touch);
    }
    return seen;
  }

  harness::Gpu gpu_{harness::kUnknownChip};
};

using Kinds = testing::Types<ResourceKind, SurfaceKind>;
TYPED_TEST_SUITE(ValidatorLoads, Kinds, KindName);

TYPED_TEST(ValidatorLoads, NoByteOfAValidRecordTwice) {
  using Kind = TypeParam;
  for (const uint32_t levels : {1U, 3U}) {  // what holds for three holds for more
    for (const uint32_t first_linear_level : {0U, 1U, 2U, 3U}) {
      for (const uint32_t planes : {1U, 2U, 3U}) {
        for (const uint32_t slices : {1U, 4U}) {
          for (const bool flags : {false, true}) {
            for (const bool lrz : {false, true}) {
              const auto record =
                  records::valid_record<Kind>({.levels = levels,
                                               .first_linear_level = first_linear_level,
                                               .slices = slices,
                                               .planes = planes,
                                               .flags = flags,
                                               .lrz = lrz});
              const std::string what = std::to_string(levels) + " levels, linear from " +
                                       std::to_string(first_linear_level) + " on, planes " +
                                       std::to_string(planes) + ", slices " +
                                       std::to_string(slices) + (flags ? ", flags" : "") +
                                       (lrz ? ", lrz" : "");
              const WatchedVerdict seen = this->check(record, what);
              EXPECT_TRUE(seen.verdict.accepted()) << what << ": " << seen.verdict;
              if (this->HasFailure()) return;  // one is enough
            }
          }
        }
      }
    }
  }
}

TYPED_TEST(ValidatorLoads, NoByteOfARecordAtAnyAddressTwice) {
  using Kind = TypeParam;
  for (const std::size_t shift_bytes : {1U, 2U, 4U, 8U, 15U}) {
    for (const auto& record : {full_record<Kind>(), plain_record<Kind>(1)}) {
      const std::string what = "shifted by " + std::to_string(shift_bytes);
      const WatchedVerdict seen = this->check(record, what, Kind::kBytes, shift_bytes);
      EXPECT_TRUE(seen.verdict.accepted()) << what << ": " << seen.verdict;
      if (this->HasFailure()) return;  // one is enough
    }
  }
}

TYPED_TEST(ValidatorLoads, NoByteOfAnInvalidRecordTwice) {
  using Kind = TypeParam;
  std::set<std::string> met;
  for (const SingleFault<Kind>& fault : single_faults<Kind>()) {
    auto record = full_record<Kind>();
    fault.change(record);
    const WatchedVerdict seen = this->check(record, fault.message_begins);
    EXPECT_EQ(seen.verdict.result, KORVEL_FAILURE);
    EXPECT_EQ(seen.verdict.message.substr(0, fault.message_begins.size()), fault.message_begins);
    EXPECT_EQ(seen.verdict, unwatched_verdict<Kind>(this->gpu_, record));
    met.insert(fault.message_begins);
  }
  const std::vector<std::string> all = messages_of_validator<Kind>();
  EXPECT_EQ(met, std::set<std::string>(all.begin(), all.end()));
}

// In other shapes than the full one, for which the validators may take other ways.
TYPED_TEST(ValidatorLoads, NoByteOfAnInvalidRecordOfAnotherShapeTwice) {
  using Kind = TypeParam;
  const records::Shape shapes[] = {{.levels = 4, .first_linear_level = 2},
                                   {.levels = 4, .slices = 1, .lrz = false},
                                   {.levels = 4, .slices = 4, .flags = false, .lrz = false}};
  for (const records::Shape& shape : shapes) {
    for (const SingleFault<Kind>& fault : level_faults<Kind>(2, 1)) {
      auto record = records::valid_record<Kind>(shape);
      fault.change(record);
      const WatchedVerdict seen = this->check(record, fault.message_begins);
      EXPECT_EQ(seen.verdict, unwatched_verdict<Kind>(this->gpu_, record));
    }
  }
}

// A validator that loaded nothing would pass all of the above.
TYPED_TEST(ValidatorLoads, EveryWordThatTheRulesName) {
  using Kind = TypeParam;
  const auto loaded_of = [this](const char* what, const typename Kind::Record& record) {
    const WatchedVerdict seen = this->check(record, what);
    this->RecordProperty(std::string("loads_of_") + what,
                         static_cast<int>(count_loads(seen.trace)));
    return loaded_bytes(seen.trace, Kind::kBytes);
  };
  const std::vector<bool> full = loaded_of("full_record", full_record<Kind>());
  const std::vector<bool> plain = loaded_of("plain_record", plain_record<Kind>(1));
  const std::vector<bool> fallback =
      loaded_of("record_with_linear_levels", fallback_record<Kind>());
  for (const Word& word : checked_words<Kind>()) {
    const bool of_lrz = word.field.starts_with("lrz_") && !word.field.ends_with("_valid");
    for (std::size_t i = word.offset_bytes; i < word.offset_bytes + word.bytes; ++i) {
      if (word.field == "linear_fallback") {
        EXPECT_TRUE(fallback[i]) << word.name();
        continue;
      }
      EXPECT_TRUE(full[i]) << word.name() << " of the full record";
      EXPECT_TRUE(plain[i] || of_lrz) << word.name() << " of the plain record";
    }
  }
}

class ResourceLoads : public ValidatorLoads<ResourceKind> {};

TEST_F(ResourceLoads, NothingBehindTheRecordOfAnyVersion) {
  struct Version {
    uint32_t version;
    uint32_t bytes;
  };
  for (const Version v :
       {Version{1, KORVEL_LAYOUT_BYTES_VERSION_1}, Version{2, KORVEL_LAYOUT_BYTES_VERSION_2},
        Version{3, KORVEL_LAYOUT_BYTES_VERSION_3}}) {
    MemoryLayout record = full_record<ResourceKind>();
    records::put_words(record.driver_uuid, records::DriverWords{.layout_version = v.version});
    record.total_size += v.bytes - record.size;  // the surface is as large as it was
    record.size = v.bytes;
    const std::string what = "version " + std::to_string(v.version);
    const WatchedVerdict seen = check(record, what, v.bytes);
    EXPECT_TRUE(seen.verdict.accepted()) << what << ": " << seen.verdict;
    record.size += 4;
    EXPECT_EQ(check(record, what, v.bytes).verdict.message.substr(0, 30),
              "Size of metadata is mismatched");
  }
}

}  // namespace
}  // namespace fetches
