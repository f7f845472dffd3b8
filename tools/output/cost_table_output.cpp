#include "tools/output/cost_table_output.h"

#include <fmt/core.h>

#include <algorithm>
#include <set>

#include "tools/output/layout_json.h"
#include "tools/output/text_table.h"
#include "tools/request/counted.h"
#include "tools/request/format_names.h"
#include "tools/request/surface_size.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

std::string format_cell(uint32_t format) {
  const std::string_view name = format_name(format);
  return name.empty() ? fmt::format("{}", format) : std::string(name);
}

bool is_tiled(const CostRow& row) {
  return row.request.tiling_mode == KORVEL_TILING_TILED;
}

bool asks_for_flags(const CostRow& row) {
  return (row.request.flags & LAYOUT_FLAG_UBWC) != 0;
}

const char* ubwc_cell(const CostRow& row) {
  if (!asks_for_flags(row)) return "-";
  return row.cost.flag_bytes > 0 ? "yes" : "none";
}

std::string per_cent_text(const CostRow& row) {
  const std::optional<double> per_cent = row.cost.padding_per_cent();
  return per_cent ? fmt::format("{:.2f}", *per_cent) : "-";
}

std::vector<std::string> cells_of(const CostRow& row) {
  const SurfaceCost& cost = row.cost;
  return {fmt::format("0x{:08X}", row.chip.chip_id),
          format_cell(row.request.format),
          surface_size_text(row.request.size),
          fmt::format("{}", row.request.samples),
          row.request.levels ? fmt::format("{}", *row.request.levels) : "-",
          is_tiled(row) ? "tiled" : "linear",
          ubwc_cell(row),
          fmt::format("{}", row.pitch_bytes),
          fmt::format("{}", cost.bytes) + (row.wrapped ? "!" : ""),
          fmt::format("{}", cost.payload_bytes),
          fmt::format("{}", cost.over_payload_bytes()),
          per_cent_text(row),
          fmt::format("{}", cost.flag_bytes)};
}

// The words of one reason, as often as it holds.
std::vector<std::string> refusals_in_words(const std::vector<CostRow>& rows) {
  constexpr std::size_t kMostReasons = 4;
  std::vector<std::string> reasons;
  std::set<std::string> said;
  std::size_t refused = 0;
  for (const CostRow& row : rows) {
    if (row.refusal.empty()) continue;
    ++refused;
    if (said.insert(row.refusal).second) reasons.push_back(row.refusal);
  }
  if (refused == 0) return {};
  std::vector<std::string> sentences;
  for (std::size_t i = 0; i < std::min(reasons.size(), kMostReasons); ++i) {
    sentences.push_back(fmt::format("left out: {}", reasons[i]));
  }
  if (reasons.size() > kMostReasons) {
    sentences.push_back(fmt::format("left out for {} in all: {}", counted(reasons.size(), "reason"),
                                    counted(refused, "request")));
  }
  return sentences;
}

}  // namespace

std::string cost_table_text(const std::vector<CostRow>& rows) {
  TextTable table({{"chip", "", TableColumn::left},
                   {"format", "", TableColumn::left},
                   {"size", "texels", TableColumn::left},
                   {"samples", ""},
                   {"levels", ""},
                   {"tiling", "", TableColumn::left},
                   {"ubwc", "", TableColumn::left},
                   {"pitch", "bytes"},
                   {"bytes", "allocated"},
                   {"payload", "bytes"},
                   {"over", "bytes"},
                   {"padding", "%"},
                   {"flags", "bytes"}});
  for (const CostRow& row : rows) {
    if (row.refusal.empty()) table.add_row(cells_of(row));
  }
  return table.text() +
         "\npayload: the texels alone; over: what is allocated beside them, flag buffers too;\n"
         "padding: what is neither texels, flag buffers nor extra buffer, of the bytes allocated;\n"
         "ubwc: none where it is asked for but has no flag buffer\n";
}

std::string cost_table_csv(const std::vector<CostRow>& rows) {
  std::string text =
      "chip_id,format,format_name,width_texels,height_texels,slices,samples,levels,tiled,ubwc,"
      "pitch_bytes,allocation_bytes,payload_bytes,over_payload_bytes,padding_per_cent,flag_bytes,"
      "wrapped\n";
  for (const CostRow& row : rows) {
    if (!row.refusal.empty()) continue;
    const SurfaceRequest& request = row.request;
    const std::optional<double> per_cent = row.cost.padding_per_cent();
    text += fmt::format(
        "0x{:08X},{},{},{},{},{},{},{},{},{},{},{},{},{},{},{},{}\n", row.chip.chip_id,
        request.format, format_name(request.format), request.size.width, request.size.height,
        request.size.depth, request.samples,
        request.levels ? fmt::format("{}", *request.levels) : std::string(), is_tiled(row) ? 1 : 0,
        asks_for_flags(row) ? 1 : 0, row.pitch_bytes, row.cost.bytes, row.cost.payload_bytes,
        row.cost.over_payload_bytes(), per_cent ? fmt::format("{:.4f}", *per_cent) : std::string(),
        row.cost.flag_bytes, row.wrapped ? 1 : 0);
  }
  return text;
}

Json cost_table_json(const std::vector<CostRow>& rows) {
  Json laid_out = Json::array();
  Json refused = Json::array();
  for (const CostRow& row : rows) {
    Json json = {{"chip", chip_json(row.chip)}, {"request", request_json(row.request)}};
    if (!row.refusal.empty()) {
      json["reason"] = row.refusal;
      refused.push_back(std::move(json));
      continue;
    }
    const std::optional<double> per_cent = row.cost.padding_per_cent();
    json["image_pitch"] = row.pitch_bytes;
    json["gpu_buffer_size"] = row.cost.bytes;
    json["payload_bytes"] = row.cost.payload_bytes;
    json["over_payload_bytes"] = row.cost.over_payload_bytes();
    json["padding_per_cent"] = per_cent ? Json(*per_cent) : Json();
    json["flag_bytes"] = row.cost.flag_bytes;
    json["extra_bytes"] = row.cost.extra_bytes;
    json["wrapped"] = row.wrapped;
    laid_out.push_back(std::move(json));
  }
  return {{"rows", std::move(laid_out)}, {"refused", std::move(refused)}};
}

std::vector<std::string> cost_table_warnings(const std::vector<CostRow>& rows) {
  std::vector<std::string> sentences = refusals_in_words(rows);
  const auto wrapped =
      std::count_if(rows.begin(), rows.end(), [](const CostRow& row) { return row.wrapped; });
  if (wrapped > 0) {
    sentences.push_back(fmt::format(
        "{} with numbers that wrap, marked with an exclamation mark: such a layout is wrong by "
        "design; explain says which number",
        counted(wrapped, "row")));
  }
  return sentences;
}

}  // namespace tool
