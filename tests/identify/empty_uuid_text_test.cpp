// uuid_to_str on a service that prints nothing: a program of its own, whose os_snprintf takes the
// place of the stand-in's.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

#include "tests/harness/chips.h"
#include "tests/harness/gpu.h"
#include "tests/harness/off_by.h"

namespace {

std::size_t printed_times = 0;

}  // namespace

extern "C" int32_t os_snprintf(char* text, std::size_t text_size, const char* /*format*/,
                               ...) noexcept {
  ++printed_times;
  if (text_size != 0) text[0] = '\0';
  return 0;
}

namespace {

// A length of 0 is no failure, and below every size but 0.
TEST(EmptyUuidText, IsOneThatFits) {
  const harness::Gpu gpu(harness::kUnknownChip);
  constexpr uint8_t kUuid[16] = {};
  char text[37] = "before";
  EXPECT_EQ(gpu->uuid_to_str(text, 37, kUuid, 16), 0);
  EXPECT_STREQ(text, "");
  EXPECT_EQ(gpu->uuid_to_str(text, 1, kUuid, 16), 0);
  EXPECT_EQ(gpu->uuid_to_str(text, 0, kUuid, 16), -1);
  EXPECT_NUMBER(printed_times, 3);
}

}  // namespace
