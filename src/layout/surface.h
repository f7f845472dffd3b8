// A surface to be laid out: the caller's description, and what follows from it for every plane and
// level.
#pragma once

#include <cstdint>

#include <korvel_utils.h>
#include "align/alignment_request.h"
#include "align/extra_padding.h"
#include "formats/format_traits.h"
#include "formats/sample_tile_dims.h"
#include "formats/ubwc_formats.h"
#include "identify/chip_row.h"

namespace korvel {

// Tiled surfaces would take another one, but only linear rows are padded.
inline constexpr uint32_t kSelectorLinear = 1;

struct Surface {
  const ChipRow& chip;
  AlignmentRequest alignment;  // what its planes are aligned for
  int32_t depth;               // slices; sizes are multiplied by its 64-bit sign extension
  uint32_t planes;
  uint32_t element_size;    // bytes of an element, all samples
  uint32_t mode_alignment;  // bytes; what images of the tiling mode are rounded up to
  bool flag_buffers;        // asked for, and the chip compresses the format
  bool extra;               // the extra buffer was asked for
  bool extended;            // together with the extra padding
};

// What the caller of an initialiser asks for, beside the size.
struct SurfaceRequest {
  FormatId format_id;
  int32_t depth;
  uint32_t samples;
  uint32_t tiling_mode;
  uint64_t flags;
  uint32_t planes;
};

// As for AlignmentRequest.
constexpr SurfaceRequest stored_copy(const SurfaceRequest& request) {
  return {request.format_id,   request.depth, request.samples,
          request.tiling_mode, request.flags, request.planes};
}

constexpr Surface describe_surface(const ChipRow& chip, const SurfaceRequest& request,
                                   const FormatTraits& format, int32_t min_padded_row_bytes,
                                   uint32_t divisor) {
  const bool tiled = request.tiling_mode == KORVEL_TILING_TILED;
  const bool extra = (request.flags & LAYOUT_FLAG_EXTRA) != 0;
  const bool extended = extra & ((request.flags & LAYOUT_FLAG_EXTENDED) != 0);
  return {
      .chip = chip,
      .alignment =
          {
              .format_id = request.format_id,
              .format = format,
              .samples = request.samples,
              .tiling_mode = request.tiling_mode,
              .selector = kSelectorLinear,
              .min_padded_row_bytes = min_padded_row_bytes,
              .divisor = divisor,
              .extra = extra_padding(chip, request.format_id, extended ? 1 : 0),
          },
      .depth = request.depth,
      .planes = request.planes,
      .element_size = format.bytes * request.samples,
      .mode_alignment = tiled ? chip.properties.tiled_alignment : chip.properties.linear_alignment,
      .flag_buffers =
          (request.flags & LAYOUT_FLAG_UBWC) != 0 && ubwc_supported(chip, request.format_id),
      .extra = extra,
      .extended = extended,
  };
}

constexpr uint64_t times_depth(const Surface& surface, uint64_t bytes) {
  return static_cast<uint64_t>(int64_t{surface.depth}) * bytes;
}

// The tile of a plane's flag buffer; planes behind the first take the narrower one of two.
constexpr SampleTile flag_tile(const Surface& surface, uint32_t plane) {
  return sample_tile_dims(surface.chip.family_id, surface.alignment.format, plane != 0,
                          surface.alignment.samples);
}

}  // namespace korvel
