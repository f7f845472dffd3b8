#include "tools/output/fit_output.h"

#include <fmt/core.h>

#include <algorithm>

#include "tools/output/explanation_text.h"
#include "tools/output/layout_json.h"
#include "tools/output/step_text.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;
using Numbers = std::vector<FittedNumber>;

std::string verdict_of(const FittedNumber& number) {
  if (!number.given) return "not given: " + quantity_text(number.nearest);
  const Quantity given = {static_cast<int64_t>(*number.given), number.nearest.unit};
  if (number.fits) return "fits: " + quantity_text(given);
  return fmt::format("does not fit: {}; the nearest is {}", quantity_text(given),
                     quantity_text(number.nearest));
}

std::string plane_text(std::size_t p, const Numbers& numbers) {
  std::string text = fmt::format("\nPlane {}\n", p);
  for (const FittedNumber& number : numbers) {
    text += fmt::format("  {:<12} {}\n", number.name, verdict_of(number));
    if (!number.fits) text += wrapped_lines(number.why, 15);
  }
  return text;
}

// As the option --plane takes it.
std::string nearest_text(const Numbers& numbers) {
  std::string text = "--plane ";
  for (const FittedNumber& number : numbers) {
    text += fmt::format("{}{}={}", text.ends_with(' ') ? "" : ",", number.name,
                        static_cast<uint64_t>(number.nearest.value));
  }
  return text;
}

std::size_t count_of_misfits(const LayoutFit& fit) {
  std::size_t count = 0;
  for (const Numbers& numbers : fit.planes) {
    count += static_cast<std::size_t>(std::count_if(
        numbers.begin(), numbers.end(), [](const FittedNumber& number) { return !number.fits; }));
  }
  return count;
}

}  // namespace

std::string fit_text(const Chip& chip, const SurfaceRequest& request, const LayoutFit& fit) {
  std::string text = fmt::format("{:<16} {}\n", "Surface", request_label(request));
  text += fmt::format("{:<16} {}\n", "Chip", chip_label(chip));
  for (std::size_t p = 0; p < fit.planes.size(); ++p) text += plane_text(p, fit.planes[p]);
  if (fit.fits()) return text + "\nThe layout fits.\n";
  text += fmt::format("\nThe layout does not fit in {}. The nearest that does takes {} bytes:\n",
                      counted(count_of_misfits(fit), "number"), fit.allocation_bytes);
  for (const Numbers& numbers : fit.planes) text += fmt::format("  {}\n", nearest_text(numbers));
  return text;
}

Json fit_json(const Chip& chip, const SurfaceRequest& request, const LayoutFit& fit) {
  Json planes = Json::array();
  for (const Numbers& numbers : fit.planes) {
    Json plane;
    for (const NumberName& name : foreign_plane_names()) plane[name.name] = nullptr;
    for (const FittedNumber& number : numbers) {
      plane[number.name] = {{"given", number.given ? Json(*number.given) : Json()},
                            {"nearest", static_cast<uint64_t>(number.nearest.value)},
                            {"unit", number.nearest.unit == Unit::rows ? "rows" : "bytes"},
                            {"fits", number.fits},
                            {"rule", number.why}};
    }
    planes.push_back(std::move(plane));
  }
  return {{"chip", chip_json(chip)},
          {"request", request_json(request)},
          {"fits", fit.fits()},
          {"plane", std::move(planes)},
          {"gpu_buffer_size", fit.allocation_bytes}};
}

}  // namespace tool
