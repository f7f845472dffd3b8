#include "tools/request/refused_request.h"

#include <fmt/core.h>

#include "formats/format_traits.h"
#include "layout/record_limits.h"
#include "tools/request/counted.h"
#include "tools/request/format_names.h"

namespace tool {

std::string refused_request(const SurfaceRequest& request) {
  const SurfaceSize& size = request.size;
  if (size.width <= 0 || size.height <= 0 || size.depth <= 0) {
    return fmt::format(
        "--size {}: width, height and depth are 1 or more, for example 1920x1080 or 64x64x6",
        surface_size_text(size));
  }
  if (request.format == korvel::kFormatUnknown || request.format >= korvel::kFormatCount) {
    return fmt::format("--format {}: {}", request.format, allowed_formats());
  }
  const korvel::FormatTraits& format = korvel::format_traits(request.format);
  if (korvel::has_rule(format, korvel::kRuleDepthStencil) &&
      request.tiling_mode != KORVEL_TILING_TILED) {
    return fmt::format(
        "--linear: {} is a depth or stencil format, and these are tiled only; leave --linear out",
        format_label(request.format));
  }
  if (!korvel::is_layout_sample_count(request.samples)) {
    return fmt::format("--samples {}: 1, 2, 4 or 8, for example --samples 4", request.samples);
  }
  if (request.planes > KORVEL_MAX_PLANES) {
    return fmt::format(
        "--planes {}: 0 to {}, for example --planes 1; without it the format's own, here {}",
        request.planes, KORVEL_MAX_PLANES, counted(own_planes(request.format), "plane"));
  }
  return {};
}

}  // namespace tool
