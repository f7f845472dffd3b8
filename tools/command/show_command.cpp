#include "tools/command/show_command.h"

#include <span>

#include "tools/command/exit_codes.h"
#include "tools/library/layout_warnings.h"
#include "tools/library/simulated_chip.h"
#include "tools/library/surface_layout.h"
#include "tools/output/layout_json.h"
#include "tools/output/layout_text.h"
#include "tools/output/new_file.h"
#include "tools/output/standard_error.h"
#include "tools/output/standard_output.h"
#include "tools/request/bad_input.h"

namespace tool {

int show(const ShowOptions& options) {
  if (options.force && !options.blob) refuse("--force counts only beside --blob");
  const SurfaceRequest request = request_of(options.request);
  const Chip chip = simulate_chip(options.request.chip, options.request.unknown_chip);
  const LaidOutSurface laid_out = lay_out(chip, request);
  const LayoutMetadata& blob = laid_out.blob;
  const std::vector<std::string> warnings = layout_warnings(chip, request, laid_out);
  if (options.blob) {
    write_file(*options.blob, std::as_bytes(std::span(&blob, 1)), options.force);
  }
  print_warnings(warnings);
  if (options.blob == kStandardOutput) {
    // Standard output has the blob.
  } else if (options.json) {
    nlohmann::ordered_json json = layout_json(chip, request, blob);
    json["warnings"] = warnings;
    print_data(json.dump(2) + "\n");
  } else {
    print_data(layout_text(chip, request, blob));
  }
  return options.strict && !warnings.empty() ? kExitRefused : kExitDone;
}

}  // namespace tool
