// Expected records, put together field by field from worked-out numbers.
#pragma once

#include <gmock/gmock.h>

#include <climits>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "tests/harness/chips.h"
#include "tests/harness/faults.h"
#include "tests/harness/gpu.h"

namespace layout_test {

constexpr uint32_t kLinear = 0;
constexpr uint32_t kTiled = 1;
constexpr uint32_t kFourCC = 0x37425857;

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

template <typename Record>
void expect_same_bytes(const Record& actual, const Record& expected, const std::string& what) {
  const auto* a = reinterpret_cast<const unsigned char*>(&actual);
  const auto* e = reinterpret_cast<const unsigned char*>(&expected);
  int reported = 0;
  for (std::size_t i = 0; i < sizeof actual; i += 4) {
    if (std::memcmp(a + i, e + i, 4) == 0) continue;
    uint32_t actual_word;
    uint32_t expected_word;
    std::memcpy(&actual_word, a + i, 4);
    std::memcpy(&expected_word, e + i, 4);
    ADD_FAILURE() << what << ": the word at byte " << i << " is " << actual_word << ", not "
                  << expected_word;
    if (++reported == 8) return;
  }
}

struct Image {
  uint64_t offset;
  uint64_t size;
  uint32_t pitch;
  uint64_t slice_pitch;
  uint32_t element_size;
  uint32_t width;
  uint32_t height;
};

struct Flags {
  uint64_t offset;
  uint64_t size;
  uint32_t pitch;
  uint64_t slice_pitch;
};

inline void put_image(PlaneLayout& plane, const Image& image) {
  plane.image_offset = image.offset;
  plane.image_size = image.size;
  plane.image_pitch = image.pitch;
  plane.image_slice_pitch = image.slice_pitch;
  plane.image_element_size = image.element_size;
  plane.image_width = image.width;
  plane.image_height = image.height;
  plane.flag_valid = 0;
}

inline void put_flags(PlaneLayout& plane, const Flags& flags) {
  plane.flag_valid = 1;
  plane.flag_offset = flags.offset;
  plane.flag_size = flags.size;
  plane.flag_pitch = flags.pitch;
  plane.flag_slice_pitch = flags.slice_pitch;
}

inline void put_level(LevelLayout& level, uint32_t slices, uint32_t tiled, uint64_t size,
                      uint32_t planes) {
  level.slices = slices;
  level.tiled = tiled;
  level.size = size;
  level.planes = planes;
  level.lrz_valid = 0;
  level.lrz_fc_valid = 0;
}

inline void put_no_extra(MemoryLayout& record) {
  record.extra_valid = 0;
  record.extended = 0;
}

inline void put_extra(MemoryLayout& record, uint64_t offset, uint64_t size, uint32_t extended) {
  record.extra_valid = 1;
  record.extra_offset = offset;
  record.extra_size = size;
  record.extra_slice_pitch = 8224;
  record.extended = extended;
}

inline void put_words(uint8_t (&uuid)[16], uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
  const uint32_t words[4] = {a, b, c, d};
  std::memcpy(uuid, words, sizeof words);
}

// What korvel_init_memory_layout stores whatever the surface.
inline void put_head(LayoutMetadata& blob, uint32_t family_id, uint32_t model_code, uint32_t rev_id,
                     uint32_t format, uint32_t samples, uint32_t alignment) {
  blob.header = {0x00FACADE, 1, 5536, 3, 24, 5512};
  MemoryLayout& record = blob.layout;
  record.signature = 0xDA7ACA5E;
  record.size = 5512;
  put_words(record.device_uuid, 0x5A52, family_id, model_code, rev_id);
  put_words(record.driver_uuid, 4, 1, 3, 0);
  record.alignment = alignment;
  record.format = format;
  record.samples = samples;
  record.linear_fallback = 0;
  record.levels = 1;
}

inline void put_head(LayoutMetadata& blob, const harness::ChipData& chip, uint32_t format,
                     uint32_t samples, uint32_t alignment) {
  put_head(blob, chip.family_id, chip.model_code, chip.rev_id, format, samples, alignment);
}

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

inline constexpr uint32_t kFamilies[] = {5, 6, 7};

}  // namespace layout_test
