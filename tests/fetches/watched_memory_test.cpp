// That the watch sees what it must: each access, its size, its direction.
#include "tests/fetches/watched_memory.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/fetches/instruction_cases.h"
#include "tests/fetches/trace_rules.h"

namespace fetches {
namespace {

std::string text_of_all(const std::vector<Touch>& touches) {
  std::string text;
  for (const Touch& touch : touches) text += text_of(touch) + "\n";
  return text;
}

void check(const InstructionCase& c, std::size_t shift_bytes) {
  WatchedMemory memory(8192, 0, shift_bytes);
  std::memset(memory.data(), 0, memory.size());
  const Trace trace = memory.watch([&] { c.call(memory.data()); });
  EXPECT_EQ(trace.stopped, "") << c.assembly;
  EXPECT_EQ(text_of_all(trace.touches), text_of_all(c.expected)) << c.assembly;
}

TEST(WatchedMemory, SeesEachInstruction) {
  const std::vector<InstructionCase> cases = instruction_cases();
  EXPECT_GT(cases.size(), 15U);
  for (const InstructionCase& c : cases) check(c, 0);
}

TEST(WatchedMemory, SeesAnAccessAcrossTwoPagesOnce) {
  for (const InstructionCase& c : instruction_cases()) {
    if (!c.aligned) check(c, 4096 - 65);  // byte 64 is the last one of a page
  }
}

unsigned load_byte(const unsigned char* at) {
  return *static_cast<const volatile unsigned char*>(at);
}

TEST(WatchedMemory, FindsAByteThatIsLoadedTwice) {
  WatchedMemory memory(100);
  const Trace once = memory.watch([&] {
    load_byte(memory.data() + 7);
    load_byte(memory.data() + 8);
  });
  EXPECT_EQ(broken_rule(once, memory.size()), "");
  const Trace twice = memory.watch([&] {
    load_byte(memory.data() + 7);
    uint16_t both = 0;
    const auto* at = reinterpret_cast<const volatile uint16_t*>(memory.data() + 6);
    both = *at;
    EXPECT_EQ(both, 0);
  });
  EXPECT_EQ(broken_rule(twice, memory.size()), "byte 7 is loaded twice");
}

TEST(WatchedMemory, FindsAByteThatIsReadBack) {
  WatchedMemory memory(100);
  const Trace trace = memory.watch([&] {
    load_byte(memory.data() + 9);
    *static_cast<volatile unsigned char*>(memory.data() + 9) = 3;  // may be stored, once it is read
    load_byte(memory.data() + 9);
  });
  EXPECT_EQ(broken_rule(trace, memory.size()), "byte 9 is read back");
  EXPECT_EQ(memory.data()[9], 3);
}

TEST(WatchedMemory, FindsWhatLiesBeyondIt) {
  WatchedMemory memory(100, 0, 16);
  const Trace before = memory.watch([&] { load_byte(memory.data() - 1); });
  EXPECT_EQ(broken_rule(before, memory.size()), "a load of 1 bytes at -1, beyond the 100 bytes");
  const Trace behind = memory.watch([&] { load_byte(memory.data() + 100); });
  EXPECT_EQ(broken_rule(behind, memory.size()), "a load of 1 bytes at 100, beyond the 100 bytes");
  bool came_back = false;
  const Trace far_behind = memory.watch([&] {
    load_byte(memory.data() + 65536);
    came_back = true;
  });
  EXPECT_FALSE(came_back);
  EXPECT_NE(broken_rule(far_behind, memory.size()), "");
}

TEST(WatchedMemory, SeesWhatTheCLibraryReads) {
  WatchedMemory memory(100);
  std::memset(memory.data(), 1, memory.size());
  unsigned char same[100];
  std::memset(same, 1, sizeof same);
  int (*volatile compare)(const void*, const void*, std::size_t) = std::memcmp;
  const Trace trace = memory.watch([&] { EXPECT_EQ(compare(memory.data(), same, 100), 0); });
  EXPECT_EQ(trace.stopped, "");
  const std::vector<bool> loaded = loaded_bytes(trace, memory.size());
  EXPECT_EQ(std::count(loaded.begin(), loaded.end(), true), 100);
}

TEST(WatchedMemory, GivesWayToAnotherWriterBehindTheFirstLoad) {
  WatchedMemory memory(100, 50);  // byte 50 begins a page
  memory.data()[50] = 1;
  memory.data()[60] = 2;
  memory.flip_after_first_load({{60, {7}}, {50, {8}}}, AfterFlips::kStopWatching);
  std::vector<unsigned> seen;
  const Trace trace = memory.watch([&] {
    for (const std::size_t at : {49U, 50U, 50U, 60U, 60U, 50U}) {
      const unsigned byte = load_byte(memory.data() + at);
      seen.push_back(byte);
    }
  });
  EXPECT_EQ(seen, (std::vector<unsigned>{0, 1, 8, 2, 7, 8}));
  EXPECT_EQ(trace.flips, 2U);
  // Byte 49 is not watched, and nothing is once the last word has changed.
  EXPECT_EQ(text_of_all(trace.touches),
            "a load of 1 bytes at 50\na load of 1 bytes at 50\na load of 1 bytes at 60\n");
}

}  // namespace
}  // namespace fetches
