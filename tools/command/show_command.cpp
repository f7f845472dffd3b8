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
namespace {

// Standard output holds one thing.
void refuse_shared_output(const ShowOptions& options) {
  struct Output {
    bool is_asked;
    std::string_view what;
    std::string_view elsewhere;
  };
  const Output outputs[] = {
      {options.json, "--json", ""},
      {options.blob == kStandardOutput, "--blob -", "--blob surface.blob"},
      {options.svg == kStandardOutput, "--svg -", "--svg picture.svg"},
      {options.html == kStandardOutput, "--html -", "--html picture.html"},
  };
  const Output* first = nullptr;
  for (const Output& output : outputs) {
    if (!output.is_asked) continue;
    if (first != nullptr) {
      refuse("{} and {} both want standard output; write {}", first->what, output.what,
             output.elsewhere);
    }
    first = &output;
  }
}

}  // namespace

int show(const ShowOptions& options) {
  if (options.force && !options.blob && !options.svg && !options.html) {
    refuse(
        "--force counts only beside --blob, --svg or --html; write for example --blob surface.blob "
        "--force");
  }
  refuse_shared_output(options);
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
  if (!picture_alone && options.blob != kStandardOutput) {
    print_data(options.json ? json_text("show", layout_json(chip, request, blob), warnings)
                            : layout_text(chip, request, blob));
  }
  return options.strict && !warnings.empty() ? kExitRefused : kExitDone;
}

}  // namespace tool
