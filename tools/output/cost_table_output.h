// A table of what surfaces cost, as text for people, as CSV and as JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/comparison/cost_table.h"

namespace tool {

// Rows that have a layout.
std::string cost_table_text(const std::vector<CostRow>& rows);
std::string cost_table_csv(const std::vector<CostRow>& rows);

// All rows; those without a layout stand apart, with the reason.
nlohmann::ordered_json cost_table_json(const std::vector<CostRow>& rows);

// What a reader of the table should know: requests that are left out, and numbers that wrapped.
std::vector<std::string> cost_table_warnings(const std::vector<CostRow>& rows);

}  // namespace tool
