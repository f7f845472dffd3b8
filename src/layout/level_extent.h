// The size of one mip level, before alignment.
#pragma once

#include <algorithm>
#include <cstdint>

#include "formats/compressed_extent.h"
#include "layout/surface.h"

namespace korvel {

// Signed: the alignment refuses what wrapped below 0.
struct LevelExtent {
  int32_t width;
  int32_t height;
};

// Level 0 of a size; nothing vanishes.
constexpr LevelExtent first_level(LevelExtent size) {
  return {std::max(size.width, 1), std::max(size.height, 1)};
}

// A side that would vanish keeps its size.
constexpr LevelExtent next_level(LevelExtent texels) {
  return {std::max(texels.width >> 1, 1), std::max(texels.height >> 1, 1)};
}

// The size of a level in elements: texels, or blocks of a block-compressed format.
constexpr LevelExtent level_elements(const Surface& surface, LevelExtent texels) {
  const FormatTraits& format = surface.alignment.format;
  if ((format.rules & kRuleBlockCompressed) == 0) return texels;
  const BlockExtent blocks = compressed_extent(format, surface.chip.properties.pixel_alignment,
                                               texels.width, texels.height);
  return {static_cast<int32_t>(blocks.width), static_cast<int32_t>(blocks.height)};
}

}  // namespace korvel
