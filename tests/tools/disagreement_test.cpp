// What explain says when the library answers something else than the steps lead to.
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/tools/run_tool.h"

namespace tool_test {
namespace {

// The library behind another one that makes each pitch 64 bytes longer.
class WithLongerPitches {
 public:
  WithLongerPitches() { setenv("LD_PRELOAD", KORVEL_LONGER_PITCHES, 1); }
  ~WithLongerPitches() { unsetenv("LD_PRELOAD"); }
  WithLongerPitches(const WithLongerPitches&) = delete;
  WithLongerPitches& operator=(const WithLongerPitches&) = delete;
};

// 64 elements of 4 bytes are 256 bytes a row.
TEST(Disagreement, IsABugWithAnExitCodeOfItsOwn) {
  const std::string request = " --format 28 --size 64x64 --linear";
  EXPECT_EQ(run_tool("explain" + request).exit_code, 0);
  const WithLongerPitches library;
  const Outcome run = run_tool("explain" + request);
  EXPECT_EQ(run.exit_code, 3);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err,
            "korvel-layout: internal error: the steps lead to level[0].plane[0].image_pitch = 256, "
            "but the library answers 320\n");
}

}  // namespace
}  // namespace tool_test
