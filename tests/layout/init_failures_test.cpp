// Descriptions that are refused: which message, and that nothing is written.
#include <gmock/gmock.h>

#include <climits>

#include "tests/harness/chips.h"
#include "tests/layout/requests.h"
#include "tests/layout/same_record.h"

namespace layout_test {
namespace {

using harness::message;

constexpr char kCheck[] = "validate_memory_layout_input_params";
constexpr char kInit[] = "korvel_init_memory_layout";
constexpr char kSecondLine[] = "Memory Layout input parameter validation failed!";

constexpr uint64_t kFlags = kUbwc | kExtra;

struct Row {
  Request request;
  const char* function;
  const char* text;
};

const Row kRows[] = {
    {{.width_px = 0}, kCheck, "Invalid width, height, or depth: W = 0, H = 50, D = 1"},
    {{.width_px = -1}, kCheck, "Invalid width, height, or depth: W = -1, H = 50, D = 1"},
    {{.width_px = INT_MIN},
     kCheck,
     "Invalid width, height, or depth: W = -2147483648, H = 50, D = 1"},
    {{.height_px = 0}, kCheck, "Invalid width, height, or depth: W = 100, H = 0, D = 1"},
    {{.height_px = -7}, kCheck, "Invalid width, height, or depth: W = 100, H = -7, D = 1"},
    {{.depth = 0}, kCheck, "Invalid width, height, or depth: W = 100, H = 50, D = 0"},
    {{.depth = -1}, kCheck, "Invalid width, height, or depth: W = 100, H = 50, D = -1"},
    {{.format = 0}, kCheck, "Unknown Format 0"},
    {{.format = 722}, kCheck, "Unknown Format 722"},
    {{.format = 0xFFFFFFFF}, kCheck, "Unknown Format 4294967295"},
    {{.format = kFourCC}, kCheck, "Unknown Format 927094871"},
    {{.format = 40, .tiling_mode = 0},
     kCheck,
     "Invalid configuration, cannot support linear depth/stencil"},
    {{.format = 40, .tiling_mode = 2},
     kCheck,
     "Invalid configuration, cannot support linear depth/stencil"},
    {{.samples = 0}, kCheck, "Invalid input sample count 0"},
    {{.samples = 3}, kCheck, "Invalid input sample count 3"},
    {{.samples = 5}, kCheck, "Invalid input sample count 5"},
    {{.samples = 6}, kCheck, "Invalid input sample count 6"},
    {{.samples = 7}, kCheck, "Invalid input sample count 7"},
    {{.samples = 9}, kCheck, "Invalid input sample count 9"},
    {{.samples = 16}, kCheck, "Invalid input sample count 16"},
    {{.samples = 0x80000001}, kCheck, "Invalid input sample count 2147483649"},
    {{.planes = 4}, kInit, "Invalid plane count 4"},
    {{.planes = 0xFFFFFFFF}, kInit, "Invalid plane count 4294967295"},
    // Several faults: the first of the list is reported.
    {{.width_px = 0, .format = 0, .samples = 3, .planes = 4},
     kCheck,
     "Invalid width, height, or depth: W = 0, H = 50, D = 1"},
    {{.format = 0, .samples = 3, .planes = 4}, kCheck, "Unknown Format 0"},
    {{.format = 722, .samples = 3, .tiling_mode = 0, .planes = 4}, kCheck, "Unknown Format 722"},
    {{.format = 45, .samples = 3, .tiling_mode = 0, .planes = 4},
     kCheck,
     "Invalid configuration, cannot support linear depth/stencil"},
    {{.samples = 3, .planes = 4}, kCheck, "Invalid input sample count 3"},
};

TEST(InitFailures, EveryFaultHasItsMessageAndWritesNothing) {
  harness::Gpu gpu(harness::full_chip(6).chip_id);
  (void)gpu->get_gpu_pixel_alignment();
  for (const Row& row : kRows) {
    LayoutMetadata blob = canary<LayoutMetadata>();
    Request request = row.request;
    request.flags = kFlags;
    EXPECT_NUMBER(init_layout(gpu, &blob, request), 0xFFFFFFFF) << row.text;
    EXPECT_EQ(gpu.take_messages(), (std::vector<harness::Message>{message(row.function, row.text),
                                                                  message(kInit, kSecondLine)}));
    expect_same_record(blob, canary<LayoutMetadata>(), row.text);
  }
}

TEST(InitFailures, ANullBlobIsNotReachedByABadDescription) {
  harness::Gpu gpu(harness::full_chip(6).chip_id);
  EXPECT_NUMBER(init_layout(gpu, nullptr, Request{.samples = 3, .flags = kFlags}), 0xFFFFFFFF);
  EXPECT_EQ(gpu.take_messages(),
            (std::vector<harness::Message>{message(kCheck, "Invalid input sample count 3"),
                                           message(kInit, kSecondLine)}));
}

TEST(InitFailures, ANullBlobFailsSilently) {
  harness::Gpu gpu(harness::full_chip(6).chip_id);
  EXPECT_NUMBER(init_layout(gpu, nullptr, Request{.flags = kFlags}), 0xFFFFFFFF);
  EXPECT_TRUE(gpu.take_messages().empty());
}

TEST(InitFailures, OnlyDepthStencilTargetsMustBeTiled) {
  harness::Gpu gpu(harness::full_chip(6).chip_id);
  const auto result = [&gpu](uint32_t format, uint32_t tiling_mode) {
    LayoutMetadata blob{};
    const uint32_t status = init_layout(gpu, &blob, {.format = format, .tiling_mode = tiling_mode});
    (void)gpu.take_messages();
    return status;
  };
  for (uint32_t format = 1; format <= 721; ++format) {
    const bool target = format == 20 || format == 40 || format == 45 || format == 55 ||
                        format == 501 || (format >= 548 && format <= 553);
    EXPECT_NUMBER(result(format, kTiled), 0) << format;
    EXPECT_NUMBER(result(format, kLinear), target ? 0xFFFFFFFF : 0u) << format;
    EXPECT_NUMBER(result(format, 2), target ? 0xFFFFFFFF : 0u) << format;
  }
}

TEST(InitFailures, AnUnknownChipIsIdentifiedFirst) {
  harness::Gpu gpu(harness::kUnknownChip);
  LayoutMetadata blob = canary<LayoutMetadata>();
  EXPECT_NUMBER(init_layout(gpu, &blob, Request{.width_px = 0, .flags = kFlags}), 0xFFFFFFFF);
  std::vector<harness::Message> expected = harness::unknown_chip_messages(harness::kUnknownChip);
  expected.push_back(message(kCheck, "Invalid width, height, or depth: W = 0, H = 50, D = 1"));
  expected.push_back(message(kInit, kSecondLine));
  EXPECT_EQ(gpu.take_messages(), expected);
  expect_same_record(blob, canary<LayoutMetadata>(), "unknown chip");
}

TEST(InitFailures, SurfaceInitialisersRefuseTooManyPlanesAndLevels) {
  harness::Gpu gpu(harness::full_chip(6).chip_id);
  struct Refusal {
    uint32_t levels;
    uint32_t planes;
    const char* text;
  };
  constexpr Refusal kRefusals[] = {
      {.levels = 1, .planes = 4, .text = "Invalid plane count 4"},
      {.levels = 0, .planes = 0x80000000, .text = "Invalid plane count 2147483648"},
      {.levels = 16, .planes = 1, .text = "Invalid level count 16"},
      {.levels = 0xFFFFFFFF, .planes = 0, .text = "Invalid level count 4294967295"},
  };
  for (const Refusal& refusal : kRefusals) {
    MemoryLayout before = canary<MemoryLayout>();
    before.levels = refusal.levels;
    MemoryLayout record = before;
    init_single_level(gpu, record, {.flags = kExtra, .planes = refusal.planes});
    expect_same_record(record, before, refusal.text);
    init_multi_level(gpu, record, {.flags = kExtra, .planes = refusal.planes});
    expect_same_record(record, before, refusal.text);
    EXPECT_EQ(gpu.take_messages(), (std::vector<harness::Message>{
                                       message("korvel_init_single_level_surface", refusal.text),
                                       message("korvel_init_multi_level_surface", refusal.text)}));
  }
}

}  // namespace
}  // namespace layout_test
