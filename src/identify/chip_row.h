// Everything about one chip in one row, resolved at compile time from the hardware data: what the
// rest of the library reads after it has found the chip.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "identify/chip_properties.h"
#include "identify/hardware_data.h"
#include "identify/uuid.h"

namespace korvel {

inline constexpr uint32_t kChipIdNotIdentified = 0xFFFFFFFF;
inline constexpr uint32_t kChipIdQueryFailed = 0;

// The groups of formats that chips keep in bandwidth compression or not, as bits of a row.
enum UbwcGroup : uint8_t {
  kUbwcNone = 0,
  kUbwcBase = 0x1,
  kUbwcDepth = 0x2,
  kUbwcFurtherYuv = 0x4,
  kUbwcPacked = 0x8,  // 683, 684
  kUbwcYuv16 = 0x10,  // 709-711
};

constexpr uint8_t ubwc_groups(const ChipUbwc& sets) {
  if (sets.never) return kUbwcNone;
  return static_cast<uint8_t>(kUbwcBase | (sets.depth_excluded ? 0 : kUbwcDepth) |
                              (sets.yuv_a || sets.yuv_b ? kUbwcFurtherYuv : 0) |
                              (sets.yuv_b ? kUbwcPacked : 0) | (sets.yuv16 ? kUbwcYuv16 : 0));
}

struct alignas(64) ChipRow {
  UuidWords device_uuid;  // as layouts store it
  uint32_t chip_id;
  uint32_t family_id;   // 5, 6 or 7; 0 for an unknown chip
  uint32_t model_code;  // 0 for an unknown chip
  uint32_t rev_id;      // 0 for an unknown chip
  ChipProperties properties;
  int32_t max_surface_pitch;  // elements; 0 = not listed
  uint32_t extra_padding_units;
  bool supported;  // the alignment rules of family_id hold for its surfaces
  uint8_t ubwc;    // UbwcGroup bits
};
static_assert(sizeof(ChipRow) == 64, "a row's address is one shift and one addition");

// Never defined: a compile-time evaluation that reaches one of them stops the compiler with its
// name.
void a_chip_row_names_a_family_that_has_no_row();
void a_chip_row_names_a_model_that_has_no_row();

constexpr const FamilyData& family_data(uint32_t family_id) {
  for (const FamilyData& family : kFamilyData) {
    if (family.family_id == family_id) return family;
  }
  a_chip_row_names_a_family_that_has_no_row();
  return kFamilyData[0];
}

constexpr const ModelData& model_data(uint32_t model_code) {
  for (const ModelData& model : kModelData) {
    if (model.model_code == model_code) return model;
  }
  a_chip_row_names_a_model_that_has_no_row();
  return kModelData[0];
}

constexpr ChipRow resolved_row(const ChipData& chip) {
  const ModelData& model = model_data(chip.model_code);
  return {
      .device_uuid = device_uuid_words(chip.family_id, chip.model_code, chip.rev_id),
      .chip_id = chip.chip_id,
      .family_id = chip.family_id,
      .model_code = chip.model_code,
      .rev_id = chip.rev_id,
      .properties = chip_properties(chip.columns),
      .max_surface_pitch = model.max_surface_pitch,
      .extra_padding_units =
          family_data(chip.family_id).extra_padding_units * model.extra_padding_factor,
      .supported = chip.supported,
      .ubwc = ubwc_groups(chip.ubwc),
  };
}

// What holds as long as the GPU is not identified, and for a chip that has no row.
constexpr ChipRow default_row() {
  ChipRow row{};
  row.device_uuid = device_uuid_words(0, 0, 0);
  row.properties = kDefaultProperties;
  return row;
}

// Row numbers. The first two are not chips; the chips follow in the order of the hardware data.
inline constexpr uint32_t kRowNotIdentified = 0;
inline constexpr uint32_t kRowUnknownChip = 1;
inline constexpr uint32_t kRowFirstChip = 2;
inline constexpr uint32_t kChipRowCount = kRowFirstChip + std::size(kChipData);

inline constexpr auto kChipRows = [] {
  std::array<ChipRow, kChipRowCount> rows{};
  rows[kRowNotIdentified] = default_row();
  rows[kRowUnknownChip] = default_row();
  for (std::size_t i = 0; i < std::size(kChipData); ++i) {
    rows[kRowFirstChip + i] = resolved_row(kChipData[i]);
  }
  return rows;
}();

}  // namespace korvel
