// The property columns of the chip rows by name.
#pragma once

#include "identify/hardware_data.h"

namespace tool {

struct ChipColumn {
  const char* name;
  char letter;  // in tables
  bool korvel::ChipColumns::*member;
};

// clang-format off
inline constexpr ChipColumn kChipColumns[] = {
    {"base_alignment",         'B', &korvel::ChipColumns::base_alignment},
    {"linear_alignment",       'L', &korvel::ChipColumns::linear_alignment},
    {"aux_alignment",          'A', &korvel::ChipColumns::aux_alignment},
    {"small_alignment",        'S', &korvel::ChipColumns::small_alignment},
    {"pixel_alignment",        'P', &korvel::ChipColumns::pixel_alignment},
    {"tiled_alignment",        'T', &korvel::ChipColumns::tiled_alignment},
    {"min_level_extent",       'M', &korvel::ChipColumns::min_level_extent},
    {"level_offset_alignment", 'O', &korvel::ChipColumns::level_offset_alignment},
    {"level_size_alignment",   'Z', &korvel::ChipColumns::level_size_alignment},
    {"wide_enough_for_tiling", 'W', &korvel::ChipColumns::wide_enough_for_tiling},
};
// clang-format on
static_assert(sizeof kChipColumns / sizeof kChipColumns[0] == sizeof(korvel::ChipColumns),
              "every column is listed");

}  // namespace tool
