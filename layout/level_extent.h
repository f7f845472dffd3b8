// The size of one mip level, before alignment.
#pragma once

#include <cstdint>

#include "formats/compressed_extent.h"
#include "layout/surface.h"

namespace korvel {

// Signed: the alignment refuses what wrapped below 0.
struct LevelExtent {
  int32_t width;
  int32_t height;
};

// Levels that would vanish keep the size of the one before, 1 in front of the first. Sizes halve
// down to 1 before they vanish, so this is the same as never going below 1.
constexpr LevelExtent level_texels(LevelExtent base, uint32_t level) {
  const auto halved = [level](int32_t size) { return size >> level > 0 ? size >> level : 1; };
  return {halved(base.width), halved(base.height)};
}

// In elements: texels, or blocks of a block-compressed format.
constexpr LevelExtent level_elements(const Surface& surface, LevelExtent base, uint32_t level) {
  const LevelExtent texels = level_texels(base, level);
  if ((surface.format.rules & kRuleBlockCompressed) == 0) return texels;
  const BlockExtent blocks = compressed_extent(
      surface.format, surface.chip.properties.pixel_alignment, texels.width, texels.height);
  return {static_cast<int32_t>(blocks.width), static_cast<int32_t>(blocks.height)};
}

}  // namespace korvel
