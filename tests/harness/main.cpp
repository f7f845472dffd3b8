// The main function of the test programs. A run that tests nothing fails: variables of the
// environment such as GTEST_FILTER, GTEST_TOTAL_SHARDS and GTEST_REPEAT can choose no test at all.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

#if defined(__EMSCRIPTEN__)
#include "tests/harness/left_out.h"
#endif

namespace {

// What only prints.
bool is_question(std::string_view argument) {
  return argument == "--gtest_list_tests" || argument == "--help";
}

// Tests that were chosen and never begun count as passed elsewhere.
class TestCounter : public testing::EmptyTestEventListener {
 public:
  explicit TestCounter(int& begun) : begun_(begun) {}
  void OnTestStart(const testing::TestInfo& /*test*/) override { ++begun_; }

 private:
  int& begun_;
};

}  // namespace

int main(int argc, char** argv) {
  const bool only_prints = std::any_of(argv + 1, argv + argc, is_question);
  testing::InitGoogleMock(&argc, argv);
  if (argc > 1) {
    std::fprintf(stderr, "%s: unknown argument '%s'; see --help\n", argv[0], argv[1]);
    return 2;
  }
  int begun = 0;
  // They own what is appended.
  testing::TestEventListeners& listeners = testing::UnitTest::GetInstance()->listeners();
  listeners.Append(new TestCounter(begun));
#if defined(__EMSCRIPTEN__)
  listeners.Append(new harness::LeftOutTests);
#endif
  const int result = RUN_ALL_TESTS();
  if (only_prints || begun > 0) return result;
  std::fprintf(
      stderr,
      "%s: no test ran; look at the filter and at variables of the environment whose names "
      "begin with GTEST_\n",
      argv[0]);
  return 1;
}
