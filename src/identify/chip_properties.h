// The chip properties: one value for the chips that the property's column supports, one for all
// others.
#pragma once

#include <cstdint>

#include "identify/hardware_data.h"

namespace korvel {

struct ChipProperties {
  uint16_t base_alignment;          // bytes
  uint16_t linear_alignment;        // bytes
  uint16_t aux_alignment;           // bytes; linear rows of layouts up to here are not pitch-padded
  uint16_t small_alignment;         // bytes
  uint16_t pixel_alignment;         // elements; bytes of a linear surface's alignment
  uint16_t tiled_alignment;         // bytes
  uint16_t min_level_extent;        // bytes of a chain's flag row, and flag rows
  uint16_t level_offset_alignment;  // bytes
  uint16_t level_size_alignment;    // bytes
  bool holds_minimum_tiling_width;  // see wide_enough_for_tiling
};

// The values on supported chips and on all others, column by column.
inline constexpr ChipProperties kSupportedProperties = {
    .base_alignment = 4096,
    .linear_alignment = 64,
    .aux_alignment = 512,
    .small_alignment = 16,
    .pixel_alignment = 64,
    .tiled_alignment = 4096,
    .min_level_extent = 64,
    .level_offset_alignment = 4096,
    .level_size_alignment = 4096,
    .holds_minimum_tiling_width = true,
};

inline constexpr ChipProperties kDefaultProperties = {
    .base_alignment = 0,
    .linear_alignment = 0,
    .aux_alignment = 0,
    .small_alignment = 0,
    .pixel_alignment = 1,
    .tiled_alignment = 1,
    .min_level_extent = 0,
    .level_offset_alignment = 0,
    .level_size_alignment = 0,
    .holds_minimum_tiling_width = false,
};

constexpr ChipProperties chip_properties(const ChipColumns& columns) {
  const auto pick = [&columns](bool ChipColumns::*column, auto ChipProperties::*property) {
    return (columns.*column ? kSupportedProperties : kDefaultProperties).*property;
  };
  return {
      .base_alignment = pick(&ChipColumns::base_alignment, &ChipProperties::base_alignment),
      .linear_alignment = pick(&ChipColumns::linear_alignment, &ChipProperties::linear_alignment),
      .aux_alignment = pick(&ChipColumns::aux_alignment, &ChipProperties::aux_alignment),
      .small_alignment = pick(&ChipColumns::small_alignment, &ChipProperties::small_alignment),
      .pixel_alignment = pick(&ChipColumns::pixel_alignment, &ChipProperties::pixel_alignment),
      .tiled_alignment = pick(&ChipColumns::tiled_alignment, &ChipProperties::tiled_alignment),
      .min_level_extent = pick(&ChipColumns::min_level_extent, &ChipProperties::min_level_extent),
      .level_offset_alignment =
          pick(&ChipColumns::level_offset_alignment, &ChipProperties::level_offset_alignment),
      .level_size_alignment =
          pick(&ChipColumns::level_size_alignment, &ChipProperties::level_size_alignment),
      .holds_minimum_tiling_width =
          pick(&ChipColumns::wide_enough_for_tiling, &ChipProperties::holds_minimum_tiling_width),
  };
}

// No entry asks: the column has the rule. Only its chips are ever held to a minimum width, which is so
// many times the bytes of an element. `width` in elements, `bytes_per_pixel` in
// bytes.
constexpr bool wide_enough_for_tiling(const ChipProperties& properties, int32_t width,
                                      uint32_t bytes_per_pixel) {
  return !properties.holds_minimum_tiling_width ||
         width >= static_cast<int32_t>(16 * bytes_per_pixel);
}

}  // namespace korvel
