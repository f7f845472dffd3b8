// When acceptance means that every buffer of every level lies inside the surface, calculated in 128
// bits. With `size` the record's own, which the rules hold to its version's:
//
//   total_size >= size                        for both kinds of record
//   total_size - size < 2^31                  for a MemoryLayout
//
// The bound B of the rules is then total_size - size itself: a SurfaceMetadata's is that difference
// in 64 bits, which does not wrap; a MemoryLayout's is its low 32 bits, which are all of it, and
// their sign is 0. A buffer passes when its end, calculated without wrapping, is at most B. So a
// buffer that passes ends at or before total_size - size, and an allocation of as many bytes holds
// it. Counted in 64 bits, a difference below 2^31 says both at once: one that wraps is next to 2^64.
// Without any one of these there are records that are accepted and have a buffer outside.
#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <vector>

#include "tests/layout/stored_records.h"

namespace layout_test {
namespace {

__extension__ using Exact = unsigned __int128;

constexpr uint64_t kTwoTo31 = uint64_t{1} << 31;
constexpr uint64_t kTwoTo32 = uint64_t{1} << 32;

Exact end_bytes(uint64_t offset, uint64_t size, uint64_t slice_pitch, uint32_t slices) {
  return Exact{offset} + Exact{slices - 1} * slice_pitch + size;
}

template <typename Record>
Exact surface_bytes(const Record& record) {
  return record.total_size < record.size ? 0 : Exact{record.total_size} - record.size;
}

bool has_exact_bounds(const MemoryLayout& record) {
  return record.total_size >= record.size && record.total_size - record.size < kTwoTo31;
}
bool has_exact_bounds(const SurfaceMetadata& record) {
  return record.total_size >= record.size;
}

// The end of the last buffer of all that the record counts.
template <typename Record>
Exact last_end_bytes(const Record& record) {
  Exact last = 0;
  const auto take = [&last](Exact end) { last = std::max(last, end); };
  for (uint32_t l = 0; l < record.levels; ++l) {
    const auto& level = record.level[l];
    for (uint32_t p = 0; p < level.planes; ++p) {
      const auto& plane = level.plane[p];
      take(end_bytes(plane.image_offset, plane.image_size, plane.image_slice_pitch, level.slices));
      if (plane.flag_valid == 0) continue;
      take(end_bytes(plane.flag_offset, plane.flag_size, plane.flag_slice_pitch, level.slices));
    }
    if (level.lrz_valid == 0) continue;
    take(end_bytes(level.lrz_offset, level.lrz_size, level.lrz_slice_pitch, level.slices));
    take(end_bytes(level.lrz_fc_offset, level.lrz_fc_size, 0, 1));
  }
  return last;
}

void put_version(SurfaceMetadata&, uint32_t) {}  // there is one
void put_version(MemoryLayout& record, uint32_t version) {
  constexpr uint32_t kBytes[] = {KORVEL_LAYOUT_BYTES_VERSION_1, KORVEL_LAYOUT_BYTES_VERSION_2,
                                 KORVEL_LAYOUT_BYTES_VERSION_3};
  put_words(record.driver_uuid, DriverWords{.layout_version = version});
  record.size = kBytes[version - 1];
}

// Records that keep every rule but, perhaps, the bounds of their buffers. Sizes, offsets and
// totals crowd around the numbers at which 32 and 64 bits wrap.
template <typename Kind>
class RecordDraw {
 public:
  typename Kind::Record next() {
    auto record = records::valid_record<Kind>({.levels = 1 + number(3),
                                               .slices = kSlices[number(std::size(kSlices))],
                                               .planes = 1 + number(3),
                                               .flags = number(2) == 0,
                                               .lrz = number(2) == 0,
                                               .uuids = kUuids});
    put_version(record, 1 + number(3));
    record.alignment = 1;
    do {
      record.total_size = total_size(record.size);
    } while (record.total_size == 0);
    // All buffers but one end where the surface has room, if it has any.
    constexpr uint64_t kSmall = uint64_t{1} << 20;
    const bool has_surface = record.total_size > record.size;
    uint64_t surface = has_surface ? record.total_size - record.size : kSmall;
    if (surface > kTwoTo32 && number(2) == 0) surface %= kTwoTo32;
    for (uint32_t l = 0; l < record.levels; ++l) {
      auto& level = record.level[l];
      level.size = 1 + random_() % record.total_size;
      for (uint32_t p = 0; p < level.planes; ++p) {
        put_image(level.plane[p], buffer(surface, level.slices));
        put_flags(level.plane[p], buffer(surface, level.slices));
      }
      put_lrz(level, buffer(surface, level.slices), buffer(surface, 1));
    }
    auto& level = record.level[number(record.levels)];
    auto& plane = level.plane[number(level.planes)];
    const uint64_t end = any_end(surface);
    switch (number(4)) {
      case 0: put_image(plane, buffer(end, level.slices)); break;
      case 1: put_flags(plane, buffer(end, level.slices)); break;
      case 2: put_lrz(level, buffer(end, level.slices), buffer(surface, 1)); break;
      default: put_lrz(level, buffer(surface, level.slices), buffer(end, 1)); break;
    }
    return record;
  }

