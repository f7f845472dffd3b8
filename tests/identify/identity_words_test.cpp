// The search for the chip's row and the two words of the identity, from the inside: gpu_identity.cpp
// compiled with rows behind which nothing can be read, and with words that write down how they are
// accessed. In the library neither shows. Whatever lies behind the rows there is read without a
// fault, with the address sanitizer too: it puts space behind no inline variable, and behind none
// that is aligned to more than 32 bytes. And no thread comes between two neighbouring stores often
// enough.

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "identify/chip_row.h"
#include "platform/hxluser.h"
#include "platform/log.h"
#include "simulator/hxl_sim.h"
#include "tests/harness/chips.h"
#include "tests/harness/guarded_record.h"

namespace {

// The library's rows, at the very end of readable memory.
class RowsAlone {
 public:
  RowsAlone() : memory_(sizeof korvel::kChipRows) {
    memory_.fill(korvel::kChipRows.data());
    memory_.make_read_only();
  }
  const korvel::ChipRow* begin() const {
    ++searches_;
    return rows();
  }
  const korvel::ChipRow* end() const { return rows() + korvel::kChipRowCount; }
  const korvel::ChipRow& operator[](std::size_t row) const { return rows()[row]; }

  int searches() const { return searches_; }

 private:
  const korvel::ChipRow* rows() const {
    return reinterpret_cast<const korvel::ChipRow*>(memory_.data());
  }

  harness::GuardedRecord memory_;
  mutable int searches_ = 0;
};

const RowsAlone rows_alone;

struct Access {
  enum class Kind { kLoad, kStore };
  Kind kind;
  const void* word;
  uint32_t value;
  std::memory_order order;
};

std::vector<Access>& accesses() {
  static std::vector<Access> all;
  return all;
}

}  // namespace

// Under a name of the standard library's, so that it can take the place of std::atomic below.
namespace std {

template <typename Word>
class written_down {
 public:
  constexpr written_down(Word value) : value_(value) {}
  Word load(memory_order order) const {
    accesses().push_back({Access::Kind::kLoad, this, value_, order});
    return value_;
  }
  void store(Word value, memory_order order) {
    accesses().push_back({Access::Kind::kStore, this, value, order});
    value_ = value;
  }

 private:
  Word value_;
};

}  // namespace std

#define kChipRows rows_alone_stand_in
#define atomic written_down
namespace korvel {
namespace {
const RowsAlone& rows_alone_stand_in = rows_alone;
}
}  // namespace korvel
#include "identify/gpu_identity.cpp"
#undef kChipRows
#undef atomic

namespace {

using korvel::gpu_identity;
using testing::ElementsAre;

class IdentityWords : public testing::Test {
 protected:
  IdentityWords() {
    hxl_sim_reset();
    hxl_sim_set_capture(1);
  }

  // As if for the first time in a process.
  static std::size_t identify(uint32_t chip_id) {
    gpu_identity.chip_id.store(korvel::kChipIdNotIdentified, std::memory_order_relaxed);
    gpu_identity.row.store(korvel::kRowNotIdentified, std::memory_order_relaxed);
    accesses().clear();
    hxl_sim_clear_messages();
    hxl_sim_set_chip(chip_id);
    return korvel::identify_gpu();
  }

