// The base of a linear width: whole 64-byte units, or whole tiles where the surface may become
// tiled.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "align/alignment_request.h"
#include "align/tile_size.h"
#include "formats/format_traits.h"
#include "platform/division.h"
#include "platform/rounding.h"

namespace korvel {

inline constexpr uint32_t kLinearUnitBytes = 64;

// The fewest elements of `bytes` bytes that fill whole units: 64 / gcd(64, bytes), 1 for 0 bytes.
constexpr uint32_t elements_in_whole_units(uint32_t bytes) {
  const int twos = std::min(std::countr_zero(bytes), std::countr_zero(kLinearUnitBytes));
  return kLinearUnitBytes >> twos;
}

// Blocks of `bytes` bytes that fit one unit, at least 1. Faults for blocks of 0 bytes.
constexpr uint32_t blocks_in_unit(uint32_t bytes) {
  return bytes < kLinearUnitBytes ? divide(kLinearUnitBytes, bytes) : 1;
}

// Rounds up by mask whatever the step is: exact for powers of two only, and kept so. A step of 0
// leaves the width alone.
constexpr uint32_t round_up_by_mask(uint32_t width, uint32_t step) {
  return step == 0 ? width : (width + step - 1) & (0 - step);
}

// Where the family sets differ.
struct LinearRules {
  FormatRule in_blocks;                              // formats whose alignment counts in blocks
  TileVariant (*tile_variant)(const FormatTraits&);  // formats with another tile
};
inline constexpr LinearRules kLinearRulesFamily5 = {kRuleBlockFamily5, tile_variant_family5};
inline constexpr LinearRules kLinearRulesFamily67 = {kRuleBlockFamily67, tile_variant_family67};

// Bytes, although widths are aligned to it as elements: the request's divisor makes them elements.
constexpr uint32_t linear_alignment_bytes(const AlignmentRequest& request, const LinearRules& rules,
                                          bool whole_tiles) {
  const FormatTraits& format = request.format;
  const uint32_t bytes = format.substitute_bytes * request.samples;
  const bool in_blocks = (format.rules & rules.in_blocks) != 0;

  uint32_t elements;
  if (whole_tiles) {
    elements = tile_size(bytes, rules.tile_variant(format)).width;
  } else {
    elements = in_blocks ? blocks_in_unit(bytes) : elements_in_whole_units(bytes);
  }
  return in_blocks ? format.bytes * elements : round_up(bytes * elements, kLinearUnitBytes);
}

constexpr uint32_t linear_base_width(uint32_t width, const AlignmentRequest& request,
                                     const LinearRules& rules, bool whole_tiles) {
  const uint32_t alignment = linear_alignment_bytes(request, rules, whole_tiles);
  return round_up_by_mask(width, divide(alignment, request.divisor));
}

}  // namespace korvel
