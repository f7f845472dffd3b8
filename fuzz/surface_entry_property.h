// The properties of both surface entries.
#pragma once

#include <cstring>

#include "fuzz/caller_record.h"
#include "fuzz/laid_out_surface.h"

namespace fuzz {

// An entry is a pair of calls: rules(process, record, arguments), library(library, record,
// arguments).
template <typename Entry>
void check_surface_entry(InputBytes& input, Slices slices, Entry entry) {
  Machine& machine = draw_machine(input);
  const SurfaceArguments arguments = draw_surface_arguments(input);
  const CaseAtHand at_hand(arguments);
  const CallerRecord before = draw_caller_record(input, machine, arguments);
  MemoryLayout expected = before.record;
  MemoryLayout actual = before.record;
  if (!both_answer(
          machine, [&] { entry.rules(machine.process, expected, arguments); },
          [&] { entry.library(machine.library, actual, arguments); })) {
    return;
  }
  REQUIRE(std::memcmp(&actual, &expected, sizeof actual) == 0);
  const bool fits =
      before.record.levels <= KORVEL_MAX_LEVELS && arguments.planes <= KORVEL_MAX_PLANES;
  if (!fits) {
    REQUIRE(std::memcmp(&actual, &before.record, sizeof actual) == 0);
    return;
  }
  // Words that the entry leaves alone count where a layout reads them.
  if (!before.zeroed) return;
  const LaidOutSurface surface = {actual, arguments, machine.process.chip, slices};
  require_apart_and_inside(surface);
  require_valid(machine, surface);
  forget_messages(machine);
}

}  // namespace fuzz
