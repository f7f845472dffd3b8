#include "tools/output/explanation_json.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

const char* unit_name(Unit unit) {
  switch (unit) {
    case Unit::texels: return "texels";
    case Unit::elements: return "elements";
    case Unit::rows: return "rows";
    case Unit::tiles: return "tiles";
    case Unit::tile_rows: return "tile rows";
    case Unit::flag_rows: return "flag rows";
    case Unit::bytes: return "bytes";
    case Unit::slices: return "slices";
    case Unit::samples: return "samples";
    case Unit::levels: return "levels";
    case Unit::planes: return "planes";
    case Unit::number: return "number";
    case Unit::yes_no: return "yes or no";
  }
  return "";
}

Json quantity_json(Quantity quantity) {
  Json value = quantity.value;
  if (quantity.unit == Unit::bytes) value = static_cast<uint64_t>(quantity.value);
  if (quantity.unit == Unit::yes_no) value = quantity.value != 0;
  return {{"value", std::move(value)}, {"unit", unit_name(quantity.unit)}};
}

template <typename Number>
Json optional_json(const std::optional<Number>& number) {
  return number ? Json(*number) : Json();
}

// Steps are numbered from 1, as in the text.
Json step_json(std::size_t number, const Step& step) {
  Json uses = Json::array();
  for (const std::size_t input : step.inputs) uses.push_back(input + 1);
  return {{"number", number},
          {"level", optional_json(step.place.level)},
          {"plane", optional_json(step.place.plane)},
          {"subject", step.subject},
          {"before", quantity_json(step.before)},
          {"after", quantity_json(step.after)},
          {"rule", step.rule},
          {"fact", step.fact},
          {"field", step.field.empty() ? Json() : Json(step.field)},
          {"wrapped", step.wrapped},
          {"exact", optional_json(step.exact)},
          {"uses", std::move(uses)}};
}

}  // namespace

Json steps_json(const Explanation& explanation) {
  Json steps = Json::array();
  for (const Step& step : explanation.steps) steps.push_back(step_json(steps.size() + 1, step));
  return steps;
}

}  // namespace tool
