#include "fuzz/alignment_arguments.h"

#include <algorithm>
#include <cstdio>

#include "fuzz/drawn_arguments.h"

namespace fuzz {
namespace {

int32_t larger(int32_t size, uint32_t step) {
  return static_cast<int32_t>(std::min<int64_t>(int64_t{size} + step, INT32_MAX));
}

}  // namespace

AlignmentArguments draw_alignment_arguments(InputBytes& input) {
  AlignmentArguments arguments;
  arguments.format = draw_format(input);
  arguments.width = draw_size(input);
  arguments.height = draw_size(input);
  arguments.tiling_mode = draw_tiling_mode(input);
  arguments.plane = draw_plane(input);
  arguments.samples = draw_samples(input);
  arguments.min_padded_row_bytes = draw_threshold(input);
  arguments.selector = draw_selector(input);
  arguments.divisor = draw_divisor(input);
  arguments.tiling_allowed = draw_tiling_mode(input);
  arguments.want_extra_padding = draw_tiling_mode(input);
  return arguments;
}

void print_case(const AlignmentArguments& a) {
  std::fprintf(stderr,
               "width %d, height %d, plane %u, format %u, samples %u, tiling mode %u, tiling "
               "allowed %u, selector %u, threshold %d, divisor %u, extra padding %u\n",
               a.width, a.height, a.plane, a.format, a.samples, a.tiling_mode, a.tiling_allowed,
               a.selector, a.min_padded_row_bytes, a.divisor, a.want_extra_padding);
}

AlignmentArguments draw_larger(const AlignmentArguments& arguments, InputBytes& input) {
  AlignmentArguments wider = arguments;
  wider.width = larger(arguments.width, input.u16());
  wider.height = larger(arguments.height, input.u16());
  return wider;
}

}  // namespace fuzz
