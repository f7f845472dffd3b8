// What surfaces cost, a row each.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/comparison/surface_cost.h"
#include "tools/request/request_list.h"

namespace tool {

struct CostRow {
  Chip chip;
  SurfaceRequest request;
  SurfaceCost cost = {};
  uint32_t pitch_bytes = 0;  // of level 0, plane 0; 0 without planes
  bool wrapped = false;      // a number of the layout did not fit its bits
  std::string refusal = {};  // why there is no layout; empty when there is one
};

CostRow cost_row(const ChipRequest& asked);

enum class CostOrder : uint8_t { ascending, descending };

// The columns that rows are sorted by, in the order in which they are printed.
std::vector<std::string_view> cost_columns();

// Rows without a layout come last. False when there is no such column.
bool sort_rows(std::vector<CostRow>& rows, std::string_view column, CostOrder order);

}  // namespace tool
