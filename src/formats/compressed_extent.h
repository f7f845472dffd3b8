// The size of a block-compressed surface in elements, which are its blocks.
#pragma once

#include <cstdint>

#include "formats/extent.h"
#include "formats/format_traits.h"
#include "platform/rounding.h"

namespace korvel {

// Signed on purpose: within a block of 2^31 texels the sum wraps to a negative count.
constexpr int32_t blocks_that_hold(int32_t texels, uint32_t block_texels) {
  const auto sum = static_cast<int32_t>(static_cast<uint32_t>(texels) + block_texels - 1);
  return sum / static_cast<int32_t>(block_texels);
}

// The width takes whole pixel alignments, the height does not.
constexpr Extent<Elements> compressed_extent(const FormatTraits& format,
                                             uint32_t pixel_alignment_el,
                                             SignedExtent<Texels> size) {
  const int32_t columns = blocks_that_hold(size.width, format.block.width);
  const int32_t rows = blocks_that_hold(size.height, format.block.height);
  return {round_up_pot(static_cast<uint32_t>(columns), pixel_alignment_el),
          static_cast<uint32_t>(rows)};
}

}  // namespace korvel
