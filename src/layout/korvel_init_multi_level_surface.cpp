// The layout of a surface with mip levels: each plane's levels form one chain, and an array slice
// is a whole chain.
//
// First every level of a plane is sized, then its flag buffers and its images are put one after
// another. What is written into the record is never read back from it.

#include <korvel_utils.h>

#include "align/entries.h"
#include "formats/extent.h"
#include "identify/gpu_identity.h"
#include "layout/chain_bytes.h"
#include "layout/plane_bytes.h"
#include "layout/record_limits.h"
#include "layout/surface.h"

namespace korvel {
namespace {

constexpr const char* kName = "korvel_init_multi_level_surface";

// The levels of one plane.
struct Chain {
  Extent<Elements> image[KORVEL_MAX_LEVELS];
  uint64_t flag_bytes[KORVEL_MAX_LEVELS];  // of each flag buffer, where there are some
};

// Sizes the flag buffers of all levels of a plane, if it has any. `levels` is not 0.
void size_flag_buffers(const Surface& surface, uint32_t levels, uint32_t plane, Chain& chain,
                       MemoryLayout& record) {
  if (!surface.flag_buffers) return;
  const Extent<Tiles> tiles =
      tiles_that_cover(chain_flag_cover(surface), flag_tile(surface, plane));
  const uint32_t least = least_flag_side(surface);
  for (uint32_t level = 0; level < levels; ++level) {
    const uint32_t pitch_bytes = chain_flag_side(tiles.width, level, least);
    const uint32_t rows = chain_flag_side(tiles.height, level, least);
    PlaneLayout& out = record.level[level].plane[plane];
    out.flag_pitch = pitch_bytes;
    out.flag_size = chain.flag_bytes[level] = uint32_t{rows * pitch_bytes};
  }
}

// Whether every image takes whole tiles and no more: tiles of elements without blocks, not padded,
// on a chip of families 6 and 7.
constexpr bool takes_whole_tiles(const Surface& surface) {
  const AlignmentRequest& alignment = surface.alignment;
  return surface.chip.supported && surface.chip.family_id != 5 && is_tiled(alignment) &&
         !has_rule(alignment.format, kRuleBlockFamily67) && !surface.extended;
}

// The sizes that the rules come to, where none is refused; a plane looks its tile up once, which
// saves half of the instructions of a chain.
void size_in_whole_tiles(const Surface& surface, uint32_t levels, uint32_t plane, Chain& chain) {
  const Extent<Elements> tile = plane_tile_family67(surface.alignment, plane);
  SignedExtent<Texels> texels = first_level(surface.size);
  for (uint32_t level = 0; level < levels; ++level, texels = next_level(texels)) {
    const SignedExtent<Elements> elements = one_texel_elements(texels);
    chain.image[level] = whole_tiles(
        {static_cast<uint32_t>(elements.width), static_cast<uint32_t>(elements.height)}, tile);
  }
}

// Level by level, and each level's planes in turn: so come the messages of sizes that are refused,
// and the fault of a flag buffer whose tile is not known.
void size_by_rules(const Surface& surface, uint32_t levels, Chain* chains, MemoryLayout& record) {
  SignedExtent<Texels> texels = first_level(surface.size);
  for (uint32_t level = 0; level < levels; ++level, texels = next_level(texels)) {
    const SignedExtent<Elements> elements = level_elements(surface, texels);
    for (uint32_t plane = 0; plane < surface.planes; ++plane) {
      chains[plane].image[level] = fdm_extent(surface.chip, elements, surface.alignment, plane);
      if (level == 0) size_flag_buffers(surface, levels, plane, chains[plane], record);
    }
  }
}

// Puts the flag buffers of a plane one after another from 0 on. Of a surface that has a place for
// them alone, the sizes that its record holds count. Returns where they end.
uint64_t place_gathered_flags(const Surface& surface, uint32_t levels, uint32_t plane,
                              const Chain& chain, MemoryLayout& record) {
  uint64_t end_bytes = 0;
  for (uint32_t level = 0; level < levels; ++level) {
    PlaneLayout& out = record.level[level].plane[plane];
    out.flag_offset = end_bytes;
    end_bytes += surface.flag_buffers ? chain.flag_bytes[level]
                                      : KORVEL_STORED(stored_bytes(out), PlaneLayout, flag_size);
  }
  return end_bytes;
}

// Puts the images of a plane one after another, each behind a flag buffer of its own where it has
// one. Returns where they end.
uint64_t place_images(const Surface& surface, uint32_t levels, uint32_t plane, const Chain& chain,
                      FlagPlacement placement, uint64_t start_bytes, MemoryLayout& record) {
  uint64_t end_bytes = start_bytes;
  for (uint32_t level = 0; level < levels; ++level) {
    LevelLayout& level_out = record.level[level];
    PlaneLayout& out = level_out.plane[plane];
    const Extent<Elements>& image = chain.image[level];
    const uint32_t pitch_bytes = image_pitch_bytes(surface, image);
    const uint64_t image_bytes = mode_aligned_bytes(surface, pitch_bytes * image.height);

    uint64_t own_flag_bytes = 0;
    if (placement == FlagPlacement::own) {
      out.flag_offset = end_bytes;
      own_flag_bytes = chain.flag_bytes[level];
    }
    out.image_offset = end_bytes + own_flag_bytes;
    out.image_size = image_bytes;
    out.image_pitch = pitch_bytes;
    out.image_element_size = surface.element_bytes;
    out.image_width = image.width;
    out.image_height = image.height;
    out.flag_valid = surface.flag_buffers ? 1 : 0;
    end_bytes += own_flag_bytes + image_bytes;

    level_out.slices = static_cast<uint32_t>(surface.depth);
    level_out.tiled = surface.alignment.tiling_mode;
    level_out.planes = surface.planes;
    // Each plane's size takes the place of the one before: the last one stays.
    level_out.size = bytes_of_all_slices(surface, own_flag_bytes + image_bytes);
    mark_lrz_absent(level_out);
  }
  return end_bytes;
}

// A slice of a chain is the whole chain.
void set_slice_pitches(uint32_t levels, uint32_t plane, FlagPlacement placement,
                       uint64_t slice_bytes, uint64_t flag_slice_bytes, MemoryLayout& record) {
  for (uint32_t level = 0; level < levels; ++level) {
    PlaneLayout& out = record.level[level].plane[plane];
    out.image_slice_pitch = slice_bytes;
    if (placement == FlagPlacement::gathered) {
      out.flag_slice_pitch = flag_slice_bytes;
    } else if (placement == FlagPlacement::own) {
      out.flag_slice_pitch = slice_bytes;
    }
  }
}

// At most 15 levels and 3 planes.
void lay_out_mip_chains(const Surface& surface, RecordHead head, MemoryLayout& record) {
  const ChipProperties& properties = surface.chip.properties;
  const uint32_t levels = head.levels;
  const FlagPlacement placement = flag_placement(surface);
  const bool whole_tiles = takes_whole_tiles(surface);
  Chain chains[KORVEL_MAX_PLANES];
  if (!whole_tiles) {
    size_by_rules(surface, levels, chains, record);
  }

  uint64_t end_bytes = 0;  // of all slices of the planes so far
  for (uint32_t plane = 0; plane < surface.planes; ++plane) {
    Chain& chain = chains[plane];
    if (whole_tiles) {
      size_in_whole_tiles(surface, levels, plane, chain);
      if (levels != 0) size_flag_buffers(surface, levels, plane, chain, record);
    }
    const uint64_t gathered_flag_bytes =
        placement == FlagPlacement::gathered
            ? place_gathered_flags(surface, levels, plane, chain, record)
            : 0;
    const uint64_t flag_slice_bytes = whole_flag_slice_bytes(properties, gathered_flag_bytes);
    const uint64_t images_from = end_bytes + bytes_of_all_slices(surface, flag_slice_bytes);
    const uint64_t start_bytes = chain_start_bytes(properties, images_from);
    const uint64_t images_to =
        place_images(surface, levels, plane, chain, placement, start_bytes, record);
    const uint64_t slice_bytes = whole_chain_bytes(properties, images_to - start_bytes);
    set_slice_pitches(levels, plane, placement, slice_bytes, flag_slice_bytes, record);
    end_bytes = start_bytes + bytes_of_all_slices(surface, slice_bytes);
  }
  if (surface.planes == 0) {  // no chain has marked its levels
    for (uint32_t level = 0; level < levels; ++level) mark_lrz_absent(record.level[level]);
  }
  finish_record(surface, head, end_bytes, record);
}

}  // namespace
}  // namespace korvel

void korvel_init_multi_level_surface(MemoryLayout* record, uint32_t width, uint32_t height,
                                     int32_t depth, uint32_t format, uint32_t samples,
                                     uint32_t tiling_mode, uint64_t flags, uint32_t planes) {
  const korvel::ChipRow& chip = korvel::identified_chip();
  const korvel::RecordHead head = korvel::read_head(*record);
  if (!korvel::levels_fit(korvel::kName, head.levels) ||
      !korvel::planes_fit(korvel::kName, planes)) {
    return;
  }
  korvel::Surface surface =
      korvel::described_surface(chip, korvel::chain_base_size(width, height), depth, format,
                                samples, tiling_mode, flags, planes);
  korvel::make_chain_request(surface.alignment, surface.element_bytes);
  korvel::lay_out_mip_chains(surface, head, *record);
}
