// korvel-layout fit --layout FILE
#include <fmt/core.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "fuzz/fuzz_target.h"
#include "fuzz/met_cases.h"
#include "fuzz/tool_run.h"
#include "tools/command/fit_command.h"
#include "tools/record/foreign_layout.h"

namespace {

tool::FitOptions draw_request(fuzz::InputBytes& input) {
  constexpr const char* kFormats[] = {"28", "nv12", "71", "501"};
  constexpr const char* kSizes[] = {"64x64", "1918x1080", "1x1x3", "2147483647x1"};
  constexpr const char* kChips[] = {"family-5", "family-6", "family-7", "0x1"};
  tool::FitOptions options;
  const uint32_t drawn = input.u16();
  options.request.format = kFormats[drawn % 4];
  options.request.size = kSizes[drawn >> 2 & 3];
  options.request.chip = kChips[drawn >> 4 & 3];
  options.request.unknown_chip = true;
  options.request.linear = (drawn >> 6 & 1) != 0;
  options.request.ubwc = (drawn >> 7 & 1) != 0;
  options.json = (drawn >> 8 & 1) != 0;
  return options;
}

// As --plane takes it.
std::string plane_text(const tool::ForeignPlane& plane) {
  std::string text;
  for (const tool::NumberName& known : tool::foreign_plane_names()) {
    const std::optional<uint64_t>& number = plane.*known.member;
    if (number) text += fmt::format("{}{}={}", text.empty() ? "" : ",", known.name, *number);
  }
  return text;
}

bool says_nothing(const tool::ForeignPlane& plane) {
  return plane_text(plane).empty();
}

fuzz::ToolRun fit(const fuzz::StoredInputFile& file, const tool::FitOptions& options) {
  return fuzz::run_tool(file, [&options] { return tool::fit(options); });
}

// A plane means the same in a file and on the command line.
void require_same_by_options(const fuzz::StoredInputFile& file, const fuzz::ToolRun& run,
                             tool::FitOptions options) {
  const std::vector<tool::ForeignPlane> planes = tool::read_foreign_planes(file.path);
  if (planes.empty() || std::any_of(planes.begin(), planes.end(), says_nothing)) return;
  options.layout.reset();
  for (const tool::ForeignPlane& plane : planes) options.planes.push_back(plane_text(plane));
  const fuzz::ToolRun by_options = fit(file, options);
  REQUIRE(by_options.exit_code == run.exit_code);
  REQUIRE(by_options.output == run.output);
  fuzz::meet(fuzz::Case::layout_by_options);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::InputBytes input(data, size);
  tool::FitOptions options = draw_request(input);
  const std::span<const uint8_t> text = input.rest();
  const fuzz::StoredInputFile file = fuzz::store_file({text.begin(), text.end()});
  options.layout = file.path;
  const fuzz::ToolRun run = fit(file, options);
  REQUIRE(run.exit_code == tool::kExitDone || run.exit_code == tool::kExitRefused ||
          run.exit_code == tool::kExitBadInput);
  if (run.exit_code == tool::kExitBadInput) return 0;
  fuzz::meet(run.exit_code == tool::kExitDone ? fuzz::Case::layout_fits
                                              : fuzz::Case::layout_does_not_fit);
  if (options.json) REQUIRE(nlohmann::json::accept(run.output));
  require_same_by_options(file, run, options);
  return 0;
}
