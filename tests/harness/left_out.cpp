#include "tests/harness/left_out.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace harness {

namespace {

struct LeftOut {
  std::string_view suite;
  std::string_view test;  // "*" for all of the suite
  const char* reason;
};

constexpr const char* kThreads = "it starts threads, and the program is one thread";
constexpr const char* kFourGibibytes =
    "it spreads a record over 4 GiB of addresses, which is all that 32-bit pointers reach";

constexpr LeftOut kLeftOut[] = {
    {"RacingFirstCalls", "*", kThreads},
    {"RacingSecureContextQueries", "*", kThreads},
    {"BlobAccess", "TheRecordsOffsetHasAll32Bits", kFourGibibytes},
};

bool covers(const LeftOut& left_out, const testing::TestInfo& test) {
  return left_out.suite == test.test_suite_name() &&
         (left_out.test == "*" || left_out.test == test.name());
}

void expect_a_test(const testing::TestSuite& suite, const LeftOut& left_out) {
  for (int t = 0; t < suite.total_test_count(); ++t) {
    if (covers(left_out, *suite.GetTestInfo(t))) return;
  }
  std::fprintf(stderr, "left out, but no test: %s.%s\n", left_out.suite.data(),
               left_out.test.data());
  std::abort();
}

}  // namespace

void LeftOutTests::OnTestProgramStart(const testing::UnitTest& program) {
  for (int s = 0; s < program.total_test_suite_count(); ++s) {
    const testing::TestSuite& suite = *program.GetTestSuite(s);
    for (const LeftOut& left_out : kLeftOut) {
      if (left_out.suite == suite.name()) expect_a_test(suite, left_out);
    }
  }
}

void LeftOutTests::OnTestStart(const testing::TestInfo& test) {
  for (const LeftOut& left_out : kLeftOut) {
    if (covers(left_out, test)) GTEST_SKIP() << "left out: " << left_out.reason;
  }
}

}  // namespace harness
