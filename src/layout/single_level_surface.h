// The layout of a surface without a mip chain, behind the two entries that make one.
#pragma once

#include <korvel_utils.h>

#include <cstdint>

#include "align/entries.h"
#include "formats/extent.h"
#include "layout/plane_bytes.h"
#include "layout/surface.h"
#include "platform/rounding.h"

namespace korvel {

// Puts a flag buffer at `offset_bytes`. Returns its bytes.
inline uint32_t lay_out_flag_buffer(const Surface& surface, uint32_t plane, Extent<Elements> image,
                                    uint64_t offset_bytes, PlaneLayout& out) {
  const ChipProperties& properties = surface.chip.properties;
  const Extent<Tiles> tiles = tiles_that_cover(image, flag_tile(surface, plane));
  const uint32_t rows = flag_rows(tiles);
  const uint32_t pitch_bytes = flag_pitch_bytes(properties, tiles);
  const uint32_t size_bytes = whole_flag_bytes(properties, rows * pitch_bytes);
  out.flag_pitch = pitch_bytes;
  out.flag_offset = offset_bytes;
  out.flag_size = size_bytes;
  return size_bytes;
}

// Puts a plane at `offset_bytes`, a flag buffer in front of its image. Returns the bytes of one
// slice of both.
inline uint64_t lay_out_plane(const Surface& surface, SignedExtent<Elements> size, uint32_t plane,
                              uint64_t offset_bytes, PlaneLayout& out) {
  const Extent<Elements> image = fdm_extent(surface.chip, size, surface.alignment, plane);
  const uint32_t pitch_bytes = image_pitch_bytes(surface, image);
  // Up to here 32 bits, which wrap; from the base alignment on 64.
  const uint32_t mode_bytes = mode_aligned_bytes(surface, pitch_bytes * image.height);
  const uint64_t image_bytes = whole_image_bytes(surface, mode_bytes);

  uint32_t flag_bytes = 0;
  if (surface.flag_buffers) {
    flag_bytes = lay_out_flag_buffer(surface, plane, image, offset_bytes, out);
    out.flag_slice_pitch = flag_bytes + image_bytes;
  }
  out.flag_valid = surface.flag_buffers ? 1 : 0;
  out.image_offset = offset_bytes + flag_bytes;
  out.image_size = image_bytes;
  out.image_pitch = pitch_bytes;
  out.image_slice_pitch = flag_bytes + image_bytes;
  out.image_element_size = surface.element_bytes;
  out.image_width = image.width;
  out.image_height = image.height;
  return flag_bytes + image_bytes;
}

// At most 15 levels and 3 planes; the planes of a level follow those of the level before.
inline void lay_out_single_level_surface(const Surface& surface, RecordHead head,
                                         MemoryLayout& record) {
  uint64_t end_bytes = 0;  // of one slice of all planes so far
  SignedExtent<Texels> texels = first_level(surface.size);
  for (uint32_t level = 0; level < head.levels; ++level, texels = next_level(texels)) {
    LevelLayout& out = record.level[level];
    const SignedExtent<Elements> elements = level_elements(surface, texels);
    const uint64_t start_bytes = end_bytes;
    for (uint32_t plane = 0; plane < surface.planes; ++plane) {
      end_bytes += lay_out_plane(surface, elements, plane, end_bytes, out.plane[plane]);
    }
    out.slices = static_cast<uint32_t>(surface.depth);
    out.tiled = surface.alignment.tiling_mode;
    out.planes = surface.planes;
    out.size = bytes_of_all_slices(surface, end_bytes - start_bytes);
    mark_lrz_absent(out);
  }
  finish_record(surface, head, bytes_of_all_slices(surface, end_bytes), record);
}

}  // namespace korvel
