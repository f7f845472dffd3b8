// A stored word that another writer changes as soon as it has been read: the verdict is that of the
// record as it was read, message and all.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tests/fetches/single_faults.h"
#include "tests/fetches/trace_rules.h"

namespace fetches {
namespace {

// Numbers that one word or another must not have.
std::vector<uint64_t> odd_numbers(const Word& word) {
  if (word.bytes == 8) {
    return {0, 1, 0x1001, uint64_t{1} << 40, uint64_t{1} << 63, 0xFFFFFFFFFFFFFFFF};
  }
  return {0, 1, 2, 4, 5, 16, 33, 65, 722, 0x1001, 0x10000, 0x80000000, 0xFFFFFFFF};
}

Flip flip_to(const Word& word, const void* record) {
  const auto* bytes = static_cast<const unsigned char*>(record) + word.offset_bytes;
  return {word.offset_bytes, {bytes, bytes + word.bytes}};
}

// Of neither the header nor the first or the last level, which stand for the others.
bool in_the_middle(const Word& word) {
  return !word.place.empty() && word.place.find("uuid") == std::string::npos &&
         word.place.find("level 0") == std::string::npos &&
         word.place.find("level 14") == std::string::npos;
}

std::size_t lowest_offset_bytes(const std::vector<Word>& words) {
  std::size_t lowest = words[0].offset_bytes;
  for (const Word& word : words) lowest = std::min(lowest, word.offset_bytes);
  return lowest;
}

template <typename Kind>
class Flips : public testing::Test {
 public:
  using Record = typename Kind::Record;

  // The record is `first` until it is read, and the named words are those of `then` from then on.
  WatchedVerdict flipped(WatchedMemory& memory, const Record& first, const Record& then,
                         const std::vector<Word>& words, AfterFlips after) {
    std::memcpy(memory.data(), &first, sizeof first);
    std::vector<Flip> flips;
    for (const Word& word : words) flips.push_back(flip_to(word, &then));
    memory.flip_after_first_load(std::move(flips), after);
    return watched_verdict<Kind>(gpu_, memory);
  }

  // Expects the verdict on `first`, and that the word was read at all.
  void check(WatchedMemory& memory, const Record& first, const Record& then, const Word& word,
             AfterFlips after = AfterFlips::kStopWatching) {
    const Verdict expected = unwatched_verdict<Kind>(gpu_, first);
    const WatchedVerdict seen = flipped(memory, first, then, {word}, after);
    const std::string what = word.name() + ", " + std::to_string(word_in(&first, word)) +
                             " and then " + std::to_string(word_in(&then, word));
    EXPECT_EQ(seen.verdict, expected) << what;
    EXPECT_EQ(broken_rule(seen.trace, sizeof first, name_of_byte<Kind>), "") << what;
    EXPECT_EQ(seen.trace.flips, 1U) << what;
    EXPECT_EQ(word_in(memory.data(), word), word_in(&then, word)) << what;
  }

  // Numbers of the word that make the record invalid, one for each message; in the middle of the
  // record one for each word.
  std::vector<uint64_t> invalid_numbers(const Record& valid, const Word& word) {
    std::vector<uint64_t> numbers;
    std::set<std::string> met;
    for (const uint64_t number : odd_numbers(word)) {
      Record record = valid;
      put_word(&record, word, number);
      const Verdict verdict = unwatched_verdict<Kind>(gpu_, record);
      if (verdict.accepted()) continue;
      if (!numbers.empty() && in_the_middle(word)) continue;
      if (met.insert(verdict.message.substr(0, verdict.message.find('{'))).second) {
        numbers.push_back(number);
      }
    }
    return numbers;
  }

