// Pitch padding: linear rows whose pitch would keep hitting the same memory channels are made
// longer.
//
// The entries take a selector of one of two ways of padding. Both come to the same pitches, as the
// static assertion below shows, so that no selector goes further than the entries.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <numeric>

#include "identify/chip_row.h"
#include "platform/rounding.h"

namespace korvel {

inline constexpr uint32_t kPitchClasses = 5;              // elements of 1, 2, 4, 8 and 16 bytes
inline constexpr uint32_t kPitchStep_el = 64;             // padded pitches are whole steps
inline constexpr uint32_t kLongestPaddedPitch_el = 2048;  // longer pitches repeat the rule
inline constexpr uint32_t kPitchLimit_el = 16384;         // families 5 and 6
inline constexpr uint32_t kChannelSpan_bytes = 2048;      // after which the channels repeat
inline constexpr uint32_t kSearchStep_bytes = 1024;

// The rows after which a pitch comes back to the same channel.
constexpr uint32_t channel_period_rows(uint32_t pitch_el, uint32_t element_bytes) {
  const uint32_t span_el = kChannelSpan_bytes / element_bytes;
  const uint32_t remainder_el = pitch_el % span_el == 0 ? span_el : pitch_el % span_el;
  return kChannelSpan_bytes / std::gcd(kChannelSpan_bytes, remainder_el * element_bytes);
}

// The search that padding stands for: the first pitch, in steps, that comes back after 2 rows or
// more and no more than the longest period; the pitch itself when there is none.
constexpr uint32_t searched_pitch_el(uint32_t pitch_el, uint32_t element_bytes,
                                     uint32_t longest_period_rows) {
  const uint32_t step_el = kSearchStep_bytes / element_bytes;
  for (uint32_t padded_el = pitch_el; padded_el - pitch_el <= kLongestPaddedPitch_el;
       padded_el += step_el) {
    const uint32_t period_rows = channel_period_rows(padded_el, element_bytes);
    if (period_rows != 1 && period_rows <= longest_period_rows) return padded_el;
  }
  return pitch_el;
}

// What the search comes to: only rows of whole channel spans find a longer pitch, one step away.
// Elements of 1 << size_class bytes.
constexpr uint32_t padded_pitch_el(uint32_t pitch_el, uint32_t size_class) {
  const bool whole_spans = (pitch_el << size_class) % kChannelSpan_bytes == 0;
  return whole_spans ? pitch_el + (kSearchStep_bytes >> size_class) : pitch_el;
}

// So it does for both selectors: periods of up to 4 rows, and of up to 16.
static_assert([] {
  for (uint32_t size_class = 0; size_class < kPitchClasses; ++size_class) {
    for (uint32_t pitch_el = kPitchStep_el; pitch_el <= kLongestPaddedPitch_el;
         pitch_el += kPitchStep_el) {
      for (const uint32_t longest_period_rows : {4U, 16U}) {
        const uint32_t searched_el =
            searched_pitch_el(pitch_el, 1U << size_class, longest_period_rows);
        if (padded_pitch_el(pitch_el, size_class) != searched_el) return false;
      }
    }
  }
  return true;
}());

// Family 7 has its limit by model; a model without one ends at 0 elements. Its comparison is
// signed, that of the others is not.
constexpr uint32_t limited_pitch_el(const ChipRow& chip, uint32_t pitch_el) {
  if (chip.family_id == 7) {
    return static_cast<uint32_t>(std::min(static_cast<int32_t>(pitch_el), chip.max_surface_pitch));
  }
  return std::min(pitch_el, kPitchLimit_el);
}

// Multiples of the longest padded pitch are not padded, but for that pitch itself.
constexpr bool is_repeated_pitch(uint32_t width_el) {
  return width_el % kLongestPaddedPitch_el == 0 && width_el != kLongestPaddedPitch_el;
}

// `element_bytes` is a power of two up to 16, or 0 for a plane that the format lacks.
constexpr uint32_t pad_pitch_el(const ChipRow& chip, uint32_t width_el, uint32_t element_bytes) {
  if (element_bytes == 0) return width_el;
  if (is_repeated_pitch(width_el)) return limited_pitch_el(chip, width_el);
  const uint32_t pitch_el = round_up_pot(width_el, kPitchStep_el);
  const auto size_class = static_cast<uint32_t>(std::countr_zero(element_bytes));
  return limited_pitch_el(chip, padded_pitch_el(pitch_el, size_class));
}

}  // namespace korvel
