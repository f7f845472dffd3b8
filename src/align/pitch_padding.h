// Pitch padding: linear rows whose pitch would keep hitting the same memory channels are made
// longer.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <numeric>

#include "identify/chip_row.h"
#include "platform/rounding.h"

namespace korvel {

inline constexpr uint32_t kPitchClasses = 5;           // elements of 1, 2, 4, 8 and 16 bytes
inline constexpr uint32_t kPitchStep = 64;             // elements; pitches are whole steps
inline constexpr uint32_t kLongestPaddedPitch = 2048;  // elements; longer pitches repeat the rule
inline constexpr uint32_t kChannelSpanBytes = 2048;    // bytes after which the channels repeat
inline constexpr uint32_t kSearchStepBytes = 1024;
inline constexpr uint32_t kPitchLimit = 16384;  // elements, families 5 and 6

// The rows after which `pitch` comes back to the same channel; in elements of `bytes` bytes, not 0.
constexpr uint32_t channel_period(uint32_t pitch, uint32_t bytes) {
  const uint32_t span = kChannelSpanBytes / bytes;
  const uint32_t remainder = pitch % span == 0 ? span : pitch % span;
  return kChannelSpanBytes / std::gcd(kChannelSpanBytes, remainder * bytes);
}

// The longest period that a selector accepts.
constexpr uint32_t longest_period_rows(uint32_t selector) {
  return selector == 2 ? 16 : 4;
}

// The rule: the first pitch, in steps, that comes back after 2 rows or more and no more than the
// longest period; the pitch itself when there is none.
constexpr uint32_t searched_pitch(uint32_t pitch, uint32_t bytes, uint32_t selector) {
  const uint32_t step = kSearchStepBytes / bytes;
  for (uint32_t padded = pitch; padded - pitch <= kLongestPaddedPitch; padded += step) {
    const uint32_t period = channel_period(padded, bytes);
    if (period != 1 && period <= longest_period_rows(selector)) return padded;
  }
  return pitch;
}

// What the search comes to: only rows of whole channel spans find a longer pitch, one step away.
// The selector stays an argument: other spans or steps would bring it back.
constexpr uint32_t padded_pitch(uint32_t pitch, uint32_t size_class,
                                [[maybe_unused]] uint32_t selector) {
  const bool whole_spans = (pitch << size_class) % kChannelSpanBytes == 0;
  return whole_spans ? pitch + (kSearchStepBytes >> size_class) : pitch;
}

// So it does for either selector.
static_assert([] {
  for (uint32_t size_class = 0; size_class < kPitchClasses; ++size_class) {
    for (uint32_t pitch = kPitchStep; pitch <= kLongestPaddedPitch; pitch += kPitchStep) {
      for (const uint32_t selector : {1U, 2U}) {
        const uint32_t searched = searched_pitch(pitch, 1U << size_class, selector);
        if (padded_pitch(pitch, size_class, selector) != searched) return false;
      }
    }
  }
  return true;
}());

// Family 7 has its limit by model; a model without one ends at 0 elements. Its comparison is
// signed, that of the others is not.
constexpr uint32_t limit_pitch(const ChipRow& chip, uint32_t pitch) {
  if (chip.family_id == 7) {
    return static_cast<uint32_t>(std::min(static_cast<int32_t>(pitch), chip.max_surface_pitch));
  }
  return std::min(pitch, kPitchLimit);
}

// `bytes` an element, a power of two up to 16 or 0; `width` in elements. Widths of whole longest
// pitches are not padded, but for the longest pitch itself.
constexpr uint32_t pad_pitch(const ChipRow& chip, uint32_t width, uint32_t bytes,
                             uint32_t selector) {
  if (bytes == 0) return width;  // a plane that the format does not have
  const bool repeats = width % kLongestPaddedPitch == 0 && width != kLongestPaddedPitch;
  const auto size_class = static_cast<uint32_t>(std::countr_zero(bytes));
  const uint32_t pitch = round_up(width, kPitchStep);
  return limit_pitch(chip, repeats ? width : padded_pitch(pitch, size_class, selector));
}

}  // namespace korvel
