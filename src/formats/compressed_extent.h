// The size of a block-compressed surface in blocks.
#pragma once

#include <cstdint>

#include "formats/format_traits.h"
#include "platform/rounding.h"

namespace korvel {

struct BlockExtent {
  uint32_t width;   // blocks
  uint32_t height;  // rows of blocks
};

// Signed on purpose: within a block of 2^31 texels the sum wraps to a negative count.
constexpr int32_t blocks_for(int32_t texels, uint32_t block_texels) {
  return static_cast<int32_t>(static_cast<uint32_t>(texels) + block_texels - 1) /
         static_cast<int32_t>(block_texels);
}

// The width takes whole pixel alignments, the height does not.
constexpr BlockExtent compressed_extent(const FormatTraits& format, uint32_t pixel_alignment,
                                        int32_t texel_width, int32_t texel_height) {
  const auto columns = static_cast<uint32_t>(blocks_for(texel_width, format.block_width));
  const auto rows = static_cast<uint32_t>(blocks_for(texel_height, format.block_height));
  return {round_up(columns, pixel_alignment), rows};
}

}  // namespace korvel
