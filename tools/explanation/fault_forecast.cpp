#include "tools/explanation/fault_forecast.h"

#include <fmt/core.h>

#include "formats/format_traits.h"
#include "formats/sample_tile_dims.h"
#include "formats/ubwc_formats.h"
#include "tools/request/counted.h"
#include "tools/request/format_names.h"

namespace tool {
namespace {

bool divides_by_element_size(const korvel::ChipRow& chip, const SurfaceRequest& request,
                             const korvel::FormatTraits& format, uint32_t plane) {
  return chip.supported && chip.family_id == 5 && request.tiling_mode == KORVEL_TILING_TILED &&
         korvel::plane_bytes(format, plane) == 0;
}

bool divides_by_sample_tile(const korvel::ChipRow& chip, const SurfaceRequest& request,
                            const korvel::FormatTraits& format, uint32_t plane) {
  if ((request.flags & LAYOUT_FLAG_UBWC) == 0 || !korvel::ubwc_supported(chip, request.format)) {
    return false;
  }
  const korvel::Extent<korvel::Elements> tile =
      korvel::sample_tile_dims(chip.family_id, format, plane != 0, request.samples);
  return tile.width == 0 || tile.height == 0;
}

}  // namespace

std::string forecast_fault(const korvel::ChipRow& chip, const SurfaceRequest& request) {
  const korvel::FormatTraits& format = korvel::format_traits(request.format);
  for (uint32_t plane = 0; plane < request.planes; ++plane) {
    if (divides_by_element_size(chip, request, format, plane)) {
      return fmt::format(
          "{} has no plane {}: its elements would have 0 bytes, and tiled widths of family 5 are "
          "divided by them",
          format_label(request.format), plane);
    }
    if (divides_by_sample_tile(chip, request, format, plane)) {
      return fmt::format(
          "{} has no sample tile for {} on family {}: the flag buffer of plane {} would be a "
          "division by 0",
          format_label(request.format), counted(request.samples, "sample"), chip.family_id, plane);
    }
  }
  return {};
}

}  // namespace tool
