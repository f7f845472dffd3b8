// A surface to be laid out: the caller's description with what every plane and level of it shares.
#pragma once

#include <cstdint>

#include "align/alignment_request.h"
#include "align/extra_padding.h"
#include "formats/compressed_extent.h"
#include "formats/format_traits.h"
#include "formats/sample_tile_dims.h"
#include "formats/ubwc_formats.h"
#include "identify/chip_row.h"
#include "include/korvel_utils.h"
#include "platform/rounding.h"

namespace korvel {

// Pitch padding knows a half of its own for tiled surfaces.
inline constexpr uint32_t kSelectorTiled = 2;
inline constexpr uint32_t kSelectorLinear = 1;

struct Surface {
  const ChipRow& chip;
  FormatId format_id;
  const FormatTraits& format;
  int32_t depth;  // slices; sizes are multiplied by its 64-bit sign extension
  uint32_t samples;
  uint32_t tiling_mode;
  uint64_t flags;
  uint32_t planes;
};

constexpr bool has_flag(const Surface& surface, uint64_t flag) {
  return (surface.flags & flag) != 0;
}

constexpr bool is_extended(const Surface& surface) {
  return has_flag(surface, LAYOUT_FLAG_EXTRA) && has_flag(surface, LAYOUT_FLAG_EXTENDED);
}

constexpr bool is_tiled(const Surface& surface) {
  return surface.tiling_mode == KORVEL_TILING_TILED;
}

constexpr bool has_flag_buffers(const Surface& surface) {
  return has_flag(surface, LAYOUT_FLAG_UBWC) && ubwc_supported(surface.chip, surface.format_id);
}

// Bytes; what the images of the tiling mode are rounded up to.
constexpr uint32_t mode_alignment(const Surface& surface) {
  const ChipProperties& chip = surface.chip.properties;
  return is_tiled(surface) ? chip.tiled_alignment : chip.linear_alignment;
}

// Bytes of an element, all samples.
constexpr uint32_t element_size(const Surface& surface) {
  return surface.format.bytes * surface.samples;
}

constexpr uint64_t times_depth(const Surface& surface, uint64_t bytes) {
  return static_cast<uint64_t>(int64_t{surface.depth}) * bytes;
}

// The tile of a plane's flag buffer; planes behind the first take the narrower one of two.
constexpr SampleTile flag_tile(const Surface& surface, uint32_t plane) {
  return sample_tile_dims(surface.chip.family_id, surface.format, plane != 0, surface.samples);
}

constexpr AlignmentRequest plane_request(const Surface& surface, uint32_t plane,
                                         int32_t min_padded_row_bytes, uint32_t divisor) {
  return {
      .format_id = surface.format_id,
      .format = surface.format,
      .plane = plane,
      .samples = surface.samples,
      .tiling_mode = surface.tiling_mode,
      .selector = is_tiled(surface) ? kSelectorTiled : kSelectorLinear,
      .min_padded_row_bytes = min_padded_row_bytes,
      .divisor = divisor,
      .extra = extra_padding(surface.chip, surface.format_id, is_extended(surface) ? 1 : 0),
  };
}

}  // namespace korvel
