// What a record that an initialiser wrote owes: planes that do not overlap and lie inside the
// surface, and a record that validates.
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

// Requires what is owed, as far as the layout is one that owes it.
void require_apart_and_inside(const LaidOutSurface& surface);
void require_valid(Machine& machine, const LaidOutSurface& surface);

}  // namespace fuzz
