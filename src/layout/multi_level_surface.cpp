#include "layout/multi_level_surface.h"

#include <algorithm>
#include <bit>

#include "align/fdm_extent.h"
#include "align/whole_tiles.h"
#include "layout/surface_total.h"
#include "platform/rounding.h"

namespace korvel {
namespace {

// Widths of a chain start from whole steps of this many texels, on every chip.
constexpr uint32_t kChainWidthStep = 64;

// A size above 2^31 wraps to 0, which the next step raises to 1.
constexpr uint32_t next_power_of_two(uint32_t size) {
  constexpr uint32_t kLargest = 1U << 31;
  return size > kLargest ? 0 : std::bit_ceil(size);
}

// Tiles of level 0 along one side; `base` texels, `tile` pixels of a tile.
constexpr uint32_t base_flag_tiles(int32_t base, uint32_t tile) {
  return divide_rounding_up(next_power_of_two(static_cast<uint32_t>(base)), tile);
}

constexpr Extent base_flag_tiles(const Surface& surface, LevelExtent base, uint32_t p) {
  const SampleTile tile = flag_tile(surface, p);
  return {base_flag_tiles(base.width, tile.width), base_flag_tiles(base.height, tile.height)};
}

// Tiles of a level's flag buffer along one side.
constexpr uint32_t level_flag_tiles(const Surface& surface, uint32_t base_tiles, uint32_t level) {
  return std::max<uint32_t>({base_tiles >> level, 1, surface.chip.properties.min_level_extent});
}

void size_flag_buffer(const Surface& surface, Extent base_tiles, uint32_t l, PlaneLayout& plane) {
  const uint32_t pitch = level_flag_tiles(surface, base_tiles.width, l);
  const uint32_t rows = level_flag_tiles(surface, base_tiles.height, l);
  plane.flag_pitch = pitch;
  plane.flag_size = uint32_t{rows * pitch};
}

// Where the flag buffers of a chain lie.
enum class FlagPlacement {
  none,      // nowhere: there are none, or a linear surface of one plane has no room for them
  gathered,  // all in front of the chain: tiled surfaces of one plane
  own,       // each in front of its image: surfaces of several planes
};

constexpr FlagPlacement flag_placement(const Surface& surface) {
  if (surface.planes > 1) {
    return surface.flag_buffers ? FlagPlacement::own : FlagPlacement::none;
  }
  const bool tiled = surface.alignment.tiling_mode == KORVEL_TILING_TILED;
  return tiled ? FlagPlacement::gathered : FlagPlacement::none;
}

// Bytes of one slice.
struct ChainSize {
  uint64_t images;  // with the flag buffers of their own
  uint64_t gathered_flags;
};

// Aligns the images of planes that whole tiles do not settle, and sizes their flag buffers. The
// alignment may have messages: they come level by level, those of each level's planes in turn.
[[gnu::noinline]] void size_levels(const Surface& surface, LevelExtent base, MemoryLayout& record) {
  LevelExtent texels = first_level(base);
  for (uint32_t l = 0; l < record.levels; ++l, texels = next_level(texels)) {
    const LevelExtent elements = level_elements(surface, texels);
    for (uint32_t p = 0; p < surface.planes; ++p) {
      PlaneLayout& plane = record.level[l].plane[p];
      const Extent image =
          fdm_extent(surface.chip, elements.width, elements.height, surface.alignment, p);
      plane.image_width = image.width;
      plane.image_height = image.height;
      if (surface.flag_buffers) {
        size_flag_buffer(surface, base_flag_tiles(surface, base, p), l, plane);
      }
    }
  }
}

// Puts the images of one plane's levels one after another from 0 on, and their flag buffers; those
// of whole tiles are sized here. Every level's stored flag size counts in a gathered area, whether
// or not this layout wrote it.
ChainSize lay_out_chain(const Surface& surface, LevelExtent base, uint32_t p, bool whole_tiles,
                        FlagPlacement placement, MemoryLayout& record) {
  const TileSize tile = whole_tiles ? plane_tile_family67(surface.alignment, p) : TileSize{};
  const uint32_t element = surface.element_size;
  const uint32_t levels = record.levels;
  LevelExtent texels = first_level(base);
  Extent flag_tiles{};
  ChainSize end{};
  for (uint32_t l = 0; l < levels; ++l, texels = next_level(texels)) {
    LevelLayout& level = record.level[l];
    PlaneLayout& plane = level.plane[p];
    const Extent image = whole_tiles ? whole_tiles_extent(texels.width, texels.height, tile)
                                     : Extent{plane.image_width, plane.image_height};
    if (surface.flag_buffers && whole_tiles) {
      if (l == 0) flag_tiles = base_flag_tiles(surface, base, p);
      size_flag_buffer(surface, flag_tiles, l, plane);
    }

    const uint32_t pitch = element * image.width;
    const uint64_t image_size = round_up(pitch * image.height, surface.mode_alignment);
    uint64_t level_size = image_size;
    uint64_t image_offset = end.images;
    if (placement == FlagPlacement::gathered) {
      plane.flag_offset = end.gathered_flags;
      end.gathered_flags += plane.flag_size;
    } else if (placement == FlagPlacement::own) {
      plane.flag_offset = end.images;
      image_offset += plane.flag_size;
      level_size += plane.flag_size;
    }
    end.images += level_size;

    plane.image_offset = image_offset;
    plane.image_size = image_size;
    plane.image_pitch = pitch;
    plane.image_element_size = element;
    plane.image_width = image.width;
    plane.image_height = image.height;
    plane.flag_valid = surface.flag_buffers ? 1 : 0;
    level.slices = static_cast<uint32_t>(surface.depth);
    level.tiled = surface.alignment.tiling_mode;
    level.planes = surface.planes;
    // Each plane's pass overwrites the one before: the last plane's sizes stay.
    level.size = times_depth(surface, level_size);
    level.lrz_valid = 0;
    level.lrz_fc_valid = 0;
  }
  return end;
}

// Moves a chain that starts at 0 to `start`. A slice takes `slice` bytes, one of a gathered flag
// area takes `flag_slice`.
void place_chain(uint32_t p, FlagPlacement placement, uint64_t start, uint64_t slice,
                 uint64_t flag_slice, MemoryLayout& record) {
  for (uint32_t l = 0; l < record.levels; ++l) {
    PlaneLayout& plane = record.level[l].plane[p];
    plane.image_offset += start;
    plane.image_slice_pitch = slice;
    if (placement == FlagPlacement::gathered) plane.flag_slice_pitch = flag_slice;
    if (placement == FlagPlacement::own) {
      plane.flag_offset += start;
      plane.flag_slice_pitch = slice;
    }
  }
}

// All that is written of the levels when there is no plane.
void mark_lrz_absent(MemoryLayout& record) {
  for (uint32_t l = 0; l < record.levels; ++l) {
    record.level[l].lrz_valid = 0;
    record.level[l].lrz_fc_valid = 0;
  }
}

}  // namespace

void lay_out_multi_level_surface(const Surface& surface, LevelExtent size, MemoryLayout& record) {
  const ChipProperties& chip = surface.chip.properties;
  const LevelExtent base = {
      static_cast<int32_t>(round_up(static_cast<uint32_t>(size.width), kChainWidthStep)),
      size.height};
  const FlagPlacement placement = flag_placement(surface);
  const bool whole_tiles = takes_whole_tiles(surface.chip, surface.alignment);
  if (!whole_tiles) size_levels(surface, base, record);
  uint64_t end = 0;  // bytes of all slices so far
  for (uint32_t p = 0; p < surface.planes; ++p) {
    const ChainSize bytes = lay_out_chain(surface, base, p, whole_tiles, placement, record);
    const uint64_t flag_slice = round_up<uint64_t>(bytes.gathered_flags, chip.level_size_alignment);
    const uint64_t slice = round_up<uint64_t>(bytes.images, chip.base_alignment);
    end += times_depth(surface, flag_slice);
    const uint64_t start = round_up<uint64_t>(end, chip.level_offset_alignment);
    place_chain(p, placement, start, slice, flag_slice, record);
    end = start + times_depth(surface, slice);
  }
  if (surface.planes == 0) mark_lrz_absent(record);
  finish_surface(surface, end, record);
}

}  // namespace korvel
