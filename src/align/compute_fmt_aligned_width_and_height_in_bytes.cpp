#include <korvel_utils.h>
#include "align/full_extent.h"
#include "align/minimal_extent.h"
#include "identify/gpu_identity.h"

namespace korvel {
namespace {

constexpr int32_t kNarrowestTiledWidth = 16;  // elements; blocks of block-compressed formats

bool too_narrow_to_tile(const ChipRow& chip, const FormatTraits& format, int32_t width) {
  const bool compressed = (format.rules & kRuleBlockCompressed) != 0;
  const int32_t block_width = compressed ? format.block_width : 1;
  return chip.supported && width < kNarrowestTiledWidth * block_width;
}

}  // namespace
}  // namespace korvel

void compute_fmt_aligned_width_and_height_in_bytes(const AlignInBytesParams* params,
                                                   const AlignInBytesResult* result) {
  const korvel::ChipRow& chip = korvel::identified_chip();
  const korvel::FormatTraits& format = korvel::format_traits(params->format);

  const bool too_narrow = korvel::too_narrow_to_tile(chip, format, params->width);
  if (too_narrow) *params->tiling_mode = KORVEL_TILING_LINEAR;
  const uint32_t tiling_mode = *params->tiling_mode;
  const uint32_t tiling_allowed = too_narrow ? 0 : 1;

  korvel::AlignmentRequest request = {
      .format_id = params->format,
      .format = format,
      .samples = params->samples,
      .tiling_mode = tiling_mode,
      .selector = params->selector,
      .min_padded_row_bytes = params->min_padded_row_bytes,
      .divisor = korvel::plane_bytes(format, params->plane),
      .extra = {0, 0},
  };
  const uint32_t bytes = korvel::is_tiled(request) ? format.substitute_bytes * params->samples
                                                   : format.substitute_bytes;

  const korvel::Extent minimal = korvel::minimal_extent(chip, params->width, params->height,
                                                        request, params->plane, tiling_allowed);
  *result->minimal_row_bytes = bytes * minimal.width;

  request.divisor = 1;
  const korvel::Extent full =
      korvel::full_extent(chip, params->width, params->height, request, params->plane);
  *result->aligned_row_bytes = bytes * full.width;
  *result->aligned_height = full.height;
}
