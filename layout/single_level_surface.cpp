#include "layout/single_level_surface.h"

#include "align/fdm_extent.h"
#include "layout/surface_total.h"
#include "platform/division.h"
#include "platform/rounding.h"

namespace korvel {
namespace {

constexpr uint32_t kFlagRowAlignment = 16;  // rows of a flag buffer

// Puts a flag buffer at `offset`. Returns its bytes.
uint32_t lay_out_flag_buffer(const Surface& surface, uint32_t p, Extent image, uint64_t offset,
                             PlaneLayout& plane) {
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
uint64_t lay_out_plane(const Surface& surface, LevelExtent level, uint32_t p, bool flag_buffer,
                       uint64_t offset, PlaneLayout& plane) {
  const ChipProperties& chip = surface.chip.properties;
  const Extent image = fdm_extent(surface.chip, level.width, level.height,
                                  plane_request(surface, p, chip.aux_alignment, 1));
  const uint32_t pitch = element_size(surface) * image.width;
  const uint32_t image_bytes = round_up(pitch * image.height, mode_alignment(surface));
  const uint64_t slice = round_up<uint64_t>(image_bytes, chip.base_alignment);

  const uint32_t flag_bytes =
      flag_buffer ? lay_out_flag_buffer(surface, p, image, offset, plane) : 0;
  const uint64_t slice_pitch = slice + flag_bytes;
  plane.flag_valid = flag_buffer ? 1 : 0;
  if (flag_buffer) plane.flag_slice_pitch = slice_pitch;

  plane.image_element_size = element_size(surface);
  plane.image_width = image.width;
  plane.image_height = image.height;
  plane.image_pitch = pitch;
  plane.image_size = slice;
  plane.image_offset = offset + flag_bytes;
  plane.image_slice_pitch = slice_pitch;
  return slice_pitch;
}

}  // namespace

void lay_out_single_level_surface(const Surface& surface, LevelExtent size, MemoryLayout& record) {
  const bool flag_buffers = has_flag_buffers(surface);
  uint64_t end = 0;  // bytes of one slice of all planes so far
  for (uint32_t l = 0; l < record.levels; ++l) {
    LevelLayout& level = record.level[l];
    const LevelExtent elements = level_elements(surface, size, l);
    const uint64_t start = end;
    for (uint32_t p = 0; p < surface.planes; ++p) {
      end += lay_out_plane(surface, elements, p, flag_buffers, end, level.plane[p]);
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
