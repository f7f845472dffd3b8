// One plane of a single-level surface.
#pragma once

#include <cstdint>

#include <korvel_utils.h>
#include "align/fdm_extent.h"
#include "layout/level_extent.h"
#include "layout/surface.h"
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
[[gnu::always_inline]] inline uint64_t lay_out_plane(const Surface& surface, LevelExtent level,
                                                     uint32_t p, uint64_t offset,
                                                     PlaneLayout& plane) {
  const ChipProperties& chip = surface.chip.properties;
  const Extent image = fdm_extent(surface.chip, level.width, level.height, surface.alignment, p);
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

}  // namespace korvel
