// A predicate may be the first call of all: it identifies the GPU whatever format it is asked
// about.

#include <gmock/gmock.h>

#include "tests/formats/format_calls.h"
#include "tests/harness/chips.h"
#include "tests/harness/gpu.h"

namespace formats_test {
namespace {

using harness::Gpu;
using harness::Message;

// The ends of the table, what lies beyond it, and formats of every kind.
constexpr int32_t kFormats[] = {-1, 0, 1, 2, 20, 28, 71, 103, 508, 683, 709, 720, 721, 722, 800};

// What the identification of an unknown chip says, then the predicate.
std::vector<Message> unknown_chip_and(const char* predicate) {
  std::vector<Message> messages = harness::unknown_chip_messages(harness::kUnknownChip);
  messages.push_back(harness::message(predicate, "Unknown Family ID 0"));
  return messages;
}

TEST(FirstCall, OfRenderableIdentifiesTheGpu) {
  for (const int32_t format : kFormats) {
    for (const int32_t use : {0, 1}) {
      Gpu gpu(harness::kUnknownChip);
      EXPECT_NUMBER(renderable(gpu, {.format = format, .depth_stencil_use = use}), 0) << format;
      EXPECT_EQ(gpu.take_messages(), unknown_chip_and("isFormatRenderableByGpu")) << format;
    }
  }
}

TEST(FirstCall, OfSampleableIdentifiesTheGpu) {
  for (const int32_t format : kFormats) {
    for (const uint32_t samples : {0U, 1U, 4U}) {
      Gpu gpu(harness::kUnknownChip);
      EXPECT_NUMBER(sampleable(gpu, {.format = format, .sample_count = samples}), 0) << format;
      EXPECT_EQ(gpu.take_messages(), unknown_chip_and("isFormatSampleableByGpu")) << format;
    }
  }
}

TEST(FirstCall, OfCompressionIdentifiesTheGpu) {
  for (const int32_t format : kFormats) {
    Gpu gpu(harness::kUnknownChip);
    EXPECT_NUMBER(gpu->isUBWCSupportedByGpu(static_cast<uint32_t>(format)), 0) << format;
    EXPECT_EQ(gpu.take_messages(), harness::unknown_chip_messages(harness::kUnknownChip)) << format;
  }
}

}  // namespace
}  // namespace formats_test
