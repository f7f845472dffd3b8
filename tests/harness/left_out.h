// The tests that cannot run as WebAssembly, each with its reason: the one list of them.
#pragma once

#include <gtest/gtest.h>

namespace harness {

// Skips them, with the reason as the message. A name of the list that no test of its suite bears
// ends the program.
class LeftOutTests : public testing::EmptyTestEventListener {
 public:
  void OnTestProgramStart(const testing::UnitTest& program) override;
  void OnTestStart(const testing::TestInfo& test) override;
};

}  // namespace harness
