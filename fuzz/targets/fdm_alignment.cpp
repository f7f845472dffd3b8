// compute_fmt_aligned_width_and_height_fdm
#include "fuzz/alignment_property.h"
#include "fuzz/fuzz_target.h"

namespace {

using fuzz::AlignedExtent;
using fuzz::AlignmentArguments;

struct FdmAlignment {
  static AlignmentArguments used(AlignmentArguments drawn) { return drawn; }
  static void rules(reference::Process& process, const AlignmentArguments& a, AlignedExtent& out) {
    reference::compute_fmt_aligned_width_and_height_fdm(
        process, a.width, a.height, a.plane, a.format, a.samples, a.tiling_mode, a.selector,
        a.min_padded_row_bytes, a.divisor, a.want_extra_padding, &out.width, &out.height);
  }
  static void library(const harness::Library& library, const AlignmentArguments& a,
                      AlignedExtent& out) {
    library.compute_fmt_aligned_width_and_height_fdm(
        a.width, a.height, a.plane, a.format, a.samples, a.tiling_mode, a.selector,
        a.min_padded_row_bytes, a.divisor, a.want_extra_padding, &out.width, &out.height);
  }
};

// Without padding and with a divisor of 1 it is the full alignment.
void require_full_alignment(const fuzz::Machine& machine, const AlignmentArguments& a) {
  const fuzz::CaseAtHand at_hand(a);
  AlignedExtent fdm;
  AlignedExtent full;
  const auto align_fdm = [&] {
    machine.library.compute_fmt_aligned_width_and_height_fdm(
        a.width, a.height, a.plane, a.format, a.samples, a.tiling_mode, a.selector,
        a.min_padded_row_bytes, 1, 0, &fdm.width, &fdm.height);
  };
  const auto align_full = [&] {
    machine.library.compute_fmt_aligned_width_and_height(
        a.width, a.height, a.plane, a.format, a.samples, a.tiling_mode, a.selector,
        a.min_padded_row_bytes, &full.width, &full.height);
  };
  REQUIRE(fuzz::ends_in_division_fault(align_fdm) == fuzz::ends_in_division_fault(align_full));
  REQUIRE(fdm == full);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::InputBytes input(data, size);
  fuzz::check_alignment(input, fuzz::Alignment::full, FdmAlignment());

  fuzz::InputBytes again(data, size);
  fuzz::Machine& machine = fuzz::draw_machine(again);
  require_full_alignment(machine, fuzz::draw_alignment_arguments(again));
  fuzz::forget_messages(machine);
  return 0;
}
