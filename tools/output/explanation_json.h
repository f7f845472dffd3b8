// The steps of an explanation as JSON.
#pragma once

#include <nlohmann/json.hpp>

#include "tools/explanation/explanation.h"

namespace tool {

nlohmann::ordered_json steps_json(const Explanation& explanation);

}  // namespace tool
