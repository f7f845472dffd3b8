#include "tools/command/fit_command.h"

#include "tools/command/exit_codes.h"
#include "tools/comparison/layout_fit.h"
#include "tools/explanation/explain_surface.h"
#include "tools/explanation/fault_forecast.h"
#include "tools/explanation/request_warnings.h"
#include "tools/output/fit_output.h"
#include "tools/output/json_output.h"
#include "tools/output/standard_error.h"
#include "tools/output/standard_output.h"
#include "tools/record/foreign_layout.h"
#include "tools/request/bad_input.h"
#include "tools/request/counted.h"
#include "tools/request/format_names.h"
#include "tools/request/refused_request.h"

namespace tool {
namespace {

std::vector<ForeignPlane> planes_of(const FitOptions& options) {
  if (options.layout && !options.planes.empty())
    refuse("--plane and --layout exclude each other; leave one of them out");
  if (options.layout) return read_foreign_planes(*options.layout);
  if (options.planes.empty()) {
    refuse(
        "fit: a layout to look at is missing; write for example --plane "
        "pitch=7680,height=1080,offset=0,size=8294400, once for each plane");
  }
  std::vector<ForeignPlane> planes;
  for (const std::string& text : options.planes) planes.push_back(parse_foreign_plane(text));
  return planes;
}

void check(const Chip& chip, const SurfaceRequest& request, std::size_t given_planes) {
  if (request.levels) refuse("--levels: fit looks at surfaces of one level; leave --levels out");
  if ((request.flags & LAYOUT_FLAG_EXTRA) != 0)
    refuse("--extra: fit looks at planes alone; leave --extra out");
  std::string refusal = refused_request(request);
  if (refusal.empty()) refusal = forecast_fault(chip.row, request);
  if (!refusal.empty()) throw BadInput(refusal);
  if (given_planes != request.planes) {
    refuse("{} of a layout for {} of {}; describe each, for example with --plane pitch=7680",
           counted(given_planes, "plane"), request.planes, format_label(request.format));
  }
}

}  // namespace

int fit(const FitOptions& options) {
  const SurfaceRequest request = request_of(options.request);
  const Chip chip = options.request.chip
                        ? parse_chip(*options.request.chip, options.request.unknown_chip)
                        : default_chip();
  const std::vector<ForeignPlane> planes = planes_of(options);
  check(chip, request, planes.size());
  const LayoutFit found = fit_layout(chip, request, planes);
  const std::vector<std::string> warnings =
      request_warnings(chip, request, explain_surface(chip.row, request));
  print_warnings(warnings);
  if (options.json) {
    print_data(json_text("fit", fit_json(chip, request, found), warnings));
  } else {
    print_data(fit_text(chip, request, found));
  }
  return found.fits() ? kExitDone : kExitRefused;
}

}  // namespace tool
