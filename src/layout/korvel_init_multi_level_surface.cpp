// The layout of a surface with mip levels: each plane's levels form one chain, and an array slice
// is a whole chain.
//
// First every level of a plane is sized, then its flag buffers and its images are put one after
// another. What is written into the record is never read back from it.

#include <korvel_utils.h>

#include <algorithm>
#include <bit>
#include <limits>

#include "align/entries.h"
#include "formats/extent.h"
#include "identify/gpu_identity.h"
#include "layout/record_limits.h"
#include "layout/surface.h"
#include "platform/rounding.h"

namespace korvel {
namespace {

constexpr const char* kName = "korvel_init_multi_level_surface";

// Widths of a chain start from whole steps of this many texels, on every chip.
constexpr uint32_t kChainWidthStep_texels = 64;

// The levels of one plane.
struct Chain {
  Extent<Elements> image[KORVEL_MAX_LEVELS];
  uint64_t flag_bytes[KORVEL_MAX_LEVELS];  // of each flag buffer, where there are some
};

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

// Read without its sign; a size above 2^31 wraps to 0.
constexpr uint32_t next_power_of_two(int32_t size) {
  constexpr uint32_t kLargest = 1U << 31;
  const auto count = static_cast<uint32_t>(size);
  return count > kLargest ? 0 : std::bit_ceil(count);
}

// Sizes the flag buffers of all levels of a plane, if it has any. `levels` is not 0.
void size_flag_buffers(const Surface& surface, uint32_t levels, uint32_t plane, Chain& chain,
                       MemoryLayout& record) {
  if (!surface.flag_buffers) return;
  const Extent<Elements> covered = {next_power_of_two(surface.size.width),
                                    next_power_of_two(surface.size.height)};
  const Extent<Tiles> tiles = tiles_that_cover(covered, flag_tile(surface, plane));
  const uint32_t least = std::max<uint32_t>(1, surface.chip.properties.min_level_extent);
  for (uint32_t level = 0; level < levels; ++level) {
    const uint32_t pitch_bytes = std::max(tiles.width >> level, least);
    const uint32_t rows = std::max(tiles.height >> level, least);
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
    const uint32_t pitch_bytes = surface.element_bytes * image.width;
    const uint64_t image_bytes =
        round_up_pot(pitch_bytes * image.height, surface.image_alignment_bytes);

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
    const uint64_t flag_slice_bytes =
        round_up_pot<uint64_t>(gathered_flag_bytes, properties.level_size_alignment);
    const uint64_t images_from = end_bytes + bytes_of_all_slices(surface, flag_slice_bytes);
    const uint64_t start_bytes =
        round_up_pot<uint64_t>(images_from, properties.level_offset_alignment);
    const uint64_t images_to =
        place_images(surface, levels, plane, chain, placement, start_bytes, record);
    const uint64_t slice_bytes =
        round_up_pot<uint64_t>(images_to - start_bytes, properties.base_alignment);
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
  const korvel::SignedExtent<korvel::Texels> base = {
      static_cast<int32_t>(korvel::round_up_pot(width, korvel::kChainWidthStep_texels)),
      static_cast<int32_t>(height)};
  korvel::Surface surface =
      korvel::described_surface(chip, base, depth, format, samples, tiling_mode, flags, planes);
  // No row of a chain is pitch-padded, and its linear steps are turned into elements.
  surface.alignment.min_padded_row_bytes = std::numeric_limits<int32_t>::max();
  surface.alignment.step_divisor = surface.element_bytes;
  korvel::lay_out_mip_chains(surface, head, *record);
}
