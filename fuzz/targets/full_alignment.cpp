// compute_fmt_aligned_width_and_height
#include "fuzz/alignment_property.h"
#include "fuzz/fuzz_target.h"

namespace {

using fuzz::AlignedExtent;
using fuzz::AlignmentArguments;

struct FullAlignment {
  static AlignmentArguments used(AlignmentArguments drawn) {
    drawn.divisor = 1;
    drawn.want_extra_padding = 0;
    return drawn;
  }
  static void rules(reference::Process& process, const AlignmentArguments& a, AlignedExtent& out) {
    reference::compute_fmt_aligned_width_and_height(
        process, a.width, a.height, a.plane, a.format, a.samples, a.tiling_mode, a.selector,
        a.min_padded_row_bytes, &out.width, &out.height);
  }
  static void library(const harness::Library& library, const AlignmentArguments& a,
                      AlignedExtent& out) {
    library.compute_fmt_aligned_width_and_height(a.width, a.height, a.plane, a.format, a.samples,
                                                 a.tiling_mode, a.selector, a.min_padded_row_bytes,
                                                 &out.width, &out.height);
  }
};

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::InputBytes input(data, size);
  fuzz::check_alignment(input, fuzz::Alignment::full, FullAlignment());
  return 0;
}
