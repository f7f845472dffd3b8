// Pitch padding: linear rows whose pitch would keep hitting the same memory channels are made
// longer.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <numeric>

#include "identify/chip_row.h"

namespace korvel {

inline constexpr uint32_t kPitchClasses = 5;           // elements of 1, 2, 4, 8 and 16 bytes
inline constexpr uint32_t kPitchStep = 64;             // elements from one entry to the next
inline constexpr uint32_t kLongestPaddedPitch = 2048;  // elements; longer pitches repeat the table
inline constexpr uint32_t kPitchEntries = kLongestPaddedPitch / kPitchStep + 1;
inline constexpr uint32_t kChannelSpanBytes = 2048;  // bytes after which the channels repeat
inline constexpr uint32_t kSearchStepBytes = 1024;
inline constexpr uint32_t kPitchLimit = 16384;  // elements, families 5 and 6

enum PitchHalf : uint32_t { kNormalHalf, kSelector2Half, kPitchHalves };

// The rows after which a pitch comes back to the same channel: longest accepted, by half.
inline constexpr std::array<uint32_t, kPitchHalves> kLongestPeriod = {4, 16};

// `pitch` in elements of `bytes` bytes, not 0.
constexpr uint32_t channel_period(uint32_t pitch, uint32_t bytes) {
  const uint32_t span = kChannelSpanBytes / bytes;
  const uint32_t remainder = pitch % span == 0 ? span : pitch % span;
  return kChannelSpanBytes / std::gcd(kChannelSpanBytes, remainder * bytes);
}

constexpr uint32_t padded_pitch(uint32_t pitch, uint32_t bytes, PitchHalf half) {
  if (pitch == 0) return 0;
  const uint32_t step = kSearchStepBytes / bytes;
  for (uint32_t padded = pitch; padded - pitch <= kLongestPaddedPitch; padded += step) {
    const uint32_t period = channel_period(padded, bytes);
    if (period != 1 && period <= kLongestPeriod[half]) return padded;
  }
  return pitch;
}

using PitchPadTable =
    std::array<std::array<std::array<uint16_t, kPitchEntries>, kPitchHalves>, kPitchClasses>;

// Padded pitches in elements by element size (log2 of bytes), half, and unpadded pitch in steps.
// All families share the one table.
inline constexpr PitchPadTable kPitchPadTable = [] {
  PitchPadTable table{};
  for (uint32_t size_class = 0; size_class < kPitchClasses; ++size_class) {
    for (const PitchHalf half : {kNormalHalf, kSelector2Half}) {
      for (uint32_t entry = 0; entry < kPitchEntries; ++entry) {
        table[size_class][half][entry] =
            static_cast<uint16_t>(padded_pitch(entry * kPitchStep, 1U << size_class, half));
      }
    }
  }
  return table;
}();

constexpr PitchHalf pitch_half(uint32_t selector) {
  return selector == 2 ? kSelector2Half : kNormalHalf;
}

// Family 7 has its limit by model; a model without one ends at 0 elements. Its comparison is
// signed, that of the others is not.
constexpr uint32_t limit_pitch(const ChipRow& chip, uint32_t pitch) {
  if (chip.family_id == 7) {
    return static_cast<uint32_t>(std::min(static_cast<int32_t>(pitch), chip.max_surface_pitch));
  }
  return std::min(pitch, kPitchLimit);
}

// `bytes` an element, a power of two up to 16 or 0; `width` in elements.
constexpr uint32_t pad_pitch(const ChipRow& chip, uint32_t width, uint32_t bytes,
                             uint32_t selector) {
  if (bytes == 0) return width;  // a plane that the format does not have
  const auto size_class = static_cast<uint32_t>(std::countr_zero(bytes));
  const auto& entries = kPitchPadTable[size_class][pitch_half(selector)];
  if (width > kLongestPaddedPitch && width % kLongestPaddedPitch == 0) {
    return limit_pitch(chip, width);
  }
  const uint32_t whole = width > kLongestPaddedPitch ? width - width % kLongestPaddedPitch : 0;
  const uint32_t entry = (width - whole + kPitchStep - 1) / kPitchStep;
  return limit_pitch(chip, whole + entries[entry]);
}

}  // namespace korvel
