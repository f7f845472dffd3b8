// What differs between two layouts, as text for people and as JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "tools/comparison/compared_side.h"
#include "tools/comparison/parting.h"
#include "tools/comparison/record_comparison.h"

namespace tool {

struct Difference {
  const ComparedSide& a;
  const ComparedSide& b;
  const RecordComparison& comparison;
  std::optional<Parting> parting;  // where a request is one of the sides, and numbers part
};

std::string difference_text(const Difference& difference);
nlohmann::ordered_json difference_json(const Difference& difference);

}  // namespace tool
