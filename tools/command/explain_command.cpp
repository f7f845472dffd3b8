#include "tools/command/explain_command.h"

#include <fmt/core.h>

#include "tools/command/exit_codes.h"
#include "tools/explanation/explain_surface.h"
#include "tools/explanation/explanation_check.h"
#include "tools/library/layout_warnings.h"
#include "tools/library/simulated_chip.h"
#include "tools/library/surface_layout.h"
#include "tools/output/explanation_json.h"
#include "tools/output/explanation_text.h"
#include "tools/output/layout_json.h"
#include "tools/output/layout_text.h"
#include "tools/output/standard_error.h"
#include "tools/output/standard_output.h"
#include "tools/request/bad_input.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

[[noreturn]] void refuse_field(const std::string& field, const std::vector<FieldValue>& fields) {
  for (const FieldValue& known : fields) {
    if (word_of_field(known.field) == word_of_field(field)) {
      refuse("--field: this layout has no {}, but it has {}; write for example --field {}",
             in_quotes(field), known.field, known.field);
    }
  }
  std::string names;
  for (const FieldValue& known : fields) {
    const std::string word(word_of_field(known.field));
    if (names.find(" " + word + ",") == std::string::npos) names += " " + word + ",";
  }
  names.pop_back();
  refuse(
      "--field: this layout has no {}; write for example level[0].plane[0].image_pitch, level[0].size or "
      "total_size; there are{}",
      in_quotes(field), names);
}

Explanation asked_part(const Explanation& whole, const std::optional<std::string>& field,
                       const LayoutMetadata& blob) {
  if (!field) return whole;
  Explanation part = steps_to(whole, *field);
  if (part.steps.empty()) refuse_field(*field, explained_fields(blob));
  return part;
}

// The library's own numbers, with which the steps agree.
std::string answer_text(const LayoutMetadata& blob, const std::optional<std::string>& field,
                        std::size_t compared_fields) {
  if (!field) {
    return fmt::format("\nThe library's answer, the same in all {}\n\n{}",
                       counted(compared_fields, "field"), layout_tables(blob));
  }
  for (const FieldValue& known : explained_fields(blob)) {
    if (known.field == *field) {
      return fmt::format("\nThe library's answer is the same: {} = {}\n", *field, known.value);
    }
  }
  return {};
}

}  // namespace

int explain(const ExplainOptions& options) {
  const SurfaceRequest request = request_of(options.request);
  const Chip chip = simulate_chip(options.request.chip, options.request.unknown_chip);
  const LaidOutSurface laid_out = lay_out(chip, request);
  const Explanation whole = explain_surface(chip.row, request);
  const Comparison comparison = compare(whole, laid_out.blob);
  if (!comparison.disagreement.empty()) {
    print_error("internal error: " + comparison.disagreement);
    return kExitInternalError;
  }
  const Explanation part = asked_part(whole, options.field, laid_out.blob);
  const std::vector<std::string> warnings = layout_warnings(chip, request, laid_out);
  print_warnings(warnings);
  if (options.json) {
    nlohmann::ordered_json json = layout_json(chip, request, laid_out.blob);
    json["steps"] = steps_json(part);
    json["warnings"] = warnings;
    print_data(json.dump(2) + "\n");
  } else {
    print_data(explanation_text(chip, request, part) +
               answer_text(laid_out.blob, options.field, comparison.compared));
  }
  return options.strict && !warnings.empty() ? kExitRefused : kExitDone;
}

}  // namespace tool
