// compute_aligned_width_and_height, compute_surface_padding, get_gpu_pixel_alignment and
// get_slice_pitch_alignment
#include "fuzz/alignment_property.h"
#include "fuzz/fuzz_target.h"
#include "tests/reference/rules.h"

namespace {

using fuzz::AlignedExtent;
using fuzz::AlignmentArguments;
using fuzz::Machine;

constexpr AlignedExtent kPreset;

void check_size(Machine& machine, const AlignmentArguments& a) {
  AlignedExtent expected;
  AlignedExtent actual;
  REQUIRE(fuzz::both_answer(
      machine,
      [&] {
        reference::compute_aligned_width_and_height(machine.process, a.width, a.height, a.plane,
                                                    a.format, a.samples, a.selector,
                                                    &expected.width, &expected.height);
      },
      [&] {
        machine.library.compute_aligned_width_and_height(a.width, a.height, a.plane, a.format,
                                                         a.samples, a.selector, &actual.width,
                                                         &actual.height);
      }));
  REQUIRE(actual == expected);
  if (a.width < 0 || a.height < 0) {
    REQUIRE((actual == AlignedExtent{1, 1}));
  } else if (reference::is_supported_chip(machine.process)) {
    REQUIRE(actual == kPreset);
  } else {
    REQUIRE(
        (actual == AlignedExtent{static_cast<uint32_t>(a.width), static_cast<uint32_t>(a.height)}));
  }
}

void check_padding(Machine& machine, const AlignmentArguments& a) {
  const auto mode = static_cast<int32_t>(a.tiling_mode);
  uint32_t expected = 0;
  uint32_t actual = 0;
  REQUIRE(fuzz::both_answer(
      machine,
      [&] {
        expected = reference::compute_surface_padding(machine.process, a.width, a.plane, mode,
                                                      a.format, a.samples);
      },
      [&] {
        actual =
            machine.library.compute_surface_padding(a.width, a.plane, mode, a.format, a.samples);
      }));
  REQUIRE(actual == expected);
}

void check_chip_alignments(Machine& machine, uint32_t tiling_mode) {
  uint32_t expected = 0;
  uint32_t actual = 0;
  if (fuzz::both_answer(
          machine,
          [&] { expected = reference::get_slice_pitch_alignment(machine.process, tiling_mode); },
          [&] { actual = machine.library.get_slice_pitch_alignment(tiling_mode); })) {
    REQUIRE(actual == expected);
  }
  REQUIRE(fuzz::both_answer(
      machine, [&] { expected = reference::get_gpu_pixel_alignment(machine.process); },
      [&] { actual = machine.library.get_gpu_pixel_alignment(); }));
  REQUIRE(actual == expected);
  REQUIRE(actual == 64 || actual == 1);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::InputBytes input(data, size);
  Machine& machine = fuzz::draw_machine(input);
  const AlignmentArguments arguments = fuzz::draw_alignment_arguments(input);
  const fuzz::CaseAtHand at_hand(arguments);
  check_size(machine, arguments);
  check_padding(machine, arguments);
  check_chip_alignments(machine, arguments.tiling_mode);
  return 0;
}
