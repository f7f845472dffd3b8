// The records that are expected of requests, put together field by field from worked-out numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/harness/chips.h"
#include "tests/layout/requests.h"
#include "tests/layout/same_record.h"
#include "tests/records/buffers.h"
#include "tests/records/uuids.h"

namespace layout_test {

using records::FlagBuffer;
using records::Image;

constexpr uint32_t kRecordBytes = 5512;  // of the layout version that is written
constexpr uint64_t kExtraSliceBytes = 8224;

struct Plane {
  Image image = {};
  std::optional<FlagBuffer> flags = std::nullopt;
};

struct Level {
  uint64_t size_bytes = 0;  // of all slices
  std::vector<Plane> planes = {};
};

struct Extra {
  uint64_t offset_bytes = 0;
  uint64_t size_bytes = 0;
  uint32_t extended = 0;
};

struct Expected {
  uint32_t alignment_bytes = 4096;
  std::vector<Level> levels = {};
  std::optional<Extra> extra = std::nullopt;
  uint64_t surface_bytes = 0;  // the total less the record's own bytes
};

inline void put_plane(PlaneLayout& record, const Plane& plane) {
  records::put_image(record, plane.image);
  record.flag_valid = plane.flags ? 1 : 0;
  if (plane.flags) records::put_flag_words(record, *plane.flags);
}

struct LevelWords {
  uint32_t slices = 1;
  uint32_t tiling_mode = kTiled;
  uint64_t size_bytes = 0;
  uint32_t planes = 1;
};

inline void put_level_words(LevelLayout& level, const LevelWords& words) {
  level.slices = words.slices;
  level.tiled = words.tiling_mode;
  level.size = words.size_bytes;
  level.planes = words.planes;
  level.lrz_valid = 0;
  level.lrz_fc_valid = 0;
}

inline void put_extra(MemoryLayout& record, const std::optional<Extra>& extra) {
  record.extra_valid = extra ? 1 : 0;
  record.extended = extra ? extra->extended : 0;
  if (!extra) return;
  record.extra_offset = extra->offset_bytes;
  record.extra_size = extra->size_bytes;
  record.extra_slice_pitch = kExtraSliceBytes;
}

// What a surface initialiser stores into a record whose head stands there.
inline void put_surface(MemoryLayout& record, const Request& request, const Expected& expected) {
  for (std::size_t l = 0; l < expected.levels.size(); ++l) {
    const Level& level = expected.levels[l];
    put_level_words(record.level[l], {.slices = static_cast<uint32_t>(request.depth),
                                      .tiling_mode = request.tiling_mode,
                                      .size_bytes = level.size_bytes,
                                      .planes = request.planes});
    for (std::size_t p = 0; p < level.planes.size(); ++p) {
      put_plane(record.level[l].plane[p], level.planes[p]);
    }
  }
  put_extra(record, expected.extra);
  record.total_size = record.size + expected.surface_bytes;
}

// What korvel_init_memory_layout stores; all other bytes are the canary's.
inline LayoutMetadata expected_blob(const harness::ChipData& chip, const Request& request,
                                    const Expected& expected) {
  auto blob = canary<LayoutMetadata>();
  blob.header = {.magic = 0x00FACADE,
                 .header_version = 1,
                 .blob_size = 5536,
                 .record_kind = 3,
                 .record_offset = 24,
                 .record_size = kRecordBytes};
  MemoryLayout& record = blob.layout;
  record.signature = 0xDA7ACA5E;
  record.size = kRecordBytes;
  records::put_words(record.device_uuid, records::DeviceWords{.signature = 0x5A52,
                                                              .family_id = chip.family_id,
                                                              .model_code = chip.model_code,
                                                              .rev_id = chip.rev_id});
  records::put_words(record.driver_uuid, records::DriverWords{});
  record.alignment = expected.alignment_bytes;
  record.format = request.format;
  record.samples = request.samples;
  record.linear_fallback = 0;
  record.levels = 1;
  put_surface(record, request, expected);
  return blob;
}

// The blob of a request that is accepted.
inline LayoutMetadata laid_out(const harness::Gpu& gpu, const Request& request) {
  auto blob = canary<LayoutMetadata>();
  EXPECT_NUMBER(init_layout(gpu, &blob, request), 0);
  return blob;
}

// The whole blob, and that a GPU of this chip makes it of the request.
inline void expect_layout(const harness::Gpu& gpu, const harness::ChipData& chip,
                          const Request& request, const Expected& expected,
                          const std::string& what) {
  expect_same_record(laid_out(gpu, request), expected_blob(chip, request, expected), what);
}

// ---- Images that many tests expect ------------------------------------------------------------

// 100 x 50 texels of 4 bytes in tiles of 64 x 16: 128 x 64 elements.
constexpr Image kTiled100x50 = {.size_bytes = 512 * 64,  // 8 pages of 4096
                                .pitch_bytes = 128 * 4,
                                .slice_pitch_bytes = 512 * 64,
                                .element_bytes = 4,
                                .width_el = 128,
                                .height_rows = 64};

// The same behind its flag buffer. A byte of flags stands for 16 x 4 texels: 128 / 16 = 8 bytes a
// row, 64 by the linear alignment; 64 / 4 = 16 rows; 64 x 16 = 1024 bytes, one page.
inline Plane tiled_100x50_with_flags() {
  constexpr uint64_t kSlice = 4096 + 512 * 64;
  Image image = kTiled100x50;
  image.offset_bytes = 4096;
  image.slice_pitch_bytes = kSlice;
  return {
      .image = image,
      .flags = FlagBuffer{
          .offset_bytes = 0, .size_bytes = 4096, .pitch_bytes = 64, .slice_pitch_bytes = kSlice}};
}

// 100 x 50 texels of 4 bytes in linear rows: 100 up to 128 elements, 50 rows as they are.
constexpr Image kLinear100x50 = {.size_bytes = 7 * 4096,  // 512 x 50 = 25600 to pages
                                 .pitch_bytes = 128 * 4,
                                 .slice_pitch_bytes = 7 * 4096,
                                 .element_bytes = 4,
                                 .width_el = 128,
                                 .height_rows = 50};

}  // namespace layout_test
