// Requests for layouts, and the records that are expected of them, put together field by field from
// worked-out numbers.
#pragma once

#include <gmock/gmock.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "tests/harness/chips.h"
#include "tests/harness/faults.h"
#include "tests/harness/gpu.h"
#include "tests/harness/off_by.h"
#include "tests/records/buffers.h"
#include "tests/records/fields.h"
#include "tests/records/uuids.h"

namespace layout_test {

using records::FlagBuffer;
using records::Image;

constexpr uint32_t kLinear = KORVEL_TILING_LINEAR;
constexpr uint32_t kTiled = KORVEL_TILING_TILED;
constexpr uint64_t kUbwc = LAYOUT_FLAG_UBWC;
constexpr uint64_t kExtra = LAYOUT_FLAG_EXTRA;
constexpr uint64_t kExtended = LAYOUT_FLAG_EXTENDED;
constexpr uint32_t kFourCC = 0x37425857;
constexpr uint32_t kRecordBytes = 5512;  // of the layout version that is written
constexpr uint64_t kExtraSliceBytes = 8224;

inline constexpr uint32_t kFamilies[] = {5, 6, 7};

// ---- Requests ---------------------------------------------------------------------------------

struct Request {
  int32_t width_px = 100;
  int32_t height_px = 50;
  int32_t depth = 1;
  uint32_t format = 28;  // 4 bytes an element
  uint32_t samples = 1;
  uint32_t tiling_mode = kTiled;
  uint64_t flags = 0;
  uint32_t planes = 1;
};

inline uint32_t init_layout(const harness::Gpu& gpu, void* blob, const Request& r) {
  return gpu->korvel_init_memory_layout(blob, r.width_px, r.height_px, r.depth, r.format, r.samples,
                                        r.tiling_mode, r.flags, r.planes);
}

// Every byte differs from its neighbours and from what the library stores there.
template <typename Record>
Record canary() {
  Record record;
  auto* bytes = reinterpret_cast<unsigned char*>(&record);
  for (std::size_t i = 0; i < sizeof record; ++i) {
    bytes[i] = static_cast<unsigned char>(i * 37 + 0x5B);
  }
  return record;
}

// The blob of a request that is accepted.
inline LayoutMetadata laid_out(const harness::Gpu& gpu, const Request& request) {
  auto blob = canary<LayoutMetadata>();
  EXPECT_NUMBER(init_layout(gpu, &blob, request), 0);
  return blob;
}

// ---- What is expected of them -----------------------------------------------------------------

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

// ---- Comparison -------------------------------------------------------------------------------

inline uint64_t number_at(const void* record, const records::Field& field) {
  uint64_t number = 0;
  std::memcpy(&number, static_cast<const unsigned char*>(record) + field.offset_bytes,
              field.size_bytes);
  return number;
}

// Field by field, the bytes that nobody writes among them.
template <typename Record>
void expect_same_record(const Record& actual, const Record& expected, const std::string& what) {
  if (std::memcmp(&actual, &expected, sizeof actual) == 0) return;
  constexpr int kMostReports = 8;
  int reports = 0;
  for (const records::Field& field : records::fields_of(&actual)) {
    const uint64_t number = number_at(&actual, field);
    const uint64_t expected_number = number_at(&expected, field);
    if (number == expected_number) continue;
    EXPECT_NUMBER_NAMED(what + ": " + field.name, number, expected_number);
    if (++reports == kMostReports) return;
  }
  if (reports == 0) ADD_FAILURE() << what << ": bytes differ that are in no field";
}

inline std::string on_family(uint32_t family) {
  return "family " + std::to_string(family);
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

// ---- Chips ------------------------------------------------------------------------------------

// A chip that lacks this column alone of those that the layout reads.
inline const harness::ChipData& chip_lacking(bool korvel::ChipColumns::*column,
                                             uint32_t family = 0) {
  return harness::chip_where("lacking the one column", [=](const harness::ChipData& chip) {
    korvel::ChipColumns columns = chip.columns;
    if (columns.*column || (family != 0 && chip.family_id != family)) return false;
    columns.*column = true;
    columns.small_alignment = columns.wide_enough_for_tiling = true;
    return harness::in_every_column(columns) && chip.supported && !chip.ubwc.never &&
           (chip.family_id != 7 || harness::model_of(chip).max_surface_pitch != 0);
  });
}

inline uint32_t padding_n(const harness::ChipData& chip) {
  for (const korvel::FamilyData& family : korvel::kFamilyData) {
    if (family.family_id == chip.family_id) {
      return family.padding_f * harness::model_of(chip).padding_g;
    }
  }
  return 0;
}

// A full chip whose extra padding is two units: 32 elements and 32 rows.
inline const harness::ChipData& chip_padded_by_two_units(uint32_t family) {
  return harness::chip_where("padded by two units", [family](const harness::ChipData& chip) {
    return chip.family_id == family && chip.supported && harness::in_every_column(chip.columns) &&
           padding_n(chip) == 2;
  });
}

// In every column and compressing, but without rules of its own.
inline const harness::ChipData& unsupported_chip() {
  return harness::chip_where("in every column and unsupported", [](const harness::ChipData& chip) {
    return !chip.supported && harness::in_every_column(chip.columns) && !chip.ubwc.never;
  });
}

}  // namespace layout_test
