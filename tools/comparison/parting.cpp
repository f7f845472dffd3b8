#include "tools/comparison/parting.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <vector>

#include "tools/record/named_words.h"

namespace tool {
namespace {

using Values = std::map<std::string_view, uint64_t>;

Values values_of(const Explanation& explanation) {
  Values values;
  for (const Step& step : explanation.steps) {
    if (!step.field.empty()) values[step.field] = static_cast<uint64_t>(step.after.value);
  }
  return values;
}

// The first step that gives a field another value than `others` has, or one that they lack.
const Step* first_that_differs(const Explanation& explanation, const Values& others) {
  for (const Step& step : explanation.steps) {
    if (step.field.empty()) continue;
    const auto other = others.find(step.field);
    if (other == others.end() || other->second != static_cast<uint64_t>(step.after.value)) {
      return &step;
    }
  }
  return nullptr;
}

bool comes_to_the_same(const Step& a, const Step& b) {
  return a.after.value == b.after.value && a.after.unit == b.after.unit;
}

std::optional<std::size_t> at_or_last(const std::vector<std::size_t>& way, std::size_t place) {
  if (way.empty()) return std::nullopt;
  return way[std::min(place, way.size() - 1)];
}

}  // namespace

std::optional<Parting> parting(const Explanation& a, const Explanation& b) {
  const Step* step = first_that_differs(a, values_of(b));
  if (step == nullptr) step = first_that_differs(b, values_of(a));
  if (step == nullptr) return std::nullopt;
  const std::vector<std::size_t> way_a = places_of_steps_to(a, step->field);
  const std::vector<std::size_t> way_b = places_of_steps_to(b, step->field);
  std::size_t place = 0;
  while (place < way_a.size() && place < way_b.size() &&
         comes_to_the_same(a.steps[way_a[place]], b.steps[way_b[place]])) {
    ++place;
  }
  return Parting{step->field, at_or_last(way_a, place), at_or_last(way_b, place)};
}

std::optional<Parting> parting_from_record(const Explanation& a,
                                           std::span<const unsigned char> layout_record) {
  Values stored;
  const std::vector<NamedWord> words =
      named_words(kLayoutFields, layout_record, BufferWords::of_valid_buffers);
  for (const NamedWord& word : words) stored[word.name] = word_value(word, layout_record);
  // The GPU allocation is no word of the record.
  stored["gpu_buffer_size"] = stored["total_size"] - stored["size"];
  const Step* const step = first_that_differs(a, stored);
  if (step == nullptr) return std::nullopt;
  return Parting{step->field, static_cast<std::size_t>(step - a.steps.data()), {}};
}

}  // namespace tool
