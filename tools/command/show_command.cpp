#include "tools/command/show_command.h"

#include <span>

#include "tools/command/exit_codes.h"
#include "tools/command/show_pictures.h"
#include "tools/library/layout_warnings.h"
#include "tools/library/simulated_chip.h"
#include "tools/library/surface_layout.h"
#include "tools/output/json_output.h"
#include "tools/output/layout_json.h"
#include "tools/output/layout_text.h"
#include "tools/output/new_file.h"
#include "tools/output/standard_error.h"
#include "tools/output/standard_output.h"
#include "tools/request/bad_input.h"

namespace tool {

int show(const ShowOptions& options) {
  if (options.force && !options.blob && !options.svg && !options.html) {
    refuse("--force counts only beside --blob, --svg or --html");
  }
  const bool picture_alone = prints_picture(options);
  const SurfaceRequest request = request_of(options.request);
  const Chip chip = simulate_chip(options.request.chip, options.request.unknown_chip);
  const LaidOutSurface laid_out = lay_out(chip, request);
  const LayoutMetadata& blob = laid_out.blob;
  const std::vector<std::string> warnings = layout_warnings(chip, request, laid_out);
  if (options.blob) {
    write_file("--blob", *options.blob, std::as_bytes(std::span(&blob, 1)), options.force);
  }
  write_pictures(options, chip, request, blob, warnings);
  print_warnings(warnings);
  // Standard output holds one thing.
  if (!picture_alone && options.blob != kStandardOutput) {
    print_data(options.json ? json_text("show", layout_json(chip, request, blob), warnings)
                            : layout_text(chip, request, blob));
  }
  return options.strict && !warnings.empty() ? kExitRefused : kExitDone;
}

}  // namespace tool
