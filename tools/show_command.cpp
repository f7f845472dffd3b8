#include "tools/show_command.h"

#include <span>

#include "tools/bad_input.h"
#include "tools/exit_codes.h"
#include "tools/layout_json.h"
#include "tools/layout_text.h"
#include "tools/layout_warnings.h"
#include "tools/new_file.h"
#include "tools/show_pictures.h"
#include "tools/standard_error.h"
#include "tools/standard_output.h"
#include "tools/surface_layout.h"

namespace tool {
namespace {

std::string json_text(const SimulatedChip& chip, const SurfaceRequest& request,
                      const LayoutMetadata& blob, const std::vector<std::string>& warnings) {
  nlohmann::ordered_json json = layout_json(chip, request, blob);
  json["warnings"] = warnings;
  return json.dump(2) + "\n";
}

}  // namespace

int show(const ShowOptions& options) {
  if (options.force && !options.blob && !options.svg && !options.html) {
    refuse("--force counts only beside --blob, --svg or --html");
  }
  const bool picture_alone = prints_picture(options);
  const SurfaceRequest request = request_of(options.request);
  const SimulatedChip chip = simulate_chip(options.request.chip);
  const LaidOutSurface laid_out = lay_out(chip, request);
  const LayoutMetadata& blob = laid_out.blob;
  const std::vector<std::string> warnings = layout_warnings(chip, request, laid_out);
  if (options.blob) {
    write_file("--blob", *options.blob, std::as_bytes(std::span(&blob, 1)), options.force);
  }
  write_pictures(options, chip, request, blob, warnings);
  print_warnings(warnings);
  if (!picture_alone) {
    print_data(options.json ? json_text(chip, request, blob, warnings)
                            : layout_text(chip, request, blob));
  }
  return options.strict && !warnings.empty() ? kExitRefused : kExitDone;
}

}  // namespace tool
