#include <korvel_utils.h>

#include "align/entries.h"

namespace korvel {
namespace {

constexpr int32_t kNarrowestTiledWidth = 16;  // elements

// The width is in elements all the same, but that of a block-compressed format is held against the
// texels of so many blocks.
bool is_too_narrow_to_tile(const ChipRow& chip, const FormatTraits& format, int32_t width) {
  const int32_t block_width = has_rule(format, kRuleBlockCompressed) ? format.block.width : 1;
  return chip.supported && width < kNarrowestTiledWidth * block_width;
}

}  // namespace
}  // namespace korvel

void compute_fmt_aligned_width_and_height_in_bytes(const AlignInBytesParams* params,
                                                   const AlignInBytesResult* result) {
  const korvel::ChipRow& chip = korvel::identified_chip();
  const korvel::FormatTraits& format = korvel::format_traits(params->format);
  const korvel::SignedExtent<korvel::Elements> size = {params->width, params->height};

  const bool too_narrow = korvel::is_too_narrow_to_tile(chip, format, size.width);
  if (too_narrow) *params->tiling_mode = KORVEL_TILING_LINEAR;
  korvel::AlignmentRequest request = korvel::alignment_request(
      params->format, params->samples, *params->tiling_mode, params->min_padded_row_bytes);
  const uint32_t row_element_bytes =
      is_tiled(request) ? format.substitute_bytes * params->samples : format.substitute_bytes;

  request.tiling_allowed = too_narrow ? 0 : 1;
  request.step_divisor = korvel::plane_bytes(format, params->plane);
  const auto minimal = korvel::minimal_extent(chip, size, request, params->plane);
  *result->minimal_row_bytes = row_element_bytes * minimal.width;

  request.tiling_allowed = 0;
  request.step_divisor = 1;
  const auto full = korvel::full_extent("compute_fmt_aligned_width_and_height", chip, size, request,
                                        params->plane);
  *result->aligned_row_bytes = row_element_bytes * full.width;
  *result->aligned_height = full.height;
}
