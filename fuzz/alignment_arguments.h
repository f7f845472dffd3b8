// What the alignment entries are asked; each takes some of it.
#pragma once

#include <cstdint>

#include "fuzz/input_bytes.h"

namespace fuzz {

struct AlignmentArguments {
  int32_t width = 0;
  int32_t height = 0;
  uint32_t plane = 0;
  uint32_t format = 0;
  uint32_t samples = 0;
  uint32_t tiling_mode = 0;
  uint32_t tiling_allowed = 0;
  uint32_t selector = 0;
  int32_t min_padded_row_bytes = 0;
  uint32_t divisor = 0;
  uint32_t want_extra_padding = 0;
};

AlignmentArguments draw_alignment_arguments(InputBytes& input);

void print_case(const AlignmentArguments& arguments);

// The same surface, by drawn steps wider and higher.
AlignmentArguments draw_larger(const AlignmentArguments& arguments, InputBytes& input);

}  // namespace fuzz
