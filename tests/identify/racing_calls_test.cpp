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

struct Answers {
  uint32_t pixel_alignment;
  uint32_t slice_pitch_alignment;
  uint32_t renderable;
  uint32_t sampleable;
  uint32_t compressed;
  uint32_t padded_width;
  uint32_t padded_height;
  LayoutMetadata blob;
};

// Each thread starts with another entry: `shift` turns the order.
Answers ask(const Library& library, int shift) {
  Answers answers{};
  const std::array<std::function<void()>, 7> questions = {
      [&] { answers.pixel_alignment = library.get_gpu_pixel_alignment(); },
      [&] { answers.slice_pitch_alignment = library.get_slice_pitch_alignment(1); },
      [&] { answers.renderable = library.isFormatRenderableByGpu(28, 0); },
      [&] { answers.sampleable = library.isFormatSampleableByGpu(28, 1, 0); },
      [&] { answers.compressed = library.isUBWCSupportedByGpu(28); },
      [&] {
        library.compute_fmt_aligned_width_and_height(100, 30, 0, 28, 1, 1, 1, 512,
                                                     &answers.padded_width, &answers.padded_height);
      },
      [&] {
        library.korvel_init_memory_layout(&answers.blob, 100, 30, 1, 28, 1, 1, LAYOUT_FLAG_UBWC, 1);
      },
  };
  for (std::size_t i = 0; i < questions.size(); ++i) {
    questions[(i + static_cast<std::size_t>(shift)) % questions.size()]();
  }
  return answers;
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

void expect_all_equal(const std::vector<Answers>& answers) {
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
    expect_all_equal(answers);
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
    expect_all_equal(answers);
    EXPECT_EQ(answers.front().pixel_alignment, 1U);
    EXPECT_EQ(answers.front().padded_width, 100U);
    EXPECT_EQ(answers.front().padded_height, 30U);
    EXPECT_EQ(answers.front().renderable, 0U);
  }
}

TEST(RacingFirstCalls, EachTriesForItselfWhenTheLibraryDoesNotOpen) {
  constexpr int kEntries = 7;
  Gpu gpu(harness::full_chip(6).chip_id, HXL_SIM_FAIL_LIBRARY_OPEN);
  expect_all_equal(race(gpu));
  EXPECT_EQ(gpu.take_calls().size(), std::size_t{kThreads * kEntries});
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
