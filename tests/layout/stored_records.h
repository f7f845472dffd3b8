// Valid records of both kinds, and what the validators say to changed ones.
#pragma once

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/harness/chips.h"
#include "tests/harness/gpu.h"
#include "tests/harness/guarded_record.h"
#include "tests/layout/same_record.h"
#include "tests/records/valid_record.h"

namespace layout_test {

using records::DeviceWords;
using records::DriverWords;
using records::Image;
using records::put_words;
using records::Uuids;

// The bytes of the surface that the valid records describe.
constexpr uint64_t kSurfaceBytes = 0x100000;

inline const Uuids kUuids =
    records::make_uuids({.family_id = 6, .model_code = 0x060310, .rev_id = 0x0310000A});
constexpr char kDeviceText[] = "525a0000-0600-0000-1003-06000a001003";
constexpr char kDriverText[] = "04000000-0100-0000-0300-000000000000";

// An image of 256 x 32 bytes behind 0x1000 bytes of flags.
constexpr Image kValidImage = {.offset_bytes = 0x1000,
                               .size_bytes = 0x2000,  // 32 rows x 256 bytes
                               .pitch_bytes = 256,    // 256 elements x 1 byte
                               .slice_pitch_bytes = 0x8000,
                               .element_bytes = 1,
                               .width_el = 256,
                               .height_rows = 32};

struct ResourceKind : records::ResourceKind {
  static constexpr char kFunction[] = "validate_resource_memory_layout_metadata";
  static constexpr char kTotal[] = "1054088";  // 5512 + 0x100000
  static constexpr Image kImage = kValidImage;
  static auto entry(const harness::Gpu& gpu) {
    return gpu->validate_resource_memory_layout_metadata;
  }
};

struct SurfaceKind : records::SurfaceKind {
  static constexpr char kFunction[] = "validate_surface_metadata";
  static constexpr char kTotal[] = "1053876";  // 5300 + 0x100000
  // The actual size is checked. The allocated one is compared with nothing but 0.
  static constexpr Image kImage = {.offset_bytes = kValidImage.offset_bytes,
                                   .size_bytes = kValidImage.size_bytes,
                                   .pitch_bytes = kValidImage.pitch_bytes,
                                   .slice_pitch_bytes = kValidImage.slice_pitch_bytes,
                                   .element_bytes = kValidImage.element_bytes,
                                   .width_el = 200,
                                   .height_rows = 40,
                                   .actual_width_el = kValidImage.width_el,
                                   .actual_height_rows = kValidImage.height_rows};
  static auto entry(const harness::Gpu& gpu) { return gpu->validate_surface_metadata; }
};

inline void put_checked_height(PlaneLayout& plane, uint32_t height) {
  plane.image_height = height;
}
inline void put_checked_height(SurfacePlane& plane, uint32_t height) {
  plane.actual_height = height;
}
inline void put_checked_width(PlaneLayout& plane, uint32_t width) {
  plane.image_width = width;
}
inline void put_checked_width(SurfacePlane& plane, uint32_t width) {
  plane.actual_width = width;
}

// Two tiled levels of two slices. The last buffer of all ends at 0x50000 + 0x1000.
template <typename Kind>
records::Shape valid_shape() {
  return {.levels = 2,
          .slices = 2,
          .planes = 3,
          .spare_planes = false,  // they are the canary's
          .surface_bytes = kSurfaceBytes,
          .level_bytes = 0x10000,
          .format = 103,
          .samples = 1,
          .guid = 0xFEEDFACE00000000,
          .uuids = kUuids,
          .image = Kind::kImage,
          .flag_buffer = {.offset_bytes = 0,
                          .size_bytes = 0x1000,
                          .pitch_bytes = 64,
                          .slice_pitch_bytes = 0x8000},
          .depth = {.offset_bytes = 0x40000,
                    .size_bytes = 0x1000,  // 64 rows x 64 bytes
                    .pitch_bytes = 64,
                    .slice_pitch_bytes = 0x1000,
                    .width_el = 64,
                    .height_rows = 64,
                    .fast_clear_offset_bytes = 0x50000,
                    .fast_clear_size_bytes = 0x1000}};
}

template <typename Kind>
void put_valid_level(typename Kind::Level& level, uint32_t planes) {
  records::Shape shape = valid_shape<Kind>();
  shape.planes = planes;
  records::put_valid_level(level, shape, true);
}

// Levels of three and of two planes. What no check reads is the canary's.
template <typename Kind>
typename Kind::Record valid() {
  auto record = canary<typename Kind::Record>();
  records::put_valid_record<Kind>(record, valid_shape<Kind>());
  record.level[1] = canary<typename Kind::Record>().level[1];
  put_valid_level<Kind>(record.level[1], 2);
  return record;
}

// One level, one plane, one slice, without other buffers.
template <typename Kind>
typename Kind::Record plain(uint64_t surface_bytes) {
  records::Shape shape = valid_shape<Kind>();
  shape.levels = shape.slices = shape.planes = 1;
  shape.flags = shape.lrz = false;
  shape.surface_bytes = surface_bytes;
  auto record = canary<typename Kind::Record>();
  records::put_valid_record<Kind>(record, shape);
  return record;
}

template <typename Level>
void remove_lrz(Level& level) {
  level.lrz_valid = 0;
  level.lrz_fc_valid = 0;
}

template <typename Level>
void remove_flags(Level& level) {
  for (uint32_t p = 0; p < level.planes; ++p) level.plane[p].flag_valid = 0;
}

// The validator's message, or "" when it accepts the record: handed over read-only, with nothing
// readable behind it. Expects the result that belongs to it.
template <typename Kind>
std::string verdict(harness::Gpu& gpu, const typename Kind::Record& record,
                    std::size_t readable = Kind::kBytes, const Uuids& own = kUuids) {
  harness::GuardedRecord guarded(readable);
  guarded.fill(&record);
  guarded.make_read_only();
  const uint32_t result = Kind::entry(gpu)(guarded.data(), own.device, own.driver);
  const std::vector<harness::Message> messages = gpu.take_messages();
  if (messages.empty()) {
    EXPECT_NUMBER(result, KORVEL_SUCCESS);
    return "";
  }
  EXPECT_NUMBER(result, KORVEL_FAILURE);
  EXPECT_NUMBER(messages.size(), 1);
  EXPECT_EQ(messages[0].function, Kind::kFunction);
  return messages[0].text;
}

template <typename Kind>
struct Change {
  const char* what;
  std::function<void(typename Kind::Record&)> change;
  std::string text;  // "" for a record that is still valid
};

enum class DepthBuffers { kPresent, kAbsent };

template <typename Kind>
void check_changes(const std::vector<Change<Kind>>& changes,
                   DepthBuffers depth = DepthBuffers::kPresent) {
  harness::Gpu gpu(harness::kUnknownChip);
  for (const Change<Kind>& c : changes) {
    typename Kind::Record record = valid<Kind>();
    if (depth == DepthBuffers::kAbsent) {
      for (auto& level : record.level) remove_lrz(level);
    }
    c.change(record);
    EXPECT_EQ(verdict<Kind>(gpu, record), c.text)
        << c.what << (depth == DepthBuffers::kAbsent ? ", without depth buffers" : "");
  }
  EXPECT_TRUE(gpu.take_calls().empty());  // the GPU of this machine does not matter
}

// On records with and without depth buffers, to which the changes do not matter.
template <typename Kind>
void check_changes_of_both(const std::vector<Change<Kind>>& changes) {
  check_changes<Kind>(changes, DepthBuffers::kPresent);
  check_changes<Kind>(changes, DepthBuffers::kAbsent);
}

}  // namespace layout_test
