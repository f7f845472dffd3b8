// Chips that tests of layouts choose by what they have and what they lack.
#pragma once

#include "tests/harness/chips.h"

namespace layout_test {

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

inline uint32_t padding_units(const harness::ChipData& chip) {
  for (const korvel::FamilyData& family : korvel::kFamilyData) {
    if (family.family_id == chip.family_id) {
      return family.extra_padding_units * harness::model_of(chip).extra_padding_factor;
    }
  }
  return 0;
}

// A full chip whose extra padding is two units: 32 elements and 32 rows.
inline const harness::ChipData& chip_padded_by_two_units(uint32_t family) {
  return harness::chip_where("padded by two units", [family](const harness::ChipData& chip) {
    return chip.family_id == family && chip.supported && harness::in_every_column(chip.columns) &&
           padding_units(chip) == 2;
  });
}

// In every column and compressing, but without rules of its own.
inline const harness::ChipData& unsupported_chip() {
  return harness::chip_where("in every column and unsupported", [](const harness::ChipData& chip) {
    return !chip.supported && harness::in_every_column(chip.columns) && !chip.ubwc.never;
  });
}

}  // namespace layout_test