  harness::Gpu gpu_{harness::kUnknownChip};
};

using Kinds = testing::Types<ResourceKind, SurfaceKind>;
TYPED_TEST_SUITE(Flips, Kinds, KindName);

template <typename Kind>
std::vector<typename Kind::Record> valid_records() {
  return {full_record<Kind>(), plain_record<Kind>(4), plain_record<Kind>(1)};
}

// Each word of the header, of each level and of each plane, in each record in which a number of it
// is refused. Were there none, the word would not be tried.
TYPED_TEST(Flips, OfEachWordFromInvalidToValid) {
  using Kind = TypeParam;
  std::vector<typename Kind::Record> all = valid_records<Kind>();
  for (const Word& word : checked_words<Kind>()) {
    if (word.field == "linear_fallback") continue;  // see OfTheFallbackWordAndOfLinearLevels
    WatchedMemory memory(Kind::kBytes, word.offset_bytes);
    std::size_t tried = 0;
    for (const auto& valid : all) {
      for (const uint64_t number : this->invalid_numbers(valid, word)) {
        auto invalid = valid;
        put_word(&invalid, word, number);
        this->check(memory, invalid, valid, word);
        ++tried;
      }
    }
    EXPECT_GT(tried, 0U) << word.name();
    if (this->HasFailure()) return;  // one is enough
  }
}

TYPED_TEST(Flips, OfEachWordFromValidToAnything) {
  using Kind = TypeParam;
  std::vector<typename Kind::Record> all = valid_records<Kind>();
  for (const Word& word : checked_words<Kind>()) {
    if (word.field == "linear_fallback") continue;  // see OfTheFallbackWordAndOfLinearLevels
    WatchedMemory memory(Kind::kBytes, word.offset_bytes);
    std::size_t tried = 0;
    for (const auto& valid : all) {
      std::vector<uint64_t> numbers = this->invalid_numbers(valid, word);
      if (numbers.empty()) continue;  // the words of absent buffers are not read
      if (!in_the_middle(word)) numbers.push_back(word_in(&valid, word) ^ 0x5A5A5A5A);
      for (const uint64_t number : numbers) {
        auto anything = valid;
        put_word(&anything, word, number);
        this->check(memory, valid, anything, word);
        ++tried;
      }
    }
    EXPECT_GT(tried, 0U) << word.name();
    if (this->HasFailure()) return;  // one is enough
  }
}

// Where tiled levels are followed by linear ones, which this word allows; elsewhere it need not be
// read. The levels' own words in such a record, too.
TYPED_TEST(Flips, OfTheFallbackWordAndOfLinearLevels) {
  using Kind = TypeParam;
  const auto valid = fallback_record<Kind>();
  const std::set<std::string> fields = {"linear_fallback", "tiled", "flag_valid", "planes"};
  std::size_t tried = 0;
  for (const Word& word : checked_words<Kind>()) {
    if (fields.count(word.field) == 0) continue;
    WatchedMemory memory(Kind::kBytes, word.offset_bytes);
    for (const uint64_t number : this->invalid_numbers(valid, word)) {
      auto invalid = valid;
      put_word(&invalid, word, number);
      this->check(memory, invalid, valid, word);
      this->check(memory, valid, invalid, word);
      ++tried;
    }
  }
  // One number of the fallback word, and at least one of tiled, of planes and of each flag_valid of
  // each level
  EXPECT_GE(tried, 1U + KORVEL_MAX_LEVELS * (2U + KORVEL_MAX_PLANES));
}

// Each message, some of which take two wrong words: all of them are put right, each as soon as it
// has been read.
TYPED_TEST(Flips, OfTheWordsBehindEachMessage) {
  using Kind = TypeParam;
  std::set<std::string> met;
  for (const auto& valid : valid_records<Kind>()) {
    for (const SingleFault<Kind>& fault : single_faults<Kind>()) {
      auto invalid = valid;
      fault.change(invalid);
      const Verdict expected = unwatched_verdict<Kind>(this->gpu_, invalid);
      if (expected.accepted()) continue;  // a word of an absent buffer
      std::vector<Word> changed;
      for (const Word& word : checked_words<Kind>()) {
        if (word_in(&invalid, word) != word_in(&valid, word)) changed.push_back(word);
      }
      ASSERT_FALSE(changed.empty()) << fault.message_begins;
      WatchedMemory memory(Kind::kBytes, lowest_offset_bytes(changed));
      const WatchedVerdict seen =
          this->flipped(memory, invalid, valid, changed, AfterFlips::kStopWatching);
      EXPECT_EQ(seen.verdict, expected) << changed[0].name();
      EXPECT_GT(seen.trace.flips, 0U) << changed[0].name();
      EXPECT_EQ(broken_rule(seen.trace, Kind::kBytes, name_of_byte<Kind>), "") << changed[0].name();
      if (expected.message.starts_with(fault.message_begins)) met.insert(fault.message_begins);
    }
  }
  EXPECT_EQ(met.size(), messages_of_validator<Kind>().size());
}

// The words that say what else there is to read, watched to the end of the call: whatever they say
// afterwards, nothing more is read for it, and nothing beyond the record.
TYPED_TEST(Flips, OfWordsThatCountOthers) {
  using Kind = TypeParam;
  const std::set<std::string> counting = {"levels", "slices",    "planes",       "tiled",
                                          "size",   "lrz_valid", "lrz_fc_valid", "flag_valid"};
  const std::set<std::string> places = {"", " of level 0", " of level 0 plane 0", " of level 14",
                                        " of level 14 plane 2"};
  const auto valid = full_record<Kind>();
  WatchedMemory memory(Kind::kBytes);
  std::size_t tried = 0;
  for (const Word& word : checked_words<Kind>()) {
    if (counting.count(word.field) == 0 || places.count(word.place) == 0) continue;
    for (const uint64_t number : {uint64_t{0}, uint64_t{0xFFFFFFFF}}) {
      auto anything = valid;
      put_word(&anything, word, number);
      this->check(memory, valid, anything, word, AfterFlips::kWatchOn);
      ++tried;
    }
  }
  // size and levels; six words of each of two levels; flag_valid of each of two planes
  EXPECT_EQ(tried, 2U * (2 + 2 * 6 + 2));
}

}  // namespace
}  // namespace fetches
