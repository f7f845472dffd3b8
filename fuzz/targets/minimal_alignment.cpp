// compute_fmt_minimal_aligned_width_and_height
#include "fuzz/alignment_property.h"
#include "fuzz/fuzz_target.h"

namespace {

using fuzz::AlignedExtent;
using fuzz::AlignmentArguments;

struct MinimalAlignment {
  static AlignmentArguments used(AlignmentArguments drawn) { return drawn; }
  static void rules(reference::Process& process, const AlignmentArguments& a, AlignedExtent& out) {
    reference::compute_fmt_minimal_aligned_width_and_height(
        process, a.width, a.height, a.plane, a.format, a.samples, a.tiling_mode, a.tiling_allowed,
        a.selector, a.min_padded_row_bytes, a.divisor, a.want_extra_padding, &out.width,
        &out.height);
  }
  static void library(const harness::Library& library, const AlignmentArguments& a,
                      AlignedExtent& out) {
    library.compute_fmt_minimal_aligned_width_and_height(
        a.width, a.height, a.plane, a.format, a.samples, a.tiling_mode, a.tiling_allowed,
        a.selector, a.min_padded_row_bytes, a.divisor, a.want_extra_padding, &out.width,
        &out.height);
  }
};

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::InputBytes input(data, size);
  fuzz::check_alignment(input, fuzz::Alignment::minimal, MinimalAlignment());
  return 0;
}
