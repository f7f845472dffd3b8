// The steps to the bytes of a chain of mip levels, where they differ from those of a single level.
#pragma once

#include <korvel_utils.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

#include "formats/extent.h"
#include "layout/surface.h"
#include "platform/rounding.h"

namespace korvel {

// Widths of a chain start from whole steps of this many texels, on every chip.
inline constexpr uint32_t kChainWidthStep_texels = 64;

constexpr SignedExtent<Texels> chain_base_size(uint32_t width, uint32_t height) {
  return {static_cast<int32_t>(round_up_pot(width, kChainWidthStep_texels)),
          static_cast<int32_t>(height)};
}

// No row of a chain is pitch-padded, and its linear steps are turned into elements.
constexpr void make_chain_request(AlignmentRequest& alignment, uint32_t element_bytes) {
  alignment.min_padded_row_bytes = std::numeric_limits<int32_t>::max();
  alignment.step_divisor = element_bytes;
}

// Where the flag buffers of a chain lie.
enum class FlagPlacement {
  none,      // nowhere: there are none, or a linear surface of one plane has no room for them
  gathered,  // all in front of the chain: tiled surfaces of one plane
  own,       // each in front of its image: surfaces of several planes
};

constexpr FlagPlacement flag_placement(const Surface& surface) {
  if (surface.planes > 1) {
    return surface.flag_buffers ? FlagPlacement::own : FlagPlacement::none;
  }
  return is_tiled(surface.alignment) ? FlagPlacement::gathered : FlagPlacement::none;
}

// Read without its sign; a size above 2^31 wraps to 0.
constexpr uint32_t next_power_of_two(int32_t size) {
  constexpr uint32_t kLargest = 1U << 31;
  const auto count = static_cast<uint32_t>(size);
  return count > kLargest ? 0 : std::bit_ceil(count);
}

// What the flag buffers of a chain cover: its level 0, in elements of one texel.
constexpr Extent<Elements> chain_flag_cover(const Surface& surface) {
  return {next_power_of_two(surface.size.width), next_power_of_two(surface.size.height)};
}

// The least bytes of a row of flags, and the least rows, of every level.
constexpr uint32_t least_flag_side(const Surface& surface) {
  return std::max<uint32_t>(1, surface.chip.properties.min_level_extent);
}

// Bytes of a row of flags, or rows, of a level whose level 0 has so many tiles.
constexpr uint32_t chain_flag_side(uint32_t tiles, uint32_t level, uint32_t least) {
  return std::max(tiles >> level, least);
}

constexpr uint64_t whole_flag_slice_bytes(const ChipProperties& properties, uint64_t flags_bytes) {
  return round_up_pot<uint64_t>(flags_bytes, properties.level_size_alignment);
}

// Where the images of a plane start, behind all slices of its gathered flag buffers.
constexpr uint64_t chain_start_bytes(const ChipProperties& properties, uint64_t from_bytes) {
  return round_up_pot<uint64_t>(from_bytes, properties.level_offset_alignment);
}

constexpr uint64_t whole_chain_bytes(const ChipProperties& properties, uint64_t images_bytes) {
  return round_up_pot<uint64_t>(images_bytes, properties.base_alignment);
}

}  // namespace korvel
