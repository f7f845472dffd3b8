// First calls from many threads at once: each may query the device, all must get the same answers.

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <cstring>
#include <functional>
#include <map>
#include <thread>

#include "tests/harness/chips.h"
#include "tests/harness/gpu.h"

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
  uint32_t padded_width, padded_height;
  uint32_t minimal_width, minimal_height;
  uint32_t fdm_width, fdm_height;
  uint32_t aligned_row_bytes, minimal_row_bytes, rows;
  uint32_t blocks_wide, blocks_high, block_bytes;
  uint32_t basic_width, basic_height;
  uint32_t surface_padding;
  LayoutMetadata blob;
  MemoryLayout surface;
  MemoryLayout chain;
};
constexpr int kEntries = 15;
// Each entry asks for the GPU once, but the slice pitch alignment for each of its two properties.
constexpr int kQuestions = kEntries + 1;
static_assert(kThreads >= kEntries, "each entry is some thread's first call");

// Each thread starts with another entry: `shift` turns the order.
Answers ask(const Library& library, int shift) {
  Answers a{};
  a.surface.levels = 1;
  a.chain.levels = 3;
  const std::array<std::function<void()>, kEntries> questions = {
      [&] { a.pixel_alignment = library.get_gpu_pixel_alignment(); },
      [&] { a.slice_pitch_alignment = library.get_slice_pitch_alignment(1); },
      [&] { a.renderable = library.isFormatRenderableByGpu(28, 0); },
      [&] { a.sampleable = library.isFormatSampleableByGpu(28, 1, 0); },
      [&] { a.compressed = library.isUBWCSupportedByGpu(28); },
      [&] {
        library.compute_fmt_aligned_width_and_height(100, 30, 0, 28, 1, 1, 1, 512, &a.padded_width,
                                                     &a.padded_height);
      },
      [&] {
        library.compute_fmt_minimal_aligned_width_and_height(100, 30, 0, 28, 1, 0, 0, 1, 512, 4, 1,
                                                             &a.minimal_width, &a.minimal_height);
      },
      [&] {
        library.compute_fmt_aligned_width_and_height_fdm(100, 30, 0, 28, 1, 1, 1, 512, 1, 1,
                                                         &a.fdm_width, &a.fdm_height);
      },
      [&] {
        uint32_t tiling_mode = 1;
        const AlignInBytesParams params = {100, 30, 0, 28, 1, 1, 512, &tiling_mode};
        const AlignInBytesResult result = {&a.aligned_row_bytes, &a.minimal_row_bytes, &a.rows};
        library.compute_fmt_aligned_width_and_height_in_bytes(&params, &result);
      },
      [&] {
        library.compute_compressedfmt_aligned_width_and_height(100, 30, 71, 0, 0, 0, &a.blocks_wide,
                                                               &a.blocks_high, &a.block_bytes);
      },
      [&] {
        library.compute_aligned_width_and_height(100, 30, 0, 0, 0, 0, &a.basic_width,
                                                 &a.basic_height);
      },
      [&] { a.surface_padding = library.compute_surface_padding(100, 0, 1, 0, 0); },
      [&] {
        library.korvel_init_memory_layout(&a.blob, 100, 30, 1, 28, 1, 1, LAYOUT_FLAG_UBWC, 1);
      },
      [&] {
        library.korvel_init_single_level_surface(&a.surface, 100, 30, 1, 28, 1, 1, LAYOUT_FLAG_UBWC,
                                                 1);
      },
      [&] {
        library.korvel_init_multi_level_surface(&a.chain, 100, 30, 1, 28, 1, 1, LAYOUT_FLAG_UBWC,
                                                1);
      },
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
    EXPECT_EQ(answers.front().pixel_alignment, 64U);
    EXPECT_EQ(answers.front().slice_pitch_alignment, 4096U);
    EXPECT_EQ(answers.front().renderable, 1U);
    EXPECT_EQ(answers.front().sampleable, 1U);
    EXPECT_EQ(answers.front().compressed, 1U);
    EXPECT_EQ(answers.front().padded_width, 128U);
    EXPECT_EQ(answers.front().padded_height, 32U);
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
    EXPECT_EQ(answers.front().pixel_alignment, 1U);
    EXPECT_EQ(answers.front().padded_width, 100U);
    EXPECT_EQ(answers.front().padded_height, 30U);
    EXPECT_EQ(answers.front().renderable, 0U);
  }
}

TEST(RacingFirstCalls, EachTriesForItselfWhenTheLibraryDoesNotOpen) {
  Gpu gpu(harness::full_chip(6).chip_id, HXL_SIM_FAIL_LIBRARY_OPEN);
  const std::vector<Answers> answers = race(gpu);
  EXPECT_EQ(gpu.take_calls().size(), std::size_t{kThreads * kQuestions});
  expect_all_equal(gpu, answers);
  hxl_sim_set_failures(0);
  EXPECT_EQ(race(gpu).front().pixel_alignment, 64U);
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
