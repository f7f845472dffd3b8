#include "tools/explanation/explanation.h"

#include <fmt/core.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace tool {
namespace {

// The steps at these places, in this order; what they use besides is left out.
Explanation picked(const Explanation& explanation, const std::vector<std::size_t>& order) {
  constexpr std::size_t kLeftOut = static_cast<std::size_t>(-1);
  std::vector<std::size_t> place(explanation.steps.size(), kLeftOut);
  for (std::size_t i = 0; i < order.size(); ++i) place[order[i]] = i;
  Explanation part;
  part.steps.reserve(order.size());
  for (const std::size_t number : order) {
    Step& step = part.steps.emplace_back(explanation.steps[number]);
    for (std::size_t& input : step.inputs) input = place[input];
    std::erase(step.inputs, kLeftOut);
    if (step.continues) step.continues = place[*step.continues];
    if (step.continues == kLeftOut) step.continues.reset();
  }
  return part;
}

bool is_side(const Step& step) {
  return step.subject == "width" || step.subject == "height";
}

}  // namespace

std::string plane_field(uint32_t level, uint32_t plane, const char* name) {
  return fmt::format("level[{}].plane[{}].{}", level, plane, name);
}

std::string level_field(uint32_t level, const char* name) {
  return fmt::format("level[{}].{}", level, name);
}

std::string_view word_of_field(std::string_view field) {
  return field.substr(field.rfind('.') + 1);
}

std::vector<std::size_t> places_of_steps_to(const Explanation& explanation,
                                            const std::string& field) {
  if (field.empty()) return {};
  const std::vector<Step>& steps = explanation.steps;
  std::size_t last = 0;
  while (last < steps.size() && steps[last].field != field) ++last;
  if (last == steps.size()) return {};

  // A step uses only steps in front of it.
  std::vector<bool> needed(last + 1, false);
  needed[last] = true;
  for (std::size_t i = last + 1; i-- > 0;) {
    if (!needed[i]) continue;
    for (const std::size_t input : steps[i].inputs) {
      if (steps[input].place == steps[last].place) needed[input] = true;
    }
  }
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i <= last; ++i) {
    if (needed[i]) order.push_back(i);
  }
  return order;
}

Explanation steps_to(const Explanation& explanation, const std::string& field) {
  return picked(explanation, places_of_steps_to(explanation, field));
}

Explanation widths_first(const Explanation& explanation) {
  const std::vector<Step>& steps = explanation.steps;
  std::vector<std::size_t> order(steps.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  for (std::size_t first = 0; first < steps.size();) {
    std::size_t end = first;
    while (end < steps.size() && is_side(steps[end]) && steps[end].place == steps[first].place) {
      ++end;
    }
    const auto at = [&order](std::size_t i) { return order.begin() + static_cast<ptrdiff_t>(i); };
    std::stable_partition(at(first), at(end),
                          [&steps](std::size_t i) { return steps[i].subject == "width"; });
    first = std::max(end, first + 1);
  }
  return picked(explanation, order);
}

}  // namespace tool
