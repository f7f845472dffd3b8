#include "tools/command/request_options.h"

#include "tools/request/bad_input.h"
#include "tools/request/format_names.h"
#include "tools/request/number_text.h"

namespace tool {
namespace {

uint64_t flags_of(const RequestOptions& options) {
  return (options.ubwc ? LAYOUT_FLAG_UBWC : 0) | (options.extra ? LAYOUT_FLAG_EXTRA : 0) |
         (options.extended ? LAYOUT_FLAG_EXTENDED : 0);
}

}  // namespace

SurfaceRequest request_of(const RequestOptions& options) {
  if (options.extended && !options.extra) refuse("--extended counts only beside --extra");
  SurfaceRequest request;
  request.format = parse_format(options.format);
  request.size = parse_surface_size(options.size);
  if (options.samples) request.samples = number_option("--samples", *options.samples);
  request.tiling_mode = options.linear ? KORVEL_TILING_LINEAR : KORVEL_TILING_TILED;
  request.flags = flags_of(options);
  request.planes =
      options.planes ? number_option("--planes", *options.planes) : own_planes(request.format);
  if (options.levels) {
    request.levels = number_option("--levels", *options.levels, {1, KORVEL_MAX_LEVELS});
  }
  return request;
}

}  // namespace tool
