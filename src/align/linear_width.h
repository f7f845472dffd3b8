// Linear widths: their base, then the rule of odd element sizes or pitch padding.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <iterator>

#include "align/alignment_request.h"
#include "align/pitch_padding.h"
#include "align/tile_size.h"
#include "formats/format_traits.h"
#include "identify/chip_row.h"
#include "platform/division.h"
#include "platform/rounding.h"

namespace korvel {

inline constexpr uint32_t kLinearUnit_bytes = 64;

// The fewest elements that fill whole units: 64 / gcd(64, element_bytes), 1 for 0 bytes.
constexpr uint32_t elements_in_whole_units(uint32_t element_bytes) {
  const int twos = std::min(std::countr_zero(element_bytes), std::countr_zero(kLinearUnit_bytes));
  return kLinearUnit_bytes >> twos;
}

// Blocks that fit one unit, at least 1. Faults for blocks of 0 bytes.
constexpr uint32_t blocks_in_unit(uint32_t block_bytes) {
  return block_bytes < kLinearUnit_bytes ? divide(kLinearUnit_bytes, block_bytes) : 1;
}

// Where the family sets differ.
struct LinearRules {
  FormatRule in_blocks;                              // formats whose step counts in blocks
  TileVariant (*tile_variant)(const FormatTraits&);  // formats with another tile
};
inline constexpr LinearRules kLinearRulesFamily5 = {kRuleBlockFamily5, tile_variant_family5};
inline constexpr LinearRules kLinearRulesFamily67 = {kRuleBlockFamily67, tile_variant_family67};

// The bytes of whole units, or of a tile's width where the surface may become tiled later.
constexpr uint32_t linear_step_bytes(const AlignmentRequest& request, const LinearRules& rules,
                                     bool may_become_tiled) {
  const FormatTraits& format = request.format;
  const uint32_t bytes = format.substitute_bytes * request.samples;
  const bool in_blocks = has_rule(format, rules.in_blocks);

  uint32_t elements;
  if (may_become_tiled) {
    elements = tile_size(bytes, rules.tile_variant(format)).width;
  } else {
    elements = in_blocks ? blocks_in_unit(bytes) : elements_in_whole_units(bytes);
  }
  // A block counts with one sample.
  return in_blocks ? format.bytes * elements : round_up_pot(bytes * elements, kLinearUnit_bytes);
}

// The same in elements, as far as the request's divisor turns bytes into them.
constexpr uint32_t linear_step_el(const AlignmentRequest& request, const LinearRules& rules,
                                  bool may_become_tiled) {
  return divide(linear_step_bytes(request, rules, may_become_tiled), request.step_divisor);
}

// By mask whatever the step is: a multiple of it for powers of two only. A step of 0 leaves the
// width alone.
constexpr uint32_t round_up_by_mask(uint32_t width_el, uint32_t step_el) {
  return step_el == 0 ? width_el : (width_el + step_el - 1) & (0 - step_el);
}

constexpr uint32_t linear_base_width_el(uint32_t width_el, const AlignmentRequest& request,
                                        const LinearRules& rules, bool may_become_tiled) {
  return round_up_by_mask(width_el, linear_step_el(request, rules, may_become_tiled));
}

// Rows of elements whose size is no power of two go up to a multiple of 64 * element_bytes *
// substitute_bytes, neither of which is 0. Computed in signed numbers.
constexpr uint32_t odd_element_width_el(uint32_t width_el, uint32_t element_bytes,
                                        uint32_t substitute_bytes) {
  const uint32_t unit_bytes = substitute_bytes * element_bytes * 64;
  const auto up_to_unit_bytes = static_cast<int32_t>(width_el * element_bytes + unit_bytes - 1);
  const int32_t units = up_to_unit_bytes / static_cast<int32_t>(unit_bytes);
  const auto row_bytes = static_cast<int32_t>(static_cast<uint32_t>(units) * unit_bytes);
  return static_cast<uint32_t>(row_bytes / static_cast<int32_t>(element_bytes));
}

// Linear elements have one sample: every element size of the table has its class of pitches.
static_assert(std::all_of(kFormatTraits.begin(), kFormatTraits.end(),
                          [](const FormatTraits& format) {
                            return std::all_of(
                                std::begin(format.plane_bytes), std::end(format.plane_bytes),
                                [](uint32_t bytes) { return bytes < 1U << kPitchClasses; });
                          }));

// Rows of at most the request's threshold are not padded. Compared as signed.
constexpr bool is_short_row(const AlignmentRequest& request, uint32_t row_bytes) {
  return static_cast<int32_t>(row_bytes) <= request.min_padded_row_bytes;
}

// The last step of every linear width. Odd elements are neither padded nor limited; of the others
// only rows above the request's threshold are.
constexpr uint32_t finished_linear_width_el(const ChipRow& chip, const AlignmentRequest& request,
                                            uint32_t base_width_el, uint32_t element_bytes) {
  if (has_rule(request.format, kRuleUnpaddedPitch)) return base_width_el;
  if (!is_power_of_two_or_zero(element_bytes)) {
    return odd_element_width_el(base_width_el, element_bytes, request.format.substitute_bytes);
  }
  if (is_short_row(request, base_width_el * element_bytes)) return base_width_el;
  return pad_pitch_el(chip, base_width_el, element_bytes);
}

}  // namespace korvel
