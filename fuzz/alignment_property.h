// The properties of every alignment entry that takes a format: it answers as the rules do, and its
// sizes are at least those asked for and grow with them.
#pragma once

#include "fuzz/alignment_arguments.h"
#include "fuzz/broken_property.h"
#include "fuzz/drawn_arguments.h"
#include "fuzz/extent_claims.h"
#include "fuzz/machine.h"

namespace fuzz {

struct AlignedExtent {
  uint32_t width = 0xCCCCCCCC;  // what no rule computes
  uint32_t height = 0xCCCCCCCC;
  bool operator==(const AlignedExtent&) const = default;
};

// An entry is a pair of calls: rules(process, arguments, extent), library(library, arguments,
// extent). False when the arguments end in a fault, on both sides alike.
template <typename Entry>
bool align(Machine& machine, const AlignmentArguments& arguments, Entry entry,
           AlignedExtent& aligned) {
  const CaseAtHand at_hand(arguments);
  AlignedExtent expected;
  const bool answers = both_answer(
      machine, [&] { entry.rules(machine.process, arguments, expected); },
      [&] { entry.library(machine.library, arguments, aligned); });
  if (answers) REQUIRE(aligned == expected);
  return answers;
}

template <typename Entry>
void check_alignment(InputBytes& input, Alignment alignment, Entry entry) {
  Machine& machine = draw_machine(input);
  const AlignmentArguments arguments = entry.used(draw_alignment_arguments(input));
  AlignedExtent aligned;
  if (!align(machine, arguments, entry, aligned)) return;
  const CaseAtHand at_hand(arguments);
  if (arguments.width < 0 || arguments.height < 0) {
    REQUIRE((aligned == AlignedExtent{1, 1}));
    return;
  }
  require_at_least(width_claims(machine.process, arguments, alignment), arguments.width,
                   aligned.width);
  require_at_least(height_claims(machine.process, arguments), arguments.height, aligned.height);

  const AlignmentArguments larger = draw_larger(arguments, input);
  AlignedExtent larger_aligned;
  if (!align(machine, larger, entry, larger_aligned)) return;
  const CaseAtHand larger_at_hand(larger);
  require_monotone(width_claims(machine.process, larger, alignment), aligned.width,
                   larger_aligned.width);
  require_monotone(height_claims(machine.process, larger), aligned.height, larger_aligned.height);
}

}  // namespace fuzz
