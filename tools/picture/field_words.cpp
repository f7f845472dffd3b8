#include "tools/picture/field_words.h"

#include <fmt/core.h>

#include "tools/output/step_text.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

// Of long ways the last steps say most: a chain's offsets come about through all levels before
// them.
constexpr std::size_t kMostSteps = 6;

}  // namespace

std::string field_words(const Explanation& explanation, const std::string& field) {
  const Explanation part = steps_to(explanation, field);
  if (part.steps.empty()) return {};
  std::string text = fmt::format("How {} comes about:", field);
  const std::size_t left_out =
      part.steps.size() > kMostSteps ? part.steps.size() - kMostSteps : std::size_t{0};
  if (left_out > 0) {
    text += fmt::format("\n({} more: korvel-layout explain --field {})", counted(left_out, "step"),
                        field);
  }
  for (std::size_t i = left_out; i < part.steps.size(); ++i) {
    const Step& step = part.steps[i];
    text += fmt::format("\n{}. {}: {}\n    {}: {}", i + 1, step.subject, change_text(step),
                        step.fact, step.rule);
    if (step.wrapped) text += "\n    WRAPPED: the number does not fit its bits";
  }
  return text;
}

}  // namespace tool
