// Chips for tests, chosen by what they are, so that tests outlive a change of the hardware data.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "identify/hardware_data.h"

namespace harness {

using korvel::ChipData;
using korvel::ModelData;

// In no row, and reported by no failed query.
inline constexpr uint32_t kUnknownChip = 0x12345678;

inline const ModelData& model_of(const ChipData& chip) {
  for (const ModelData& model : korvel::kModelData) {
    if (model.model_code == chip.model_code) return model;
  }
  std::abort();
}

// The first chip for which test(chip) holds; ends the test program when there is none.
template <typename Test>
const ChipData& chip_where(const char* what, Test test) {
  for (const ChipData& chip : korvel::kChipData) {
    if (test(chip)) return chip;
  }
  std::fprintf(stderr, "the hardware data has no chip that is %s\n", what);
  std::abort();
}

constexpr bool in_every_column(const korvel::ChipColumns& c) {
  return c.base_alignment && c.linear_alignment && c.aux_alignment && c.small_alignment &&
         c.pixel_alignment && c.tiled_alignment && c.min_level_extent && c.level_offset_alignment &&
         c.level_size_alignment && c.wide_enough_for_tiling;
}

// A supported chip of a family that is in every column, compresses, and, on family 7, has a pitch
// limit.
inline const ChipData& full_chip(uint32_t family_id) {
  return chip_where("a full chip of the family", [family_id](const ChipData& chip) {
    return chip.family_id == family_id && chip.supported && in_every_column(chip.columns) &&
           !chip.ubwc.never && (family_id != 7 || model_of(chip).max_surface_pitch != 0);
  });
}

}  // namespace harness
