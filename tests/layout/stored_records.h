// Valid records of both kinds, and what the validators say to changed ones.
#pragma once

#include <functional>

#include "tests/harness/guarded_record.h"
#include "tests/layout/layout_records.h"

namespace layout_test {

using Uuid = uint8_t[16];

// U, the bytes of the surface that the valid records describe.
constexpr uint64_t kSurface = 0x100000;

// Device words 0x5A52, 6, 0x060310, 0x0310000A.
constexpr char kDeviceText[] = "525a0000-0600-0000-1003-06000a001003";
constexpr char kDriverText[] = "04000000-0100-0000-0300-000000000000";

struct Resource {
  using Record = MemoryLayout;
  static constexpr char kFunction[] = "validate_resource_memory_layout_metadata";
  static constexpr char kTotal[] = "1054088";  // 5512 + 0x100000
  static constexpr uint32_t kBytes = 5512;
  static constexpr uint32_t kSignature = 0xDA7ACA5E;
  static auto entry(const harness::Gpu& gpu) {
    return gpu->validate_resource_memory_layout_metadata;
  }
};

struct Surface {
  using Record = SurfaceMetadata;
  static constexpr char kFunction[] = "validate_surface_metadata";
  static constexpr char kTotal[] = "1053876";  // 5300 + 0x100000
  static constexpr uint32_t kBytes = 5300;
  static constexpr uint32_t kSignature = 0xDE5CDA7A;
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

inline void put_other_sizes(PlaneLayout&) {}
inline void put_other_sizes(SurfacePlane& plane) {  // not compared with anything but 0
  plane.image_width = 200;
  plane.image_height = 40;
}
inline void put_other_head(MemoryLayout&) {}
inline void put_other_head(SurfaceMetadata& record) {
  record.guid = 0xFEEDFACE00000000;
}

// An image of 256 x 32 bytes in slices of 0x8000, flags of 0x1000 bytes in front.
template <typename Plane>
void put_valid_plane(Plane& plane) {
  plane.image_offset = 0x1000;
  plane.image_size = 0x2000;
  plane.image_pitch = 256;
  plane.image_slice_pitch = 0x8000;
  plane.image_element_size = 1;
  put_other_sizes(plane);
  put_checked_width(plane, 256);
  put_checked_height(plane, 32);
  plane.flag_valid = 1;
  plane.flag_offset = 0;
  plane.flag_size = 0x1000;
  plane.flag_pitch = 64;
  plane.flag_slice_pitch = 0x8000;
}

// Two slices. Depth buffers of 64 x 64 bytes, and their fast-clear buffers.
template <typename Level>
void put_valid_level(Level& level, uint32_t planes) {
  level.slices = 2;
  level.tiled = 1;
  level.size = 0x10000;
  level.planes = planes;
  for (uint32_t p = 0; p < planes; ++p) put_valid_plane(level.plane[p]);
  level.lrz_valid = 1;
  level.lrz_offset = 0x40000;
  level.lrz_size = 0x1000;
  level.lrz_pitch = 64;
  level.lrz_slice_pitch = 0x1000;
  level.lrz_width = 64;
  level.lrz_height = 64;
  level.lrz_fc_valid = 1;
  level.lrz_fc_offset = 0x50000;
  level.lrz_fc_size = 0x1000;
}

// Two tiled levels of three and two planes. What no check reads is the canary's.
template <typename Kind>
typename Kind::Record valid() {
  auto record = canary<typename Kind::Record>();
  put_other_head(record);
  record.signature = Kind::kSignature;
  record.size = Kind::kBytes;
  put_words(record.device_uuid, 0x5A52, 6, 0x060310, 0x0310000A);
  put_words(record.driver_uuid, 4, 1, 3, 0);
  record.total_size = Kind::kBytes + kSurface;
  record.alignment = 4096;
  record.format = 103;
  record.samples = 1;
  record.linear_fallback = 0;
  record.levels = 2;
  put_valid_level(record.level[0], 3);
  put_valid_level(record.level[1], 2);
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
                    std::size_t readable = Kind::kBytes, const uint8_t* device = nullptr,
                    const uint8_t* driver = nullptr) {
  Uuid own_device;
  Uuid own_driver;
  put_words(own_device, 0x5A52, 6, 0x060310, 0x0310000A);
  put_words(own_driver, 4, 1, 3, 0);
  harness::GuardedRecord guarded(readable);
  guarded.fill(&record);
  guarded.make_read_only();
  const uint32_t result = Kind::entry(gpu)(guarded.data(), device != nullptr ? device : own_device,
                                           driver != nullptr ? driver : own_driver);
  const std::vector<harness::Message> messages = gpu.take_messages();
  if (messages.empty()) {
    EXPECT_EQ(result, 0u);
    return "";
  }
  EXPECT_EQ(result, 0xFFFFFFFFu);
  EXPECT_EQ(messages.size(), 1u);
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
