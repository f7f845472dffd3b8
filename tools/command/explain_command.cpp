#include "tools/command/explain_command.h"

#include <fmt/core.h>

#include "tools/command/exit_codes.h"
#include "tools/explanation/explain_surface.h"
#include "tools/explanation/explain_words.h"
#include "tools/explanation/explanation_check.h"
#include "tools/library/layout_warnings.h"
#include "tools/library/simulated_chip.h"
#include "tools/library/surface_layout.h"
#include "tools/output/explanation_json.h"
#include "tools/output/explanation_text.h"
#include "tools/output/json_output.h"
#include "tools/output/layout_json.h"
#include "tools/output/layout_text.h"
#include "tools/output/standard_error.h"
#include "tools/output/standard_output.h"
#include "tools/record/uuid_text.h"
#include "tools/request/bad_input.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

std::vector<FieldValue> all_fields(const LayoutMetadata& blob) {
  std::vector<FieldValue> fields = explained_fields(blob);
  const std::vector<FieldValue> words = further_words(blob);
  fields.insert(fields.end(), words.begin(), words.end());
  return fields;
}

[[noreturn]] void refuse_field(const std::string& field, const LayoutMetadata& blob) {
  for (const FieldValue& known : all_fields(blob)) {
    if (word_of_field(known.field) == word_of_field(field)) {
      refuse("--field: this layout has no {}, but it has {}; write for example --field {}",
             in_quotes(field), known.field, known.field);
    }
  }
  std::string names;
  for (const FieldValue& known : explained_fields(blob)) {
    const std::string word(word_of_field(known.field));
    if (names.find(" " + word + ",") == std::string::npos) names += " " + word + ",";
  }
  refuse(
      "--field: this layout has no {}; write for example level[0].plane[0].image_pitch, "
      "level[0].size or total_size; there are{} and all others that show --json prints",
      in_quotes(field), names);
}

// The way from texels to bytes, and how the other words of the blob come about.
struct Explained {
  Explanation whole;
  Explanation words;
};

Explanation asked_part(const Explained& explained, const std::optional<std::string>& field,
                       const LayoutMetadata& blob) {
  if (!field) return explained.whole;
  Explanation part = steps_to(explained.whole, *field);
  if (part.steps.empty()) part = steps_to_word(explained.words, *field);
  if (part.steps.empty()) refuse_field(*field, blob);
  return part;
}

std::string answer_to(const std::string& field, const LayoutMetadata& blob) {
  if (field == "device_uuid") return uuid_text(blob.layout.device_uuid);
  if (field == "driver_uuid") return uuid_text(blob.layout.driver_uuid);
  for (const FieldValue& known : all_fields(blob)) {
    if (known.field == field) return fmt::format("{}", known.value);
  }
  return {};
}

// The library's own numbers, with which the steps agree.
std::string answer_text(const LayoutMetadata& blob, const std::optional<std::string>& field,
                        std::size_t compared_fields) {
  if (!field) {
    return fmt::format("\nThe library's answer, the same in all {}\n\n{}",
                       counted(compared_fields, "field"), layout_tables(blob));
  }
  return fmt::format("\nThe library's answer is the same: {} = {}\n", *field,
                     answer_to(*field, blob));
}

}  // namespace

int explain(const ExplainOptions& options) {
  const SurfaceRequest request = request_of(options.request);
  const Chip chip = simulate_chip(options.request.chip, options.request.unknown_chip);
  const LaidOutSurface laid_out = lay_out(chip, request);
  Explained explained;
  explained.whole = explain_surface(chip.row, request);
  explained.words = explain_words(chip.row, request, explained.whole);
  const Comparison comparison = compare(explained.whole, laid_out.blob);
  const Comparison words = compare(explained.words, further_words(laid_out.blob));
  for (const Comparison& held : {comparison, words}) {
    if (held.disagreement.empty()) continue;
    print_error("internal error: " + held.disagreement);
    return kExitInternalError;
  }
  const Explanation part = asked_part(explained, options.field, laid_out.blob);
  const std::vector<std::string> warnings = layout_warnings(chip, request, laid_out);
  print_warnings(warnings);
  if (options.json) {
    nlohmann::ordered_json json = layout_json(chip, request, laid_out.blob);
    json["field"] = options.field ? nlohmann::ordered_json(*options.field) : nullptr;
    json["steps"] = steps_json(part);
    print_data(json_text("explain", json, warnings));
  } else {
    print_data(explanation_text(chip, request, part) +
               answer_text(laid_out.blob, options.field, comparison.compared));
  }
  return options.strict && !warnings.empty() ? kExitRefused : kExitDone;
}

}  // namespace tool
