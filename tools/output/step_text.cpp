#include "tools/output/step_text.h"

#include <fmt/core.h>

#include <cstdint>
#include <string_view>

namespace tool {
namespace {

std::string_view noun_of(Unit unit) {
  switch (unit) {
    case Unit::texels: return "texel";
    case Unit::elements: return "element";
    case Unit::rows: return "row";
    case Unit::tiles: return "tile";
    case Unit::tile_rows: return "tile row";
    case Unit::flag_rows: return "flag row";
    case Unit::slices: return "slice";
    case Unit::samples: return "sample";
    case Unit::levels: return "level";
    case Unit::planes: return "plane";
    default: return "byte";
  }
}

std::string digits(Quantity quantity) {
  return quantity.unit == Unit::bytes ? fmt::format("{}", static_cast<uint64_t>(quantity.value))
                                      : fmt::format("{}", quantity.value);
}

}  // namespace

std::string quantity_text(Quantity quantity) {
  if (quantity.unit == Unit::yes_no) return quantity.value != 0 ? "yes" : "no";
  if (quantity.unit == Unit::number) return digits(quantity);
  return fmt::format("{} {}{}", digits(quantity), noun_of(quantity.unit),
                     quantity.value == 1 ? "" : "s");
}

std::string change_text(const Step& step) {
  if (step.before.unit != step.after.unit) {
    return fmt::format("{} -> {}", quantity_text(step.before), quantity_text(step.after));
  }
  if (step.before.value == step.after.value) return quantity_text(step.after);
  if (step.after.unit == Unit::yes_no) {
    return fmt::format("{} -> {}", quantity_text(step.before), quantity_text(step.after));
  }
  return fmt::format("{} -> {}", digits(step.before), quantity_text(step.after));
}

}  // namespace tool
