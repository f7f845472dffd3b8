// First calls from many threads at once: each may query the device, all must get the same answers.

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <cstring>
#include <functional>
#include <map>
#include <thread>
#include <type_traits>

#include "tests/harness/chips.h"
#include "tests/harness/gpu.h"
#include "tests/identify/gpu_entries.h"

namespace identify_test {
namespace {

using harness::Gpu;
using harness::Library;
using testing::IsEmpty;

constexpr int kThreads = 16;
constexpr int kLoads = 12;

// One of every export that depends on the GPU.
struct Answers {
  uint32_t pixel_alignment;
  uint32_t slice_pitch_alignment;
  uint32_t renderable;
  uint32_t sampleable;
  uint32_t compressed;
  uint32_t surface_padding;
  align_test::Size full;
  align_test::Size minimal;
  align_test::Size fdm;
  align_test::Size basic;
  align_test::BytesAnswer in_bytes;
  formats_test::BlockSize blocks;
  uint32_t unused;  // up to the alignment of the blob
  LayoutMetadata blob;
  MemoryLayout surface;
  MemoryLayout chain;
};
static_assert(std::has_unique_object_representations_v<Answers>, "answers are compared as bytes");
constexpr int kEntries = 15;
// Each entry asks for the GPU once, but the slice pitch alignment for each of its two properties.
constexpr int kQuestions = kEntries + 1;
static_assert(kThreads >= kEntries, "each entry is some thread's first call");

// What layouts are asked for: 100 x 30, compressed.
constexpr LayoutRequest kCompressed = {.flags = LAYOUT_FLAG_UBWC};

// Each thread starts with another entry: `shift` turns the order.
Answers ask(const Library& library, int shift) {
  Answers a{};
  a.surface.levels = 1;
  a.chain.levels = 3;
  align_test::Request linear = kSomeSize;
  linear.tiling_mode = 0;
  linear.want_extra_padding = 1;
  align_test::Request tiled = kSomeSize;
  tiled.want_extra_padding = 1;
  const std::array<std::function<void()>, kEntries> questions = {
      [&] { a.pixel_alignment = library.get_gpu_pixel_alignment(); },
      [&] { a.slice_pitch_alignment = library.get_slice_pitch_alignment(kTiled); },
      [&] { a.renderable = formats_test::renderable(library, {.format = kRgba8}); },
      [&] { a.sampleable = formats_test::sampleable(library, {.format = kRgba8}); },
      [&] { a.compressed = library.isUBWCSupportedByGpu(kRgba8); },
      [&] { a.full = align_test::full(library, kSomeSize); },
      [&] { a.minimal = align_test::minimal(library, linear); },
      [&] { a.fdm = align_test::fdm(library, tiled); },
      [&] { a.in_bytes = align_test::in_bytes(library, kSomeSize); },
      [&] { a.blocks = formats_test::size_in_blocks(library, {.format = formats_test::kBc1}); },
      [&] { a.basic = align_test::basic(library, {.width_px = 100, .height_px = 30}); },
      [&] { a.surface_padding = align_test::surface_padding(library, {.width_px = 100}); },
      [&] { init_layout(library, &a.blob, kCompressed); },
      [&] { init_single_level(library, a.surface, kCompressed); },
      [&] { init_multi_level(library, a.chain, kCompressed); },
  };
  for (std::size_t i = 0; i < questions.size(); ++i) {
    questions[(i + static_cast<std::size_t>(shift)) % questions.size()]();
  }
  return a;
}

std::vector<Answers> race(const Gpu& gpu) {
  std::vector<Answers> answers(kThreads);
  std::vector<std::thread> threads;
  std::atomic<int> waiting{0};
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&gpu, &waiting, &answer = answers[static_cast<std::size_t>(t)], t] {
      waiting.fetch_add(1);
      while (waiting.load() < kThreads) std::this_thread::yield();
      answer = ask(gpu.library(), t);
    });
  }
  for (std::thread& thread : threads) thread.join();
  return answers;
}

