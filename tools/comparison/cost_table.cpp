#include "tools/comparison/cost_table.h"

#include <algorithm>
#include <tuple>

#include "tools/explanation/explain_surface.h"
#include "tools/explanation/explained_record.h"
#include "tools/explanation/fault_forecast.h"
#include "tools/request/refused_request.h"

namespace tool {
namespace {

// What a row is sorted by.
using Key = std::tuple<int64_t, int64_t, int64_t>;

struct Column {
  std::string_view name;
  Key (*key)(const CostRow& row);
};

Key one(uint64_t number) {
  return {static_cast<int64_t>(number), 0, 0};
}

constexpr Column kColumns[] = {
    {"chip", [](const CostRow& row) { return one(row.chip.chip_id); }},
    {"format", [](const CostRow& row) { return one(row.request.format); }},
    {"size",
     [](const CostRow& row) {
       const SurfaceSize& size = row.request.size;
       return Key(size.width, size.height, size.depth);
     }},
    {"samples", [](const CostRow& row) { return one(row.request.samples); }},
    {"levels", [](const CostRow& row) { return one(row.request.levels.value_or(0)); }},
    {"tiling", [](const CostRow& row) { return one(row.request.tiling_mode); }},
    {"ubwc", [](const CostRow& row) { return one(row.request.flags & LAYOUT_FLAG_UBWC); }},
    {"pitch", [](const CostRow& row) { return one(row.pitch_bytes); }},
    {"bytes", [](const CostRow& row) { return one(row.cost.bytes); }},
    {"payload", [](const CostRow& row) { return one(row.cost.payload_bytes); }},
    {"over", [](const CostRow& row) { return Key(row.cost.over_payload_bytes(), 0, 0); }},
    {"padding",
     [](const CostRow& row) {
       constexpr double kKept = 1e9;
       return Key(static_cast<int64_t>(row.cost.padding_per_cent().value_or(100) * kKept), 0, 0);
     }},
    {"flags", [](const CostRow& row) { return one(row.cost.flag_bytes); }},
};

}  // namespace

CostRow cost_row(const ChipRequest& asked) {
  CostRow row = {.chip = asked.chip, .request = asked.request};
  row.refusal = refused_request(asked.request);
  if (row.refusal.empty()) row.refusal = forecast_fault(asked.chip.row, asked.request);
  if (!row.refusal.empty()) return row;
  const Explanation explanation = explain_surface(asked.chip.row, asked.request);
  const MemoryLayout record = explained_record(asked.chip.row, asked.request, explanation);
  row.cost = surface_cost(asked.request, record);
  row.pitch_bytes = record.level[0].plane[0].image_pitch;
  row.wrapped = std::any_of(explanation.steps.begin(), explanation.steps.end(),
                            [](const Step& step) { return step.wrapped; });
  return row;
}

std::vector<std::string_view> cost_columns() {
  std::vector<std::string_view> names;
  for (const Column& column : kColumns) names.push_back(column.name);
  return names;
}

bool sort_rows(std::vector<CostRow>& rows, std::string_view column, CostOrder order) {
  const auto* const found =
      std::find_if(std::begin(kColumns), std::end(kColumns),
                   [column](const Column& known) { return known.name == column; });
  if (found == std::end(kColumns)) return false;
  std::stable_sort(rows.begin(), rows.end(), [found, order](const CostRow& a, const CostRow& b) {
    if (a.refusal.empty() != b.refusal.empty()) return a.refusal.empty();
    return order == CostOrder::ascending ? found->key(a) < found->key(b)
                                         : found->key(b) < found->key(a);
  });
  return true;
}

}  // namespace tool
