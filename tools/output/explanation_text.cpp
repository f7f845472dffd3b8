#include "tools/output/explanation_text.h"

#include <fmt/core.h>

#include <algorithm>

#include "tools/output/step_text.h"

namespace tool {
namespace {

std::string place_text(const Place& place) {
  if (place.level && place.plane)
    return fmt::format("Level {}, plane {}", *place.level, *place.plane);
  if (place.level) return fmt::format("Level {}, all planes", *place.level);
  if (place.plane) return fmt::format("Plane {}, where its levels lie", *place.plane);
  return "Surface";
}

// Where the numbers of all steps stand.
struct Columns {
  std::size_t subject = 0;
  std::size_t change = 0;
};

Columns columns_of(const Explanation& explanation) {
  Columns columns;
  for (const Step& step : explanation.steps) {
    columns.subject = std::max(columns.subject, step.subject.size());
    columns.change = std::max(columns.change, change_text(step).size());
  }
  return columns;
}

std::string step_text(std::size_t number, const Step& step, const Columns& columns) {
  std::string text = fmt::format("{:>4}  {:<{}}  {:<{}}", number, step.subject, columns.subject,
                                 change_text(step), columns.change);
  if (!step.field.empty()) text += fmt::format("  = {}", word_of_field(step.field));
  text.erase(text.find_last_not_of(' ') + 1);
  text += '\n';
  const std::size_t margin = 4 + 2 + columns.subject + 2;
  text += wrapped_lines(fmt::format("{}: {}", step.fact, step.rule), margin);
  if (step.wrapped && step.exact) {
    const Quantity exact = {static_cast<int64_t>(*step.exact), step.after.unit};
    text +=
        wrapped_lines(fmt::format("WRAPPED: {} do not fit 32 bits", quantity_text(exact)), margin);
  } else if (step.wrapped) {
    text += wrapped_lines("WRAPPED: the number does not fit its bits", margin);
  }
  return text;
}

}  // namespace

std::string wrapped_lines(std::string_view text, std::size_t margin) {
  constexpr std::size_t kLineWidth = 100;
  std::string lines;
  std::size_t used = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    if (used == 0 || used + 1 + word.size() > kLineWidth) {
      lines += fmt::format("{}{}{}", used == 0 ? "" : "\n", std::string(margin, ' '), word);
      used = margin + word.size();
    } else {
      lines += fmt::format(" {}", word);
      used += 1 + word.size();
    }
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines + "\n";
}

std::string explanation_text(const Chip& chip, const SurfaceRequest& request,
                             const Explanation& explanation) {
  const Columns columns = columns_of(explanation);
  std::string text = fmt::format("{:<16} {}\n", "Surface", request_label(request));
  text += fmt::format("{:<16} {}\n", "Chip", chip_label(chip));
  std::size_t number = 0;
  const Place* before = nullptr;
  for (const Step& step : explanation.steps) {
    if (before == nullptr || !(*before == step.place)) {
      text += fmt::format("\n{}\n", place_text(step.place));
    }
    before = &step.place;
    text += step_text(++number, step, columns);
  }
  return text;
}

}  // namespace tool
