// The last step of every linear width: odd element sizes, then pitch padding.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "align/alignment_request.h"
#include "align/odd_element_width.h"
#include "align/pitch_padding.h"
#include "formats/format_traits.h"
#include "identify/chip_row.h"
#include "platform/rounding.h"

namespace korvel {

// Linear elements have one sample: every element size of the table has its class of pitches.
static_assert(std::all_of(kFormatTraits.begin(), kFormatTraits.end(),
                          [](const FormatTraits& format) {
                            return std::all_of(
                                std::begin(format.plane_bytes), std::end(format.plane_bytes),
                                [](uint32_t bytes) { return bytes < 1U << kPitchClasses; });
                          }));

// `base_width` in elements of `bytes` bytes.
constexpr uint32_t finish_linear_width(const ChipRow& chip, const AlignmentRequest& request,
                                       uint32_t base_width, uint32_t bytes) {
  if ((request.format.rules & kRuleUnpaddedPitch) != 0) return base_width;
  if (!is_power_of_two_or_zero(bytes)) {
    return odd_element_width(base_width, bytes, request.format.substitute_bytes);
  }
  if (!exceeds_padding_threshold(request, base_width, bytes)) return base_width;
  return pad_pitch(chip, base_width, bytes, request.selector);
}

}  // namespace korvel
