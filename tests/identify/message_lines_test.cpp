// The source line that a message names is that of the statement which sends it. Every test that
// takes messages expects so (Gpu::take_messages); here, that this can fail.

#include <gmock/gmock.h>

#include "tests/harness/gpu.h"
#include "tests/harness/log_statements.h"

namespace {

using harness::Gpu;
using harness::is_sent_from;
using harness::Message;

constexpr char kNotOpen[] = "Failed to open HXL Library!!!!";
constexpr char kUnknownChip[] = "Unknown HXL chip ID %u";

std::vector<Message> messages_without_the_library() {
  Gpu gpu(0x43010000, HXL_SIM_FAIL_LIBRARY_OPEN);
  gpu->get_gpu_pixel_alignment();
  gpu->isSecureContextSupportedByGpu();
  return gpu.take_messages();
}

TEST(MessageLines, AreThoseOfTheStatements) {
  const std::vector<Message> messages = messages_without_the_library();
  ASSERT_EQ(messages.size(), 5U);
  EXPECT_EQ(messages[0].format, kNotOpen);
  EXPECT_EQ(messages[1].format, kUnknownChip);
  EXPECT_EQ(messages[4].format, kNotOpen);
  EXPECT_TRUE(is_sent_from(messages[0].line, kNotOpen));
  EXPECT_TRUE(is_sent_from(messages[1].line, kUnknownChip));
  EXPECT_TRUE(is_sent_from(messages[4].line, kNotOpen));
  // One statement in a loop, and two of the same text in two files.
  EXPECT_EQ(messages[1].line, messages[2].line);
  EXPECT_EQ(messages[1].line, messages[3].line);
  EXPECT_NE(messages[0].line, messages[1].line);
}

TEST(MessageLines, OfOtherPlacesAreWrong) {
  const uint32_t line = messages_without_the_library().at(1).line;
  for (const uint32_t other : {0U, 1U, line - 1, line + 1, line | 0x10000, 0xFFFFFFFFU}) {
    const testing::AssertionResult result = is_sent_from(other, kUnknownChip);
    EXPECT_FALSE(result) << other;
    EXPECT_THAT(result.message(), testing::HasSubstr("but is logged in gpu_identity.cpp:"));
  }
}

TEST(MessageLines, OfATextThatNoStatementHoldsAreWrong) {
  const uint32_t line = messages_without_the_library().at(1).line;
  for (const char* text : {"", "Unknown HXL chip", "no such message", "%u"}) {
    const testing::AssertionResult result = is_sent_from(line, text);
    EXPECT_FALSE(result);
    EXPECT_THAT(result.message(), testing::HasSubstr("no statement in "));
  }
}

// A message whose text stands in a constant is sent where the constant is named.
TEST(MessageLines, OfAConstantAreWhereItIsNamed) {
  constexpr char kText[] =
      "Metadata level image pitch mismatch {level %u, plane %u, image pitch %u, actual width %u, "
      "image element size %u}";
  uint32_t lines = 0;
  for (uint32_t line = 0; line < 1000; ++line) lines += is_sent_from(line, kText) ? 1 : 0;
  EXPECT_GE(lines, 1U);
  EXPECT_LE(lines, 5U);
}

}  // namespace
