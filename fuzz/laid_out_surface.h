// The properties of a record that an initialiser wrote: its planes do not overlap and lie inside the
// surface, and it validates.
#pragma once

#include <cstdint>

#include <korvel_utils.h>
#include "fuzz/machine.h"
#include "fuzz/surface_arguments.h"

namespace fuzz {

// How an initialiser places slices.
enum class Slices {
  // Planes and levels of one slice stand behind each other, and a plane's slices step by its own
  // pitch alone: only the first slices are apart when there are several planes or levels.
  of_one_plane,
  // A slice is a whole mip chain of its plane, and each plane's slices stand together.
  of_whole_chains,
};

struct LaidOutSurface {
  const MemoryLayout& record;
  const SurfaceArguments& arguments;
  const reference::ChipFacts& chip;
  Slices slices;
};

// Require the property of layouts that are to have it; laid_out_surface.cpp says which those are.
void require_apart_and_inside(const LaidOutSurface& surface);
void require_valid(Machine& machine, const LaidOutSurface& surface);

}  // namespace fuzz
