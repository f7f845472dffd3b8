// What a page calls: JSON in, JSON out, on any chip at any time.
//
// Each call is a command of korvel-layout and answers with the text that the command prints with
// --json. What the command refuses is answered with {"refusal": "..."}, the sentence that it would
// print. korvel_utils.mjs calls these functions; nobody else has to.

#include <cstdint>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "explorer/module/given_files.h"
#include "explorer/module/kept_output.h"
#include "explorer/module/request_json.h"
#include "simulator/hxl_sim.h"
#include "tools/command/check_command.h"
#include "tools/command/chips_command.h"
#include "tools/command/diff_side.h"
#include "tools/command/difference_report.h"
#include "tools/command/dump_command.h"
#include "tools/command/exit_codes.h"
#include "tools/command/explain_command.h"
#include "tools/command/formats_command.h"
#include "tools/explanation/explain_surface.h"
#include "tools/library/forget_gpu.h"
#include "tools/library/layout_warnings.h"
#include "tools/library/simulated_chip.h"
#include "tools/library/surface_layout.h"
#include "tools/output/scene_json.h"
#include "tools/output/standard_output.h"
#include "tools/picture/page.h"
#include "tools/picture/scene.h"
#include "tools/picture/svg_text.h"
#include "tools/record/record_text.h"
#include "tools/request/bad_input.h"

namespace explorer {
namespace {

using nlohmann::json;

// --- The commands: each prints its answer and returns its exit code. ---

int explain(const json& request) {
  return tool::explain({.request = request_options(request), .json = true});
}

// Hands the scene of a request to use(scene).
template <typename Use>
int with_scene(const json& request, Use use) {
  const tool::RequestOptions options = request_options(request);
  const tool::SurfaceRequest surface = tool::request_of(options);
  const tool::Chip chip = tool::simulate_chip(options.chip, options.unknown_chip);
  const tool::LaidOutSurface laid_out = tool::lay_out(chip, surface);
  const std::vector<std::string> warnings = tool::layout_warnings(chip, surface, laid_out);
  const tool::Explanation explanation = tool::explain_surface(chip.row, surface);
  use(tool::make_scene(
      {chip.row, surface, laid_out.blob, explanation, tool::chip_label(chip), warnings}));
  return tool::kExitDone;
}

// The rectangles of the picture.
int scene(const json& request) {
  return with_scene(
      request, [](const tool::Scene& scene) { tool::print_data(tool::scene_json(scene).dump()); });
}

// The picture as the text of an SVG file: {"svg": "<svg ..."}.
int svg(const json& request) {
  return with_scene(request, [](const tool::Scene& scene) {
    tool::print_data(json({{"svg", tool::svg_text(tool::make_page(scene))}}).dump());
  });
}

int diff(const json& sides) {
  const Members members(sides, {"a", "b"});
  return tool::report_difference(tool::side_of_request(request_options(members.needed("a"))),
                                 tool::side_of_request(request_options(members.needed("b"))), true);
}

int chips(const json& /*nothing*/) {
  return tool::list_chips(true);
}

int formats(const json& asked) {
  const Members members(asked, {"chip", "unknown_chip", "all"});
  return tool::list_formats({.chip = members.text("chip"),
                             .unknown_chip = members.yes("unknown_chip"),
                             .all = members.yes("all"),
                             .json = true});
}

// The bytes of a stored record come in base64, or in hex.
std::string handed_over(const Members& members) {
  const std::string text = members.needed_text("bytes");
  const std::vector<unsigned char> letters(text.begin(), text.end());
  std::optional<std::vector<unsigned char>> bytes = tool::bytes_of_hex(letters);
  if (!bytes) bytes = tool::bytes_of_base64(letters);
  if (!bytes) tool::refuse("\"bytes\" is neither hexadecimal digits nor base64");
  std::string name = members.text("name").value_or("record");
  give_file(name, std::move(*bytes));
  return name;
}

int check(const json& asked) {
  const Members members(asked, {"bytes", "name", "kind", "chip", "unknown_chip", "strict"});
  return tool::check({.stored = {.file = handed_over(members), .kind = members.text("kind")},
                      .chip = members.text("chip"),
                      .unknown_chip = members.yes("unknown_chip"),
                      .json = true,
                      .strict = members.yes("strict")});
}

int dump(const json& asked) {
  const Members members(asked, {"bytes", "name", "kind", "all"});
  return tool::dump({.stored = {.file = handed_over(members), .kind = members.text("kind")},
                     .all = members.yes("all"),
                     .json = true});
}

// --- How they are called. ---

std::string trouble(const char* name, const std::string& sentence) {
  return json({{name, sentence}}).dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string answer(int (*command)(const json&), const char* asked) {
  take_output();
  // A machine that nobody has met yet: the chip is the call's own.
  hxl_sim_reset();
  tool::forget_gpu();
  try {
    const json arguments = json::parse(asked);
    const int code = command(arguments);
    if (code == tool::kExitInternalError) {
      return trouble("internal_error", "the explanation and the library do not agree");
    }
    return take_output();
  } catch (const tool::BadInput& reason) {
    return trouble("refusal", reason.what());
  } catch (const json::exception& reason) {
    return trouble("refusal", reason.what());
  }
}

// Stays until the next call.
const char* kept_answer(int (*command)(const json&), const char* asked) {
  static std::string kept;
  kept = answer(command, asked);
  return kept.c_str();
}

}  // namespace
}  // namespace explorer

// A text of the caller's lies in memory that it takes and gives back here.
extern "C" [[gnu::used, clang::export_name("take_memory")]] void* explorer_take_memory(
    std::size_t bytes) {
  return std::malloc(bytes);
}
extern "C" [[gnu::used, clang::export_name("give_memory")]] void explorer_give_memory(
    void* memory) {
  std::free(memory);
}

// Each takes and returns a text that ends in a 0.
#define EXPLORER_CALL(name)                                                                     \
  extern "C"                                                                                    \
      [[gnu::used, clang::export_name(#name)]] const char* explorer_##name(const char* asked) { \
    return explorer::kept_answer(explorer::name, asked);                                        \
  }
EXPLORER_CALL(explain)
EXPLORER_CALL(scene)
EXPLORER_CALL(svg)
EXPLORER_CALL(diff)
EXPLORER_CALL(chips)
EXPLORER_CALL(formats)
EXPLORER_CALL(check)
EXPLORER_CALL(dump)
