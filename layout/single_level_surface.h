// The layout of a single-level surface, behind the two entries that make one.
#pragma once

#include <cstdint>

#include "align/fdm_extent.h"
#include "include/korvel_utils.h"
#include "layout/level_extent.h"
#include "layout/surface.h"
#include "layout/surface_total.h"
#include "platform/division.h"
#include "platform/rounding.h"

namespace korvel {

inline constexpr uint32_t kFlagRowAlignment = 16;  // rows of a flag buffer

// Puts a flag buffer at `offset`. Returns its bytes.
inline uint32_t lay_out_flag_buffer(const Surface& surface, uint32_t p, Extent image,
                                    uint64_t offset, PlaneLayout& plane) {
  const ChipProperties& chip = surface.chip.properties;
  const SampleTile tile = flag_tile(surface, p);
  const uint32_t rows = round_up(divide_rounding_up(image.height, tile.height), kFlagRowAlignment);
  const uint32_t pitch =
      round_up<uint32_t>(divide_rounding_up(image.width, tile.width), chip.linear_alignment);
  const uint32_t size = round_up<uint32_t>(rows * pitch, chip.base_alignment);
  plane.flag_pitch = pitch;
  plane.flag_offset = offset;
  plane.flag_size = size;
  return size;
}

// Puts a plane at `offset`, a flag buffer in front of its image. Returns the bytes of one slice of
// both.
inline uint64_t lay_out_plane(const Surface& surface, LevelExtent level, uint32_t p,
                              uint64_t offset, PlaneLayout& plane) {
  const ChipProperties& chip = surface.chip.properties;
  const Extent image = fdm_extent(surface.chip, level.width, level.height,
                                  plane_request(surface, p, chip.aux_alignment, 1));
  const uint32_t pitch = surface.element_size * image.width;
  const uint32_t image_bytes = round_up(pitch * image.height, surface.mode_alignment);
  const uint64_t image_size = round_up<uint64_t>(image_bytes, chip.base_alignment);

  uint64_t image_offset = offset;
  uint64_t slice_pitch = image_size;
  if (surface.flag_buffers) {
    const uint32_t flag_bytes = lay_out_flag_buffer(surface, p, image, offset, plane);
    image_offset += flag_bytes;
    slice_pitch += flag_bytes;
    plane.flag_slice_pitch = slice_pitch;
  }
  plane.flag_valid = surface.flag_buffers ? 1 : 0;
  plane.image_offset = image_offset;
  plane.image_size = image_size;
  plane.image_pitch = pitch;
  plane.image_slice_pitch = slice_pitch;
  plane.image_element_size = surface.element_size;
  plane.image_width = image.width;
  plane.image_height = image.height;
  return slice_pitch;
}

// Lays out `levels` levels of at most 3 planes. Each caller has its own copy, so that the one with
// a single level pays for no loop.
[[gnu::always_inline]] inline void lay_out_single_level_surface(const Surface& surface,
                                                                LevelExtent size, uint32_t levels,
                                                                MemoryLayout& record) {
  uint64_t end = 0;  // bytes of one slice of all planes so far
  for (uint32_t l = 0; l < levels; ++l) {
    LevelLayout& level = record.level[l];
    const LevelExtent elements = level_elements(surface, size, l);
    const uint64_t start = end;
    for (uint32_t p = 0; p < surface.planes; ++p) {
      end += lay_out_plane(surface, elements, p, end, level.plane[p]);
    }
    level.slices = static_cast<uint32_t>(surface.depth);
    level.tiled = surface.tiling_mode;
    level.planes = surface.planes;
    level.size = times_depth(surface, end - start);
    level.lrz_valid = 0;
    level.lrz_fc_valid = 0;
  }
  finish_surface(surface, times_depth(surface, end), record);
}

}  // namespace korvel
