// The steps from the aligned size of a plane to its bytes, and from the tiles that cover it to its flag
// buffer. Of the chains of mip levels, those that differ are in layout/chain_bytes.h.
#pragma once

#include <cstdint>

#include "formats/extent.h"
#include "layout/surface.h"
#include "platform/rounding.h"

namespace korvel {

constexpr uint32_t image_pitch_bytes(const Surface& surface, Extent<Elements> image) {
  return surface.element_bytes * image.width;
}

// What the tiling mode rounds the rows of an image up to. Up to here 32 bits, which wrap.
constexpr uint32_t mode_aligned_bytes(const Surface& surface, uint32_t rows_bytes) {
  return round_up_pot(rows_bytes, surface.image_alignment_bytes);
}

// From the base alignment on 64 bits.
constexpr uint64_t whole_image_bytes(const Surface& surface, uint64_t aligned_bytes) {
  return round_up_pot<uint64_t>(aligned_bytes, surface.chip.properties.base_alignment);
}

inline constexpr uint32_t kFlagRowAlignment = 16;  // rows of a flag buffer

constexpr uint32_t flag_rows(Extent<Tiles> tiles) {
  return round_up_pot(tiles.height, kFlagRowAlignment);
}

constexpr uint32_t flag_pitch_bytes(const ChipProperties& properties, Extent<Tiles> tiles) {
  return round_up_pot<uint32_t>(tiles.width, properties.linear_alignment);
}

constexpr uint32_t whole_flag_bytes(const ChipProperties& properties, uint32_t rows_bytes) {
  return round_up_pot<uint32_t>(rows_bytes, properties.base_alignment);
}

}  // namespace korvel