 private:
  struct Buffer {
    uint64_t offset;
    uint64_t size;
    uint64_t slice_pitch;
  };

  static constexpr uint32_t kSlices[] = {1, 2, 3, KORVEL_MAX_SLICES};

  uint32_t number(std::size_t choices) { return static_cast<uint32_t>(random_() % choices); }

  // Up to 64 below or above 2^k; around 0 and 2^64 for k = 64.
  uint64_t edge(uint32_t k) {
    const uint64_t power = k == 64 ? 0 : uint64_t{1} << k;
    return power + random_() % 129 - 64;
  }

  uint64_t total_size(uint32_t own_bytes) {
    constexpr uint32_t kPowers[] = {20, 31, 32, 33, 40, 63, 64};
    switch (number(8)) {
      case 0: return number(own_bytes);  // below the record's own size
      case 1: return own_bytes + random_() % kTwoTo31;
      case 2: return own_bytes + kTwoTo31 + random_() % kTwoTo31;
      case 3: return own_bytes + kTwoTo32 + random_() % kTwoTo31;
      case 4: return own_bytes + kTwoTo32 * number(0x10000) + random_() % kTwoTo32;
      default: return own_bytes + edge(kPowers[number(std::size(kPowers))]);
    }
  }

  // Where the one buffer may end: around the surface's end or the numbers that its size may be
  // taken for.
  uint64_t any_end(uint64_t surface) {
    constexpr uint32_t kPowers[] = {31, 32, 40, 63, 64};
    switch (number(4)) {
      case 0: return surface + number(3) - 1;
      case 1: return surface % kTwoTo32 + number(3) - 1;
      case 2: return edge(kPowers[number(std::size(kPowers))]);
      default: return random_() >> number(64);
    }
  }

  // One that ends there or, mostly, anywhere before. Of several slices it may be too long, and its
  // offset then wraps: its end does not fit 64 bits.
  Buffer buffer(uint64_t end, uint32_t slices) {
    Buffer buffer;
    buffer.slice_pitch = 1 + random_() % (end / slices / (2 + number(4)) + 1);
    buffer.size = 1 + random_() % buffer.slice_pitch;
    const uint64_t bytes = (slices - 1) * buffer.slice_pitch + buffer.size;
    buffer.offset = end - bytes;
    if (bytes <= end && number(4) != 0) buffer.offset = random_() % (buffer.offset + 1);
    return buffer;
  }

  template <typename Plane>
  static void put_image(Plane& plane, const Buffer& buffer) {
    records::put_image(plane, {.offset_bytes = buffer.offset,
                               .size_bytes = buffer.size,
                               .pitch_bytes = 1,
                               .slice_pitch_bytes = buffer.slice_pitch,
                               .element_bytes = 1,
                               .width_el = 1,
                               .height_rows = 1,
                               .actual_width_el = 1,
                               .actual_height_rows = 1});
  }

