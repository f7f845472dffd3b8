#include "tools/picture/field_words.h"

#include <fmt/core.h>

#include "tools/step_text.h"

namespace tool {

std::string field_words(const Explanation& explanation, const std::string& field) {
  const Explanation part = steps_to(explanation, field);
  if (part.steps.empty()) return {};
  std::string text = fmt::format("How {} comes about:", field);
  std::size_t number = 0;
  for (const Step& step : part.steps) {
    text += fmt::format("\n{}. {}: {}\n    {}: {}", ++number, step.subject, change_text(step),
                        step.fact, step.rule);
    if (step.wrapped) text += "\n    WRAPPED: the number does not fit its bits";
  }
  return text;
}

}  // namespace tool
