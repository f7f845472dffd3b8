// What the entries that write a MemoryLayout, and the one that asks a blob for its size, load of it:
// the words that the public header names, once each, and nothing that they have stored themselves.
#include <gtest/gtest.h>

#include <set>

#include "tests/fetches/trace_rules.h"
#include "tests/harness/chips.h"
#include "tests/layout/requests.h"
#include "tests/layout/same_record.h"
#include "tests/records/fields.h"

namespace fetches {
namespace {

using layout_test::Request;

enum class Entry { kSingleLevel, kMultiLevel };

void call(const harness::Gpu& gpu, Entry entry, MemoryLayout& record, const Request& request) {
  if (entry == Entry::kSingleLevel) {
    layout_test::init_single_level(gpu, record, request);
  } else {
    layout_test::init_multi_level(gpu, record, request);
  }
}

// A record of which the caller has set the first words; the others hold anything.
MemoryLayout prepared_record(uint32_t levels) {
  auto record = layout_test::canary<MemoryLayout>();
  record.size = sizeof record;
  record.alignment = 4096;
  record.levels = levels;
  return record;
}

std::string name_of_record_byte(std::size_t offset_bytes) {
  for (const records::Field& field :
       records::fields_of(static_cast<const MemoryLayout*>(nullptr))) {
    if (offset_bytes >= field.offset_bytes &&
        offset_bytes - field.offset_bytes < field.size_bytes) {
      return field.name;
    }
  }
  return byte_number(offset_bytes);
}

// The fields of which any byte was loaded.
std::set<std::string> loaded_fields(const Trace& trace) {
  std::set<std::string> names;
  const std::vector<bool> loaded = loaded_bytes(trace, sizeof(MemoryLayout));
  for (std::size_t i = 0; i < loaded.size(); ++i) {
    if (loaded[i]) names.insert(name_of_record_byte(i));
  }
  return names;
}

std::string text_of(Entry entry, uint32_t levels, const Request& r) {
  return std::string(entry == Entry::kSingleLevel ? "single level" : "multi level") + ", levels " +
         std::to_string(levels) + ", depth " + std::to_string(r.depth) + ", mode " +
         std::to_string(r.tiling_mode) + ", planes " + std::to_string(r.planes) + ", flags " +
         std::to_string(r.flags);
}

// A format with so many planes.
constexpr uint32_t format_of(uint32_t planes) {
  constexpr uint32_t kFormats[] = {28, 28, 103, 615};
  return kFormats[planes];
}

// Calls with and without each kind of buffer, for each family.
template <typename Check>
void for_each_request(const Check& check) {
  for (const uint32_t family : layout_test::kFamilies) {
    harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const uint32_t tiling_mode : {layout_test::kLinear, layout_test::kTiled}) {
      for (const uint32_t planes : {0U, 1U, 2U, 3U}) {
        for (const uint64_t flags :
             {uint64_t{0}, layout_test::kUbwc, layout_test::kUbwc | layout_test::kExtra,
              layout_test::kExtra | layout_test::kExtended}) {
          check(gpu, Request{.width_px = 300,
                             .height_px = 200,
                             .depth = 3,
                             .format = format_of(planes),
                             .tiling_mode = tiling_mode,
                             .flags = flags,
                             .planes = planes});
        }
      }
    }
  }
}

TEST(InitialiserLoads, LevelsAlignmentAndSizeOnce) {
  for_each_request([](const harness::Gpu& gpu, const Request& request) {
    for (const Entry entry : {Entry::kSingleLevel, Entry::kMultiLevel}) {
      for (const uint32_t levels : {0U, 1U, 3U}) {
        const std::string what = text_of(entry, levels, request);
        WatchedMemory memory(sizeof(MemoryLayout));
        auto& record = *reinterpret_cast<MemoryLayout*>(memory.data());
        record = prepared_record(levels);
        MemoryLayout expected = record;
        const Trace trace = memory.watch([&] { call(gpu, entry, record, request); });
        EXPECT_EQ(broken_rule(trace, memory.size(), name_of_record_byte), "") << what;

        std::set<std::string> fields = {"levels", "alignment", "size"};
        const bool gathers_flags = entry == Entry::kMultiLevel && request.planes == 1 &&
                                   request.tiling_mode == layout_test::kTiled;
        const bool writes_flag_sizes = (request.flags & layout_test::kUbwc) != 0;
        if (gathers_flags && !writes_flag_sizes) {
          for (uint32_t l = 0; l < levels; ++l) {
            fields.insert("flag_size of level " + std::to_string(l) + " plane 0");
          }
        }
        EXPECT_EQ(loaded_fields(trace), fields) << what;

        call(gpu, entry, expected, request);
        layout_test::expect_same_record(record, expected, what);
        if (testing::Test::HasFailure()) return;  // one is enough
      }
    }
  });
}

TEST(InitialiserLoads, NothingIsWrittenWhereTheArgumentsAreRefused) {
  harness::Gpu gpu(harness::full_chip(6).chip_id);
  for (const Entry entry : {Entry::kSingleLevel, Entry::kMultiLevel}) {
    for (const Request& request : {Request{}, Request{.planes = 4}}) {
      WatchedMemory memory(sizeof(MemoryLayout));
      auto& record = *reinterpret_cast<MemoryLayout*>(memory.data());
      record = prepared_record(request.planes == 4 ? 1 : 16);
      const Trace trace = memory.watch([&] { call(gpu, entry, record, request); });
      EXPECT_EQ(broken_rule(trace, memory.size(), name_of_record_byte), "");
      EXPECT_EQ(loaded_fields(trace).count("levels"), 1U);
      for (const std::string& name : loaded_fields(trace)) {
        EXPECT_TRUE(name == "levels" || name == "alignment" || name == "size") << name;
      }
      EXPECT_EQ(trace.touches.size(), count_loads(trace));
      EXPECT_EQ(gpu.take_messages().size(), 1U);
    }
  }
}

TEST(InitialiserLoads, NothingOfABlob) {
  for_each_request([](const harness::Gpu& gpu, const Request& request) {
    WatchedMemory memory(sizeof(LayoutMetadata));
    uint32_t result = KORVEL_FAILURE;
    const Trace trace =
        memory.watch([&] { result = layout_test::init_layout(gpu, memory.data(), request); });
    EXPECT_EQ(broken_rule(trace, memory.size()), "");
    EXPECT_EQ(result, KORVEL_SUCCESS);
    EXPECT_GT(trace.touches.size(), 10U);  // it writes more words than these
    EXPECT_EQ(count_loads(trace), 0U);
    if (testing::Test::HasFailure()) return;  // one is enough
  });
}

TEST(BufferSizeLoads, ThreeWordsOnce) {
  harness::Gpu gpu(harness::kUnknownChip);
  LayoutMetadata blob = {};
  blob.header.record_offset = offsetof(LayoutMetadata, layout);
  blob.layout.size = 5512;
  blob.layout.total_size = 5512 + 0x100000000;
  for (std::size_t shift_bytes = 0; shift_bytes < 8; ++shift_bytes) {
    WatchedMemory memory(sizeof blob, 0, shift_bytes);
    std::memcpy(memory.data(), &blob, sizeof blob);
    // Whatever other writers make of the words once they have been read.
    memory.flip_after_first_load(
        {{offsetof(LayoutMetadata, header.record_offset), {0xFF, 0xFF, 0xFF, 0xFF}},
         {offsetof(LayoutMetadata, layout.size), {9, 0, 0, 0}},
         {offsetof(LayoutMetadata, layout.total_size), {9, 9, 9, 9, 9, 9, 9, 9}}},
        AfterFlips::kWatchOn);
    uint64_t bytes = 0;
    const Trace trace =
        memory.watch([&] { bytes = gpu->korvel_get_aligned_gpu_buffer_size(memory.data()); });
    EXPECT_NUMBER(bytes, 0x100000000U);
    EXPECT_EQ(broken_rule(trace, memory.size()), "");
    EXPECT_EQ(trace.flips, 3U);
    const std::vector<bool> loaded = loaded_bytes(trace, memory.size());
    EXPECT_EQ(std::count(loaded.begin(), loaded.end(), true), 4 + 4 + 8);
  }
}

// A word of the record that changes as soon as it has been read. What is laid out is that of the
// first number.
struct FlippedWord {
  const char* name;
  std::size_t offset_bytes;
  std::size_t bytes;
  uint64_t first;
  uint64_t then;
};

std::vector<FlippedWord> flipped_header_words() {
  const auto levels = [](uint64_t first, uint64_t then) {
    return FlippedWord{"levels", offsetof(MemoryLayout, levels), 4, first, then};
  };
  const auto alignment = [](uint64_t first, uint64_t then) {
    return FlippedWord{"alignment", offsetof(MemoryLayout, alignment), 4, first, then};
  };
  const auto size = [](uint64_t first, uint64_t then) {
    return FlippedWord{"size", offsetof(MemoryLayout, size), 4, first, then};
  };
  return {levels(1, 15),        levels(15, 1),      levels(2, 0xFFFFFFFF), levels(3, 0),
          levels(16, 1),        levels(0, 15),      alignment(4096, 1),    alignment(4096, 0),
          alignment(64, 65536), alignment(0, 4096), size(5512, 0),         size(5512, 0xFFFFFFFF),
          size(0, 5512)};
}

void check_flip(harness::Gpu& gpu, Entry entry, const Request& request, const FlippedWord& word) {
  const std::string what = text_of(entry, 3, request) + ", " + word.name + " " +
                           std::to_string(word.first) + " and then " + std::to_string(word.then);
  MemoryLayout expected = prepared_record(3);
  auto* bytes = reinterpret_cast<unsigned char*>(&expected);
  std::memcpy(bytes + word.offset_bytes, &word.first, word.bytes);
  WatchedMemory memory(sizeof(MemoryLayout));
  auto& record = *reinterpret_cast<MemoryLayout*>(memory.data());
  record = expected;

  call(gpu, entry, expected, request);
  const std::vector<harness::Message> expected_messages = gpu.take_messages();

  const auto* then = reinterpret_cast<const unsigned char*>(&word.then);
  memory.flip_after_first_load({{word.offset_bytes, {then, then + word.bytes}}},
                               AfterFlips::kWatchOn);
  const Trace trace = memory.watch([&] { call(gpu, entry, record, request); });
  EXPECT_EQ(broken_rule(trace, memory.size(), name_of_record_byte), "") << what;
  // A call that refuses the levels need not read the rest.
  const bool must_be_read = expected_messages.empty() || std::string(word.name) == "levels";
  EXPECT_GE(trace.flips, must_be_read ? 1U : 0U) << what;
  if (trace.flips != 0) std::memcpy(bytes + word.offset_bytes, &word.then, word.bytes);
  EXPECT_EQ(gpu.take_messages(), expected_messages) << what;
  layout_test::expect_same_record(record, expected, what);
}

TEST(InitialiserFlips, OfLevelsAlignmentAndSize) {
  harness::Gpu gpu(harness::full_chip(6).chip_id);
  for (const Entry entry : {Entry::kSingleLevel, Entry::kMultiLevel}) {
    for (const uint32_t planes : {1U, 3U}) {
      for (const uint64_t flags : {uint64_t{0}, layout_test::kUbwc | layout_test::kExtra}) {
        for (const FlippedWord& word : flipped_header_words()) {
          const Request request = {
              .depth = 2, .format = format_of(planes), .flags = flags, .planes = planes};
          check_flip(gpu, entry, request, word);
        }
      }
    }
  }
}

TEST(InitialiserFlips, OfFlagSizes) {
  harness::Gpu gpu(harness::full_chip(6).chip_id);
  for (std::size_t l = 0; l < 3; ++l) {
    const std::size_t offset_bytes = offsetof(MemoryLayout, level) + l * sizeof(LevelLayout) +
                                     offsetof(LevelLayout, plane) +
                                     offsetof(PlaneLayout, flag_size);
    for (const uint64_t then : {uint64_t{0}, ~uint64_t{0}}) {
      check_flip(gpu, Entry::kMultiLevel, {}, {"flag_size", offset_bytes, 8, 0x3000, then});
    }
  }
}

}  // namespace
}  // namespace fetches
