// A surface to be laid out: the caller's description, and what follows from it for every plane and
// level.
#pragma once

#include <cstdint>

#include "align/alignment_request.h"
#include "align/extra_padding.h"
#include "formats/format_traits.h"
#include "formats/sample_tile_dims.h"
#include "formats/ubwc_formats.h"
#include "identify/chip_row.h"
#include "include/korvel_utils.h"

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
  uint32_t planes;

  uint32_t element_size;    // bytes of an element, all samples
  uint32_t mode_alignment;  // bytes; what images of the tiling mode are rounded up to
  Extent extra_padding;     // elements and rows
  bool flag_buffers;        // asked for, and the chip compresses the format
  bool extra;               // the extra buffer was asked for
  bool extended;            // together with the extra padding
};

constexpr Surface describe_surface(const ChipRow& chip, FormatId format_id,
                                   const FormatTraits& format, int32_t depth, uint32_t samples,
                                   uint32_t tiling_mode, uint64_t flags, uint32_t planes) {
  constexpr uint64_t kExtendedFlags = LAYOUT_FLAG_EXTRA | LAYOUT_FLAG_EXTENDED;
  const bool extended = (flags & kExtendedFlags) == kExtendedFlags;
  return {
      .chip = chip,
      .format_id = format_id,
      .format = format,
      .depth = depth,
      .samples = samples,
      .tiling_mode = tiling_mode,
      .planes = planes,
      .element_size = format.bytes * samples,
      .mode_alignment = tiling_mode == KORVEL_TILING_TILED ? chip.properties.tiled_alignment
                                                           : chip.properties.linear_alignment,
      .extra_padding = extra_padding(chip, format_id, extended ? 1 : 0),
      .flag_buffers = (flags & LAYOUT_FLAG_UBWC) != 0 && ubwc_supported(chip, format_id),
      .extra = (flags & LAYOUT_FLAG_EXTRA) != 0,
      .extended = extended,
  };
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
  const bool tiled = surface.tiling_mode == KORVEL_TILING_TILED;
  return {
      .format_id = surface.format_id,
      .format = surface.format,
      .plane = plane,
      .samples = surface.samples,
      .tiling_mode = surface.tiling_mode,
      .selector = tiled ? kSelectorTiled : kSelectorLinear,
      .min_padded_row_bytes = min_padded_row_bytes,
      .divisor = divisor,
      .extra = surface.extra_padding,
  };
}

}  // namespace korvel