  // "chip_id = 7 relaxed", "load row acquire", ...
  static std::vector<std::string> take_accesses() {
    std::vector<std::string> texts;
    for (const Access& access : accesses()) {
      const std::string name = access.word == &gpu_identity.row ? "row" : "chip_id";
      const std::string order = access.order == std::memory_order_relaxed   ? " relaxed"
                                : access.order == std::memory_order_acquire ? " acquire"
                                : access.order == std::memory_order_release ? " release"
                                                                            : " other";
      texts.push_back(access.kind == Access::Kind::kLoad
                          ? "load " + name + order
                          : name + " = " + std::to_string(access.value) + order);
    }
    accesses().clear();
    return texts;
  }
};

// Whoever sees the row must see the chip id that belongs to it: the id is stored first, and the row
// releases it.
TEST_F(IdentityWords, ChipIdIsStoredBeforeTheRowThatReleasesIt) {
  const std::size_t row = identify(korvel::kChipData[2].chip_id);
  EXPECT_EQ(row, korvel::kRowFirstChip + 2);
  EXPECT_THAT(take_accesses(),
              ElementsAre("chip_id = " + std::to_string(korvel::kChipData[2].chip_id) + " relaxed",
                          "load row acquire", "load chip_id relaxed", "row = 4 release"));
}

TEST_F(IdentityWords, ChipIdOfAnUnknownChipIsStoredBeforeItsRowToo) {
  EXPECT_EQ(identify(7), korvel::kRowUnknownChip);
  EXPECT_THAT(take_accesses(), ElementsAre("chip_id = 7 relaxed", "load row acquire",
                                           "load chip_id relaxed", "row = 1 release"));
}

TEST_F(IdentityWords, NoRowIsStoredWhileTheChipStaysUnidentified) {
  EXPECT_EQ(identify(0xFFFFFFFF), korvel::kRowNotIdentified);
  EXPECT_THAT(take_accesses(), ElementsAre("chip_id = 4294967295 relaxed", "load row acquire",
                                           "load chip_id relaxed"));
  hxl_sim_set_failures(HXL_SIM_FAIL_LIBRARY_OPEN);
  EXPECT_EQ(identify(korvel::kChipData[0].chip_id), korvel::kRowNotIdentified);
  EXPECT_THAT(take_accesses(), ElementsAre("load row acquire", "load chip_id relaxed"));
}

TEST_F(IdentityWords, AKnownRowIsOneLoad) {
  identify(korvel::kChipData[0].chip_id);
  accesses().clear();
  EXPECT_EQ(korvel::identified_row(), korvel::kRowFirstChip);
  EXPECT_THAT(take_accesses(), ElementsAre("load row relaxed"));
}

TEST_F(IdentityWords, TheReportedChipIdIsLoadedBehindTheRow) {
  identify(9);
  accesses().clear();
  EXPECT_EQ(korvel::reported_chip_id(), 9U);
  EXPECT_THAT(take_accesses(), ElementsAre("load row acquire", "load chip_id relaxed"));
}

// Ids below all rows, between two of them, and above all: the search may end behind the last row.
TEST_F(IdentityWords, IdsWithoutARowAreLookedForInTheRowsAlone) {
  std::vector<uint32_t> ids = {0, 1, 0x7FFFFFFF, 0x80000000, 0x80000001, 0xFFFFFFFE};
  for (const korvel::ChipData& chip : korvel::kChipData) {
    ids.insert(ids.end(), {chip.chip_id - 1, chip.chip_id + 1});
  }
  const uint32_t last = std::end(korvel::kChipData)[-1].chip_id;
  EXPECT_TRUE(std::any_of(ids.begin(), ids.end(), [=](uint32_t id) { return id > last; }));
  for (const uint32_t id : ids) {
    const bool known =
        std::any_of(std::begin(korvel::kChipData), std::end(korvel::kChipData),
                    [=](const korvel::ChipData& chip) { return chip.chip_id == id; });
    if (known) continue;
    const int searches = rows_alone.searches();
    EXPECT_EQ(identify(id), korvel::kRowUnknownChip) << id;
    EXPECT_EQ(hxl_sim_message_count(), 3U) << id;
    // Else these were not the rows that were searched.
    EXPECT_GT(rows_alone.searches(), searches);
  }
}

TEST_F(IdentityWords, EveryChipIsFoundInTheRowsAlone) {
  for (std::size_t i = 0; i < std::size(korvel::kChipData); ++i) {
    EXPECT_EQ(identify(korvel::kChipData[i].chip_id), korvel::kRowFirstChip + i);
    EXPECT_EQ(hxl_sim_message_count(), 0U);
  }
}

}  // namespace
