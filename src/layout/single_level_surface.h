// The layout of a single-level surface, behind the two entries that make one.
#pragma once

#include <cstdint>

#include <korvel_utils.h>
#include "layout/image_plane.h"
#include "layout/level_extent.h"
#include "layout/surface.h"
#include "layout/surface_total.h"

namespace korvel {

// Linear rows of more bytes than the chip's threshold are padded.
constexpr Surface describe_single_level_surface(const ChipRow& chip, const SurfaceRequest& request,
                                                const FormatTraits& format) {
  return describe_surface(chip, request, format, chip.properties.aux_alignment, 1);
}

// Lays out `levels` levels.
[[gnu::always_inline]] inline void lay_out_levels(const Surface& surface, LevelExtent size,
                                                  uint32_t levels, MemoryLayout& record) {
  uint64_t end = 0;  // bytes of one slice of all planes so far
  LevelExtent texels = first_level(size);
  for (uint32_t l = 0; l < levels; ++l, texels = next_level(texels)) {
    LevelLayout& level = record.level[l];
    const LevelExtent elements = level_elements(surface, texels);
    const uint64_t start = end;
    for (uint32_t p = 0; p < surface.planes; ++p) {
      end += lay_out_plane(surface, elements, p, end, level.plane[p]);
    }
    level.slices = static_cast<uint32_t>(surface.depth);
    level.tiled = surface.alignment.tiling_mode;
    level.planes = surface.planes;
    level.size = times_depth(surface, end - start);
    level.lrz_valid = 0;
    level.lrz_fc_valid = 0;
  }
  finish_surface(surface, times_depth(surface, end), record);
}

// Levels of any number of planes, at most 3.
[[gnu::noinline]] inline void lay_out_several_planes(const ChipRow& chip,
                                                     const SurfaceRequest& request,
                                                     LevelExtent size, uint32_t levels,
                                                     MemoryLayout& record) {
  const FormatTraits& format = format_traits(request.format_id);
  lay_out_levels(describe_single_level_surface(chip, request, format), size, levels, record);
}

// At most 15 levels and 3 planes. The caller's copy is for a single plane, without a loop.
[[gnu::always_inline]] inline void lay_out_single_level_surface(const ChipRow& chip,
                                                                const SurfaceRequest& request,
                                                                const FormatTraits& format,
                                                                LevelExtent size, uint32_t levels,
                                                                MemoryLayout& record) {
  if (request.planes != 1) {
    return lay_out_several_planes(chip, stored_copy(request), size, levels, record);
  }
  Surface surface = describe_single_level_surface(chip, request, format);
  surface.planes = 1;
  lay_out_levels(surface, size, levels, record);
}

}  // namespace korvel