  template <typename Plane>
  static void put_flags(Plane& plane, const Buffer& buffer) {
    records::put_flag_words(plane, {.offset_bytes = buffer.offset,
                                    .size_bytes = buffer.size,
                                    .pitch_bytes = 1,
                                    .slice_pitch_bytes = buffer.slice_pitch});
  }

  template <typename Level>
  static void put_lrz(Level& level, const Buffer& lrz, const Buffer& fast_clear) {
    records::put_depth_words(level, {.offset_bytes = lrz.offset,
                                     .size_bytes = lrz.size,
                                     .pitch_bytes = 1,
                                     .slice_pitch_bytes = lrz.slice_pitch,
                                     .width_el = 1,
                                     .height_rows = 1,
                                     .fast_clear_offset_bytes = fast_clear.offset,
                                     .fast_clear_size_bytes = fast_clear.size});
  }

  std::mt19937_64 random_{20};
};

template <typename Kind>
bool is_accepted(harness::Gpu& gpu, const typename Kind::Record& record) {
  const uint32_t result = Kind::entry(gpu)(&record, kUuids.device, kUuids.driver);
  // Of the rules, only those of bounds may be broken.
  for (const harness::Message& message : gpu.take_messages()) {
    EXPECT_NE(message.text.find("exceeds surface bounds"), std::string::npos) << message.text;
  }
  return result == KORVEL_SUCCESS;
}

struct Counts {
  uint32_t exact_accepted = 0;
  uint32_t exact_accepted_to_the_last_byte = 0;
  uint32_t exact_refused = 0;
  uint32_t below_own_size_outside = 0;  // accepted, and a buffer ends outside
  uint32_t from_2_to_31_outside = 0;
  uint32_t from_2_to_32_inside = 0;  // accepted, surface of 2^32 bytes and more
};

template <typename Kind>
Counts count_draws() {
  constexpr uint32_t kDraws = 20000;
  harness::Gpu gpu(harness::kUnknownChip);
  RecordDraw<Kind> draw;
  Counts counts;
  for (uint32_t i = 0; i < kDraws; ++i) {
    const typename Kind::Record record = draw.next();
    const bool accepted = is_accepted<Kind>(gpu, record);
    const Exact surface = surface_bytes(record);
    const Exact end = last_end_bytes(record);
    const bool inside = end <= surface;
    if (has_exact_bounds(record)) {
      EXPECT_EQ(accepted, inside) << "draw " << i;
      if (!accepted) ++counts.exact_refused;
      if (accepted) ++counts.exact_accepted;
      if (accepted && end == surface) ++counts.exact_accepted_to_the_last_byte;
    } else if (accepted && record.total_size < record.size) {
      EXPECT_FALSE(inside) << "draw " << i;  // there is no surface
      ++counts.below_own_size_outside;
    } else if (accepted && (surface & kTwoTo31) != 0) {
      if (!inside) ++counts.from_2_to_31_outside;
    } else if (accepted) {
      // The low half of 2^32 bytes and more, without its top bit, is less than all of them.
      EXPECT_TRUE(inside) << "draw " << i;
      EXPECT_LE(end, surface % kTwoTo32) << "draw " << i;
      ++counts.from_2_to_32_inside;
    }
    if (testing::Test::HasFailure()) break;
  }
  return counts;
}

TEST(ExactBounds, OfLayouts) {
  const Counts counts = count_draws<ResourceKind>();
  EXPECT_GE(counts.exact_accepted, 1000U);
  EXPECT_GE(counts.exact_accepted_to_the_last_byte, 300U);
  EXPECT_GE(counts.exact_refused, 300U);
  EXPECT_GE(counts.below_own_size_outside, 300U);
  EXPECT_GE(counts.from_2_to_31_outside, 300U);
  EXPECT_GE(counts.from_2_to_32_inside, 300U);
}

TEST(ExactBounds, OfSurfaceRecords) {
  const Counts counts = count_draws<SurfaceKind>();
  EXPECT_GE(counts.exact_accepted, 1000U);
  EXPECT_GE(counts.exact_accepted_to_the_last_byte, 300U);
  EXPECT_GE(counts.exact_refused, 300U);
  EXPECT_GE(counts.below_own_size_outside, 300U);
  // All sizes from 0 on are exact.
  EXPECT_EQ(counts.from_2_to_31_outside, 0U);
  EXPECT_EQ(counts.from_2_to_32_inside, 0U);
}

// One level with one image of 0x2000 bytes, which ends there.
template <typename Kind>
typename Kind::Record ending_at(uint64_t end, uint64_t total_size) {
  auto record = plain<Kind>(0);
  record.alignment = 1;
  record.total_size = total_size;
  record.level[0].size = 1;
  record.level[0].plane[0].image_offset = end - 0x2000;
  return record;
}

template <typename Kind>
void expect_accepted(const typename Kind::Record& record) {
  harness::Gpu gpu(harness::kUnknownChip);
  EXPECT_EQ(verdict<Kind>(gpu, record, record.size), "");
}

template <typename Kind>
void expect_outside_below_own_size() {
  constexpr uint64_t kEnd = uint64_t{1} << 40;
  const auto record = ending_at<Kind>(kEnd, Kind::kBytes - 1);
  expect_accepted<Kind>(record);
  EXPECT_FALSE(has_exact_bounds(record));
  EXPECT_EQ(last_end_bytes(record), kEnd);
  // With the record's own size there is a surface, of 0 bytes.
  harness::Gpu gpu(harness::kUnknownChip);
  const std::string refusal = verdict<Kind>(gpu, ending_at<Kind>(kEnd, Kind::kBytes));
  EXPECT_TRUE(refusal.starts_with("Metadata level image buffer exceeds surface bounds")) << refusal;
}

TEST(ExactBounds, NeedATotalOfTheRecordsSizeOrMore) {
  expect_outside_below_own_size<ResourceKind>();
  expect_outside_below_own_size<SurfaceKind>();
}

TEST(ExactBounds, NeedLayoutsOfLessThan2To31Bytes) {
  constexpr uint64_t kEnd = uint64_t{1} << 40;
  const MemoryLayout record = ending_at<ResourceKind>(kEnd, 5512 + kTwoTo31);
  expect_accepted<ResourceKind>(record);
  EXPECT_FALSE(has_exact_bounds(record));
  harness::Gpu gpu(harness::kUnknownChip);
  const std::string refusal =
      verdict<ResourceKind>(gpu, ending_at<ResourceKind>(kEnd, 5512 + kTwoTo31 - 1));
  EXPECT_TRUE(refusal.starts_with("Metadata level image buffer exceeds")) << refusal;
}

// A record of version 1 has 5472 bytes: what takes 5512 off its total has 40 bytes too few.
TEST(ExactBounds, NeedTheRecordsOwnSize) {
  MemoryLayout record = ending_at<ResourceKind>(0x10000, 5472 + 0x10000);
  put_version(record, 1);
  expect_accepted<ResourceKind>(record);
  EXPECT_TRUE(has_exact_bounds(record));
  EXPECT_EQ(last_end_bytes(record), 0x10000U);
  EXPECT_GT(last_end_bytes(record), record.total_size - KORVEL_LAYOUT_BYTES_VERSION_3);
}

// A buffer may take the last byte: one byte less has no room for it.
template <typename Kind>
void expect_last_byte_taken() {
  const auto record = ending_at<Kind>(0x10000, Kind::kBytes + 0x10000);
  expect_accepted<Kind>(record);
  EXPECT_TRUE(has_exact_bounds(record));
  EXPECT_EQ(last_end_bytes(record), surface_bytes(record));
}

TEST(ExactBounds, NeedAnAllocationOfAllBytes) {
  expect_last_byte_taken<ResourceKind>();
  expect_last_byte_taken<SurfaceKind>();
}

}  // namespace
}  // namespace layout_test
