#include "layout/mip_chains.h"

#include <algorithm>
#include <bit>

#include "align/entries.h"
#include "platform/rounding.h"

namespace korvel {
namespace {

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
  return is_tiled(surface.alignment) ? FlagPlacement::gathered : FlagPlacement::none;
}

// One plane's chain, level by level. Bytes are those of one slice.
struct Chain {
  Extent<Elements> tile;          // where whole tiles settle the sizes of its images
  Extent<Tiles> flag_tiles;       // of level 0
  uint64_t images_bytes;          // so far, with the flag buffers of their own
  uint64_t gathered_flags_bytes;  // so far
};

// A size above 2^31 wraps to 0.
constexpr uint32_t next_power_of_two(int32_t size) {
  constexpr uint32_t kLargest = 1U << 31;
  const auto count = static_cast<uint32_t>(size);
  return count > kLargest ? 0 : std::bit_ceil(count);
}

constexpr Extent<Tiles> base_flag_tiles(const Surface& surface, uint32_t plane) {
  const Extent<Elements> covered = {next_power_of_two(surface.size.width),
                                    next_power_of_two(surface.size.height)};
  return tiles_that_cover(covered, flag_tile(surface, plane));
}

void size_flag_buffer(const Surface& surface, Extent<Tiles> base, uint32_t level,
                      PlaneLayout& out) {
  const uint32_t least = std::max<uint32_t>(1, surface.chip.properties.min_level_extent);
  const uint32_t pitch_bytes = std::max(base.width >> level, least);
  const uint32_t rows = std::max(base.height >> level, least);
  out.flag_pitch = pitch_bytes;
  out.flag_size = uint32_t{rows * pitch_bytes};
}

// Puts one level of a plane behind the levels before it, in a chain that starts at 0. Returns the
// bytes of one slice of it. Every level's stored flag size counts in a gathered area, whether or
// not this layout wrote it.
uint64_t append_level(const Surface& surface, Extent<Elements> image, FlagPlacement placement,
                      Chain& chain, PlaneLayout& out) {
  const uint32_t pitch_bytes = surface.element_bytes * image.width;
  const uint64_t image_bytes =
      round_up_pot(pitch_bytes * image.height, surface.image_alignment_bytes);
  uint64_t own_flag_bytes = 0;
  if (placement == FlagPlacement::gathered) {
    out.flag_offset = chain.gathered_flags_bytes;
    chain.gathered_flags_bytes += out.flag_size;
  } else if (placement == FlagPlacement::own) {
    out.flag_offset = chain.images_bytes;
    own_flag_bytes = out.flag_size;
  }
  out.image_offset = chain.images_bytes + own_flag_bytes;
  out.image_size = image_bytes;
  out.image_pitch = pitch_bytes;
  out.image_element_size = surface.element_bytes;
  out.image_width = image.width;
  out.image_height = image.height;
  out.flag_valid = surface.flag_buffers ? 1 : 0;
  chain.images_bytes += own_flag_bytes + image_bytes;
  return own_flag_bytes + image_bytes;
}

// Moves a chain that starts at 0 to `start_bytes`.
void place_chain(FlagPlacement placement, uint32_t plane, uint64_t start_bytes,
                 uint64_t slice_bytes, uint64_t flag_slice_bytes, uint32_t levels,
                 MemoryLayout& record) {
  for (uint32_t level = 0; level < levels; ++level) {
    PlaneLayout& out = record.level[level].plane[plane];
    out.image_offset += start_bytes;
    out.image_slice_pitch = slice_bytes;
    if (placement == FlagPlacement::gathered) {
      out.flag_slice_pitch = flag_slice_bytes;
    } else if (placement == FlagPlacement::own) {
      out.flag_offset += start_bytes;
      out.flag_slice_pitch = slice_bytes;
    }
  }
}

// Whether every image takes whole tiles and no more: tiles of elements without blocks, not padded,
// on a chip of families 6 and 7. No size is refused then, and a chain looks its tile up once.
constexpr bool takes_whole_tiles(const Surface& surface) {
  const AlignmentRequest& alignment = surface.alignment;
  return surface.chip.supported && surface.chip.family_id != 5 && is_tiled(alignment) &&
         !has_rule(alignment.format, kRuleBlockFamily67) && !surface.extended;
}

}  // namespace

void lay_out_mip_chains(const Surface& surface, uint32_t levels, MemoryLayout& record) {
  const ChipProperties& chip = surface.chip.properties;
  const FlagPlacement placement = flag_placement(surface);
  const bool whole = takes_whole_tiles(surface);
  Chain chains[KORVEL_MAX_PLANES] = {};
  for (uint32_t plane = 0; whole && plane < surface.planes; ++plane) {
    chains[plane].tile = plane_tile_family67(surface.alignment, plane);
  }

  // Level by level: so come the messages of sizes that are refused.
  SignedExtent<Texels> texels = first_level(surface.size);
  for (uint32_t level = 0; level < levels; ++level, texels = next_level(texels)) {
    LevelLayout& out = record.level[level];
    const SignedExtent<Elements> elements = level_elements(surface, texels);
    for (uint32_t plane = 0; plane < surface.planes; ++plane) {
      Chain& chain = chains[plane];
      const Extent<Elements> image =
          whole ? whole_tiles({static_cast<uint32_t>(elements.width),
                               static_cast<uint32_t>(elements.height)},
                              chain.tile)
                : fdm_extent(surface.chip, elements, surface.alignment, plane);
      if (surface.flag_buffers) {
        if (level == 0) chain.flag_tiles = base_flag_tiles(surface, plane);
        size_flag_buffer(surface, chain.flag_tiles, level, out.plane[plane]);
      }
      const uint64_t level_bytes = append_level(surface, image, placement, chain, out.plane[plane]);
      out.slices = static_cast<uint32_t>(surface.depth);
      out.tiled = surface.alignment.tiling_mode;
      out.planes = surface.planes;
      // Each plane's size takes the place of the one before: the last one stays.
      out.size = bytes_of_all_slices(surface, level_bytes);
    }
    out.lrz_valid = 0;
    out.lrz_fc_valid = 0;
  }

  uint64_t end_bytes = 0;  // of all slices of the planes so far
  for (uint32_t plane = 0; plane < surface.planes; ++plane) {
    const uint64_t flag_slice_bytes =
        round_up_pot<uint64_t>(chains[plane].gathered_flags_bytes, chip.level_size_alignment);
    const uint64_t slice_bytes =
        round_up_pot<uint64_t>(chains[plane].images_bytes, chip.base_alignment);
    const uint64_t images_at = end_bytes + bytes_of_all_slices(surface, flag_slice_bytes);
    const uint64_t start_bytes = round_up_pot<uint64_t>(images_at, chip.level_offset_alignment);
    place_chain(placement, plane, start_bytes, slice_bytes, flag_slice_bytes, levels, record);
    end_bytes = start_bytes + bytes_of_all_slices(surface, slice_bytes);
  }
  finish_record(surface, end_bytes, record);
}

}  // namespace korvel
