// A surface to be laid out: what the caller of an initialiser asks for, and what follows from it
// for every plane and level.
#pragma once

#include <korvel_utils.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "align/alignment_request.h"
#include "align/extra_padding.h"
#include "formats/compressed_extent.h"
#include "formats/extent.h"
#include "formats/format_traits.h"
#include "formats/sample_tile_dims.h"
#include "formats/ubwc_formats.h"
#include "identify/chip_row.h"
#include "layout/stored_word.h"
#include "platform/rounding.h"

namespace korvel {

struct Surface {
  const ChipRow& chip;
  AlignmentRequest alignment;  // of its planes
  SignedExtent<Texels> size;   // of level 0
  int32_t depth;               // slices
  uint32_t planes;
  uint32_t element_bytes;          // all samples
  uint32_t image_alignment_bytes;  // what an image of the tiling mode is rounded up to
  bool flag_buffers;               // asked for, and the chip compresses the format
  bool extra_buffer;               // asked for
  bool extended;                   // asked for beside it: the chip's extra padding
};

// Arguments as the initialisers take them. Linear rows of more than the chip's aux_alignment
// bytes are padded.
constexpr Surface described_surface(const ChipRow& chip, SignedExtent<Texels> size, int32_t depth,
                                    FormatId format, uint32_t samples, uint32_t tiling_mode,
                                    uint64_t flags, uint32_t planes) {
  const ChipProperties& properties = chip.properties;
  const bool tiled = tiling_mode == KORVEL_TILING_TILED;
  const bool extra_buffer = (flags & LAYOUT_FLAG_EXTRA) != 0;
  const bool extended = extra_buffer && (flags & LAYOUT_FLAG_EXTENDED) != 0;
  AlignmentRequest alignment =
      alignment_request(format, samples, tiling_mode, properties.aux_alignment);
  if (extended) alignment.padding = extra_padding(chip, format);
  return {
      .chip = chip,
      .alignment = alignment,
      .size = size,
      .depth = depth,
      .planes = planes,
      .element_bytes = alignment.format.bytes * samples,
      .image_alignment_bytes = tiled ? properties.tiled_alignment : properties.linear_alignment,
      .flag_buffers = (flags & LAYOUT_FLAG_UBWC) != 0 && ubwc_supported(chip, format),
      .extra_buffer = extra_buffer,
      .extended = extended,
  };
}

// Level 0 of a size: a side below 1 counts as 1.
constexpr SignedExtent<Texels> first_level(SignedExtent<Texels> size) {
  return {std::max(size.width, 1), std::max(size.height, 1)};
}

// Half the size; a side of 1 stays.
constexpr SignedExtent<Texels> next_level(SignedExtent<Texels> level) {
  return first_level({level.width >> 1, level.height >> 1});
}

// Signed: what wraps below 0 is for the alignment to refuse.
constexpr SignedExtent<Elements> level_elements(const Surface& surface,
                                                SignedExtent<Texels> level) {
  const FormatTraits& format = surface.alignment.format;
  if (!has_rule(format, kRuleBlockCompressed)) return one_texel_elements(level);
  const Extent<Elements> blocks =
      compressed_extent(format, surface.chip.properties.pixel_alignment, level);
  return {static_cast<int32_t>(blocks.width), static_cast<int32_t>(blocks.height)};
}

// The tile of elements that one byte of a plane's flag buffer stands for; planes behind the first
// take the narrower one of two. 0 x 0 where none is known.
constexpr Extent<Elements> flag_tile(const Surface& surface, uint32_t plane) {
  return sample_tile_dims(surface.chip.family_id, surface.alignment.format, plane != 0,
                          surface.alignment.samples);
}

// Faults for a tile of 0 x 0.
constexpr Extent<Tiles> tiles_that_cover(Extent<Elements> size, Extent<Elements> tile) {
  return {divide_rounding_up(size.width, tile.width), divide_rounding_up(size.height, tile.height)};
}

// The depth is sign-extended.
constexpr uint64_t bytes_of_all_slices(const Surface& surface, uint64_t slice_bytes) {
  return static_cast<uint64_t>(int64_t{surface.depth}) * slice_bytes;
}

// Layouts have no low-resolution depth.
inline void mark_lrz_absent(LevelLayout& level) {
  level.lrz_valid = 0;
  level.lrz_fc_valid = 0;
}

// The alignment of a whole surface in bytes. A mode that is neither tiled nor linear has none.
constexpr uint32_t surface_alignment_bytes(const ChipRow& chip, const FormatTraits& format,
                                           uint32_t samples, uint32_t tiling_mode) {
  switch (tiling_mode) {
    case KORVEL_TILING_TILED: return chip.properties.tiled_alignment;
    case KORVEL_TILING_LINEAR:
      return round_up_pot<uint32_t>(format.substitute_bytes * samples,
                                    chip.properties.pixel_alignment);
    default: return 0;
  }
}

// What a layout takes from the head of its record: read once, before anything is checked.
struct RecordHead {
  uint32_t size;       // bytes of the record
  uint32_t alignment;  // of the surface, bytes
  uint32_t levels;
};

inline RecordHead read_head(const MemoryLayout& record) {
  const unsigned char* bytes = stored_bytes(record);
  return {.size = KORVEL_STORED(bytes, MemoryLayout, size),
          .alignment = KORVEL_STORED(bytes, MemoryLayout, alignment),
          .levels = KORVEL_STORED(bytes, MemoryLayout, levels)};
}

// The bytes of a whole surface.
constexpr uint64_t whole_surface_bytes(uint64_t bytes, uint32_t alignment) {
  return round_up_pot<uint64_t>(bytes, alignment);
}

// Writes the extra buffer and the total, the last words of a laid-out record. `surface_bytes` is
// where the planes end.
inline void finish_record(const Surface& surface, RecordHead head, uint64_t surface_bytes,
                          MemoryLayout& record) {
  record.extra_valid = surface.extra_buffer ? 1 : 0;
  if (surface.extra_buffer) [[unlikely]] {
    const uint64_t extra_bytes = bytes_of_all_slices(surface, KORVEL_EXTRA_SLICE_BYTES);
    record.extra_slice_pitch = KORVEL_EXTRA_SLICE_BYTES;
    record.extra_offset = surface_bytes;
    record.extra_size = extra_bytes;
    surface_bytes += extra_bytes;
  }
  record.extended = surface.extended ? 1 : 0;
  record.total_size = whole_surface_bytes(surface_bytes, head.alignment) + head.size;
}

}  // namespace korvel
