#include "tools/command/request_options.h"

#include "tools/request/bad_input.h"
#include "tools/request/format_names.h"
#include "tools/request/number_text.h"

namespace tool {
namespace {

// Counts that no surface has are the library's to refuse.
constexpr AllowedNumbers kSamples = {"1, 2, 4 or 8", "4"};
constexpr AllowedNumbers kPlanes = {"a number from 0 to 3", "2"};
constexpr AllowedNumbers kLevels = {"a number from 1 to 15", "12", {1, KORVEL_MAX_LEVELS}};
static_assert(KORVEL_MAX_PLANES == 3 && KORVEL_MAX_LEVELS == 15, "as the words say");

uint64_t flags_of(const RequestOptions& options) {
  return (options.ubwc ? LAYOUT_FLAG_UBWC : 0) | (options.extra ? LAYOUT_FLAG_EXTRA : 0) |
         (options.extended ? LAYOUT_FLAG_EXTENDED : 0);
}

}  // namespace

void refuse_extended_alone(bool extended, bool extra) {
  if (extended && !extra) {
    refuse("--extended counts only beside --extra; write --extra --extended");
  }
}

SurfaceRequest request_of(const RequestOptions& options) {
  refuse_extended_alone(options.extended, options.extra);
  SurfaceRequest request;
  request.format = parse_format(options.format);
  request.size = parse_surface_size(options.size);
  if (options.samples) request.samples = number_option("--samples", *options.samples, kSamples);
  request.tiling_mode = options.linear ? KORVEL_TILING_LINEAR : KORVEL_TILING_TILED;
  request.flags = flags_of(options);
  request.planes = options.planes ? number_option("--planes", *options.planes, kPlanes)
                                  : own_planes(request.format);
  if (options.levels) {
    request.levels = number_option("--levels", *options.levels, kLevels);
  }
  return request;
}

}  // namespace tool
