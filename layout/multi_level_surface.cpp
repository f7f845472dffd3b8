#include "layout/multi_level_surface.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "align/fdm_extent.h"
#include "layout/surface_total.h"
#include "platform/rounding.h"

namespace korvel {
namespace {

// Widths of a chain start from whole steps of this many texels, on every chip.
constexpr uint32_t kChainWidthStep = 64;

// No row of a chain is pitch-padded.
constexpr int32_t kNeverPadded = std::numeric_limits<int32_t>::max();

// A size above 2^31 wraps to 0, which the next step raises to 1.
constexpr uint32_t next_power_of_two(uint32_t size) {
  constexpr uint32_t kLargest = 1U << 31;
  return size > kLargest ? 0 : std::bit_ceil(size);
}

// Tiles of a level's flag buffer along one side; `base` texels at level 0, `tile` pixels of a tile.
constexpr uint32_t flag_extent(const Surface& surface, int32_t base, uint32_t tile,
                               uint32_t level) {
  const uint32_t tiles =
      divide_rounding_up(next_power_of_two(static_cast<uint32_t>(base)), tile) >> level;
  return std::max<uint32_t>({tiles, 1, surface.chip.properties.min_level_extent});
}

void size_flag_buffer(const Surface& surface, LevelExtent base, uint32_t l, uint32_t p,
                      PlaneLayout& plane) {
  const SampleTile tile = flag_tile(surface, p);
  const uint32_t pitch = flag_extent(surface, base.width, tile.width, l);
  const uint32_t rows = flag_extent(surface, base.height, tile.height, l);
  plane.flag_pitch = pitch;
  plane.flag_size = uint32_t{rows * pitch};
}

// Sizes of one plane of one level; where it lies comes later.
void size_plane(const Surface& surface, LevelExtent level, uint32_t p, PlaneLayout& plane) {
  const uint32_t element = surface.element_size;
  const Extent image = fdm_extent(surface.chip, level.width, level.height,
                                  plane_request(surface, p, kNeverPadded, element));
  const uint32_t pitch = element * image.width;
  plane.image_element_size = element;
  plane.image_width = image.width;
  plane.image_height = image.height;
  plane.image_pitch = pitch;
  plane.image_size = round_up(pitch * image.height, surface.mode_alignment);
}

void size_levels(const Surface& surface, LevelExtent base, MemoryLayout& record) {
  for (uint32_t l = 0; l < record.levels; ++l) {
    LevelLayout& level = record.level[l];
    const LevelExtent elements = level_elements(surface, base, l);
    for (uint32_t p = 0; p < surface.planes; ++p) {
      PlaneLayout& plane = level.plane[p];
      level.slices = static_cast<uint32_t>(surface.depth);
      level.tiled = surface.tiling_mode;
      level.planes = surface.planes;
      size_plane(surface, elements, p, plane);
      plane.flag_valid = surface.flag_buffers ? 1 : 0;
      if (surface.flag_buffers) size_flag_buffer(surface, base, l, p, plane);
    }
  }
}

// Gathers the flag buffers of a tiled single-plane surface in front of its images. Every level's
// stored flag size counts, whether or not this layout wrote it. Returns the bytes of one slice of
// the area.
uint64_t place_flag_area(const Surface& surface, MemoryLayout& record) {
  uint64_t offset = 0;
  for (uint32_t l = 0; l < record.levels; ++l) {
    PlaneLayout& plane = record.level[l].plane[0];
    plane.flag_offset = offset;
    offset += plane.flag_size;
  }
  const uint64_t area = round_up<uint64_t>(offset, surface.chip.properties.level_size_alignment);
  for (uint32_t l = 0; l < record.levels; ++l) record.level[l].plane[0].flag_slice_pitch = area;
  return area;
}

// Puts one plane's levels one after another from `start` on; with several planes each flag buffer
// goes in front of its image. Returns the bytes of one slice, which is the whole chain.
uint64_t place_chain(const Surface& surface, uint32_t p, uint64_t start, MemoryLayout& record) {
  const bool own_flag_buffers = surface.planes >= 2 && surface.flag_buffers;
  uint64_t offset = 0;
  for (uint32_t l = 0; l < record.levels; ++l) {
    LevelLayout& level = record.level[l];
    PlaneLayout& plane = level.plane[p];
    const uint64_t flag_bytes = own_flag_buffers ? plane.flag_size : 0;
    if (own_flag_buffers) plane.flag_offset = start + offset;
    plane.image_offset = start + offset + flag_bytes;
    // Each plane's pass overwrites the one before: the last plane's sizes stay.
    level.size = times_depth(surface, plane.image_size + flag_bytes);
    offset += plane.image_size + flag_bytes;
  }
  const uint64_t chain = round_up<uint64_t>(offset, surface.chip.properties.base_alignment);
  for (uint32_t l = 0; l < record.levels; ++l) {
    PlaneLayout& plane = record.level[l].plane[p];
    plane.image_slice_pitch = chain;
    if (own_flag_buffers) plane.flag_slice_pitch = chain;
  }
  return chain;
}

}  // namespace

void lay_out_multi_level_surface(const Surface& surface, LevelExtent size, MemoryLayout& record) {
  const LevelExtent base = {
      static_cast<int32_t>(round_up(static_cast<uint32_t>(size.width), kChainWidthStep)),
      size.height};
  size_levels(surface, base, record);

  uint64_t end = 0;  // bytes of all slices so far
  if (surface.tiling_mode == KORVEL_TILING_TILED && surface.planes == 1) {
    end = times_depth(surface, place_flag_area(surface, record));
  }
  for (uint32_t p = 0; p < surface.planes; ++p) {
    const uint64_t start = round_up<uint64_t>(end, surface.chip.properties.level_offset_alignment);
    end = start + times_depth(surface, place_chain(surface, p, start, record));
  }
  for (uint32_t l = 0; l < record.levels; ++l) {
    record.level[l].lrz_valid = 0;
    record.level[l].lrz_fc_valid = 0;
  }
  finish_surface(surface, end, record);
}

}  // namespace korvel
