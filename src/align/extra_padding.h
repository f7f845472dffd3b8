// Extra padding on families 6 and 7: elements and rows added before the alignment.
#pragma once

#include <array>
#include <cstdint>

#include "align/alignment_request.h"
#include "formats/format_ids.h"
#include "identify/chip_row.h"

namespace korvel {

// Elements a chip's padding unit takes; formats that no list names take the default.
inline constexpr uint32_t kDefaultPaddingUnit = 16;
inline constexpr uint32_t kVideoPaddingUnit = 32;
inline constexpr uint32_t kWideVideoPaddingUnit = 64;
inline constexpr IdRange kVideoPaddingFormats[] = {{103, 107}, {614},      {657, 658},
                                                   {663, 664}, {679, 680}, {709, 721}};
inline constexpr IdRange kWideVideoPaddingFormats[] = {{615}, {619}, {660, 662}};
static_assert(is_sorted_list(kVideoPaddingFormats) && is_sorted_list(kWideVideoPaddingFormats));

inline constexpr uint32_t kPaddingRows = 16;

constexpr uint32_t padding_unit(FormatId format) {
  if (contains(kVideoPaddingFormats, format)) return kVideoPaddingUnit;
  if (contains(kWideVideoPaddingFormats, format)) return kWideVideoPaddingUnit;
  return kDefaultPaddingUnit;
}

// The units that the hardware knows; any other number of them pads nothing.
constexpr bool is_known_padding(uint32_t n) {
  constexpr std::array<uint32_t, 7> kKnown = {1, 2, 3, 4, 6, 8, 16};
  for (uint32_t known : kKnown) {
    if (n == known) return true;
  }
  return false;
}

constexpr uint32_t extra_width_padding(const ChipRow& chip, FormatId format) {
  return is_known_padding(chip.padding_n) ? padding_unit(format) * chip.padding_n : 0;
}

// Four units take the rows of two.
constexpr uint32_t extra_height_padding(const ChipRow& chip) {
  if (!is_known_padding(chip.padding_n)) return 0;
  return kPaddingRows * (chip.padding_n == 4 ? 2 : chip.padding_n);
}

constexpr Extent extra_padding(const ChipRow& chip, FormatId format, uint32_t want_extra_padding) {
  if (want_extra_padding == 0) return {0, 0};
  return {extra_width_padding(chip, format), extra_height_padding(chip)};
}

}  // namespace korvel