// To those of the first thread, and of a call that no other one meets.
void expect_all_equal(const Gpu& gpu, const std::vector<Answers>& answers) {
  const Answers alone = ask(gpu.library(), 0);
  EXPECT_EQ(std::memcmp(&alone, &answers.front(), sizeof alone), 0);
  for (const Answers& answer : answers) {
    EXPECT_EQ(std::memcmp(&answer, &answers.front(), sizeof answer), 0);
  }
}

std::map<std::string, int> counts(const std::vector<std::string>& calls) {
  std::map<std::string, int> count;
  for (const std::string& call : calls) ++count[call];
  return count;
}

TEST(RacingFirstCalls, AllGetTheAnswersOfTheChip) {
  for (int load = 0; load < kLoads; ++load) {
    const harness::ChipData& chip = harness::full_chip(5 + static_cast<uint32_t>(load) % 3);
    Gpu gpu(chip.chip_id);
    const std::vector<Answers> answers = race(gpu);
    expect_all_equal(gpu, answers);
    const Answers& first = answers.front();
    EXPECT_NUMBER(first.pixel_alignment, 64);
    EXPECT_NUMBER(first.slice_pitch_alignment, 4096);
    EXPECT_NUMBER(first.renderable, 1);
    EXPECT_NUMBER(first.sampleable, 1);
    EXPECT_NUMBER(first.compressed, 1);
    // 4 bytes, tiles of 64 x 16: 100 -> 128, 30 -> 32.
    EXPECT_NUMBERS(first.full, (align_test::Size{128, 32}));
    uint32_t device[4];
    std::memcpy(device, answers.front().blob.layout.device_uuid, sizeof device);
    EXPECT_THAT(device,
                testing::ElementsAre(0x5A52U, chip.family_id, chip.model_code, chip.rev_id));
    EXPECT_THAT(gpu.take_messages(), IsEmpty());
  }
}

TEST(RacingFirstCalls, QueryTheDeviceAtMostOnceEach) {
  for (int load = 0; load < kLoads; ++load) {
    Gpu gpu(harness::full_chip(6).chip_id);
    race(gpu);
    const std::map<std::string, int> count = counts(gpu.take_calls());
    ASSERT_EQ(count.size(), 5U);
    const int queries = count.begin()->second;
    EXPECT_GE(queries, 1);
    EXPECT_LE(queries, kThreads);
    for (const auto& [call, times] : count) EXPECT_EQ(times, queries) << call;
  }
}

TEST(RacingFirstCalls, AllGetTheDefaultsOfAnUnknownChip) {
  for (int load = 0; load < kLoads; ++load) {
    Gpu gpu(harness::kUnknownChip);
    const std::vector<Answers> answers = race(gpu);
    expect_all_equal(gpu, answers);
    const Answers& first = answers.front();
    EXPECT_NUMBER(first.pixel_alignment, 1);
    EXPECT_NUMBERS(first.full, (align_test::Size{100, 30}));  // as asked
    EXPECT_NUMBER(first.renderable, 0);
  }
}

TEST(RacingFirstCalls, EachTriesForItselfWhenTheLibraryDoesNotOpen) {
  Gpu gpu(harness::full_chip(6).chip_id, HXL_SIM_FAIL_LIBRARY_OPEN);
  const std::vector<Answers> answers = race(gpu);
  EXPECT_EQ(gpu.take_calls().size(), std::size_t{kThreads * kQuestions});
  expect_all_equal(gpu, answers);
  hxl_sim_set_failures(0);
  EXPECT_NUMBER(race(gpu).front().pixel_alignment, 64);
}

TEST(RacingSecureContextQueries, AllGetTheDevicesWord) {
  Gpu gpu(harness::full_chip(6).chip_id);
  hxl_sim_set_secure_context(5);
  std::vector<std::thread> threads;
  std::array<uint32_t, kThreads> words{};
  for (uint32_t& word : words) {
    threads.emplace_back([&] { word = gpu->isSecureContextSupportedByGpu(); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(words, testing::Each(5U));
}

}  // namespace
}  // namespace identify_test
