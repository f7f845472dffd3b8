// Extra padding on families 6 and 7: elements and rows added before the alignment.
#pragma once

#include <array>
#include <cstdint>

#include "formats/extent.h"
#include "formats/format_ids.h"
#include "identify/chip_row.h"

namespace korvel {

// Elements of one unit of a width's padding; formats that no list names take the default.
inline constexpr uint32_t kDefaultPaddingUnit_el = 16;
inline constexpr uint32_t kVideoPaddingUnit_el = 32;
inline constexpr uint32_t kWideVideoPaddingUnit_el = 64;
inline constexpr IdRange kVideoPaddingFormats[] = {{103, 107}, {614},      {657, 658},
                                                   {663, 664}, {679, 680}, {709, 721}};
inline constexpr IdRange kWideVideoPaddingFormats[] = {{615}, {619}, {660, 662}};
static_assert(is_sorted_list(kVideoPaddingFormats) && is_sorted_list(kWideVideoPaddingFormats));

// Rows of one unit of a height's padding.
inline constexpr uint32_t kPaddingUnit_rows = 16;

constexpr uint32_t padding_unit_el(FormatId format) {
  if (contains(kVideoPaddingFormats, format)) return kVideoPaddingUnit_el;
  if (contains(kWideVideoPaddingFormats, format)) return kWideVideoPaddingUnit_el;
  return kDefaultPaddingUnit_el;
}

// The numbers of units that the hardware knows; any other pads nothing.
constexpr bool is_known_padding(uint32_t units) {
  constexpr std::array<uint32_t, 7> kKnown = {1, 2, 3, 4, 6, 8, 16};
  for (uint32_t known : kKnown) {
    if (units == known) return true;
  }
  return false;
}

// Four units take the rows of two, as the hardware has it.
constexpr Extent<Elements> extra_padding(const ChipRow& chip, FormatId format) {
  const uint32_t units = chip.extra_padding_units;
  if (!is_known_padding(units)) return {0, 0};
  return {padding_unit_el(format) * units, kPaddingUnit_rows * (units == 4 ? 2 : units)};
}

}  // namespace korvel
