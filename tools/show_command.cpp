#include "tools/show_command.h"

#include <span>

#include "tools/bad_input.h"
#include "tools/exit_codes.h"
#include "tools/format_names.h"
#include "tools/layout_json.h"
#include "tools/layout_text.h"
#include "tools/new_file.h"
#include "tools/number_text.h"
#include "tools/standard_output.h"
#include "tools/surface_layout.h"

namespace tool {
namespace {

void check_combinations(const ShowOptions& options) {
  if (options.extended && !options.extra) refuse("--extended counts only beside --extra");
  if (options.force && !options.blob) refuse("--force counts only beside --blob");
}

uint64_t flags_of(const ShowOptions& options) {
  return (options.ubwc ? LAYOUT_FLAG_UBWC : 0) | (options.extra ? LAYOUT_FLAG_EXTRA : 0) |
         (options.extended ? LAYOUT_FLAG_EXTENDED : 0);
}

SurfaceRequest request_of(const ShowOptions& options) {
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

}  // namespace

int show(const ShowOptions& options) {
  check_combinations(options);
  const SurfaceRequest request = request_of(options);
  const SimulatedChip chip = simulate_chip(options.chip);
  const LayoutMetadata blob = lay_out(chip, request);
  if (options.blob) {
    write_file(*options.blob, std::as_bytes(std::span(&blob, 1)), options.force);
  }
  print_data(options.json ? layout_json(chip, request, blob).dump(2) + "\n"
                          : layout_text(chip, request, blob));
  return kExitDone;
}

}  // namespace tool
