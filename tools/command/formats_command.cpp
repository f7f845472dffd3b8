#include "tools/command/formats_command.h"

#include <fmt/core.h>
#include <fmt/ranges.h>

#include <array>
#include <nlohmann/json.hpp>

#include <korvel_utils.h>
#include "formats/block_dims.h"
#include "formats/format_table.h"
#include "tools/command/exit_codes.h"
#include "tools/command/format_flags.h"
#include "tools/library/library_messages.h"
#include "tools/library/simulated_chip.h"
#include "tools/output/json_output.h"
#include "tools/output/layout_json.h"
#include "tools/output/standard_error.h"
#include "tools/output/standard_output.h"
#include "tools/output/text_table.h"
#include "tools/request/format_names.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr auto kIsUsed = [] {
  std::array<bool, korvel::kFormatCount> used{};
  for (const korvel::FormatTableRow& row : korvel::kFormatTableRows) {
    korvel::for_each_id(row.ids, [&used](uint32_t id) { used[id] = true; });
  }
  return used;
}();

// What the library says of a format on the simulated chip.
struct Capabilities {
  bool renderable_colour;
  bool renderable_depth_stencil;
  bool sampleable_single_sampled;
  bool sampleable_multisampled;
  bool sampleable_depth_stencil;
  bool ubwc;
};

Capabilities capabilities_of(uint32_t format) {
  constexpr uint32_t kSingle = 1;
  constexpr uint32_t kMulti = 2;
  const auto id = static_cast<int32_t>(format);
  return {.renderable_colour = isFormatRenderableByGpu(id, 0) != 0,
          .renderable_depth_stencil = isFormatRenderableByGpu(id, 1) != 0,
          .sampleable_single_sampled = isFormatSampleableByGpu(id, kSingle, 0) != 0,
          .sampleable_multisampled = isFormatSampleableByGpu(id, kMulti, 0) != 0,
          .sampleable_depth_stencil = isFormatSampleableByGpu(id, kSingle, 1) != 0,
          .ubwc = isUBWCSupportedByGpu(format) != 0};
}

// Without a chip nothing is known of them.
void add_capabilities(Json& json, const std::optional<Capabilities>& can) {
  json["renderable"] = nullptr;
  json["sampleable"] = nullptr;
  json["ubwc"] = nullptr;
  if (!can) return;
  json["renderable"] = {{"colour", can->renderable_colour},
                        {"depth_stencil", can->renderable_depth_stencil}};
  json["sampleable"] = {{"single_sampled", can->sampleable_single_sampled},
                        {"multisampled", can->sampleable_multisampled},
                        {"depth_stencil", can->sampleable_depth_stencil}};
  json["ubwc"] = can->ubwc;
}

Json format_json(uint32_t format, bool with_capabilities) {
  const korvel::FormatRecord& record = korvel::format_record(format);
  const korvel::Extent<korvel::Texels> block = korvel::format_block_dims(format);
  const std::string_view name = format_name(format);
  Json json = {{"id", format},
               {"name", name.empty() ? Json() : Json(name)},
               {"flags", format_flag_names(record.flags)},
               {"bytes", record.bytes},
               {"planes", record.planes},
               {"block", {{"width", block.width}, {"height", block.height}}}};
  add_capabilities(json, with_capabilities ? std::optional(capabilities_of(format)) : std::nullopt);
  return json;
}

std::string uses(std::initializer_list<std::pair<bool, const char*>> named) {
  std::string text;
  for (const auto& [holds, name] : named) {
    if (holds) text += fmt::format("{}{}", text.empty() ? "" : " ", name);
  }
  return text.empty() ? "-" : text;
}

void add_capability_cells(std::vector<std::string>& cells, const Capabilities& can) {
  cells.push_back(uses({{can.renderable_colour, "colour"}, {can.renderable_depth_stencil, "ds"}}));
  cells.push_back(uses({{can.sampleable_single_sampled, "single"},
                        {can.sampleable_multisampled, "multi"},
                        {can.sampleable_depth_stencil, "ds"}}));
  cells.emplace_back(can.ubwc ? "yes" : "-");
}

std::vector<std::string> format_cells(uint32_t format, bool with_capabilities) {
  const korvel::FormatRecord& record = korvel::format_record(format);
  const korvel::Extent<korvel::Texels> block = korvel::format_block_dims(format);
  const std::string_view name = format_name(format);
  std::vector<std::string> cells = {
      fmt::format("{}", format), name.empty() ? "-" : std::string(name),
      fmt::format("{}", record.bytes), fmt::format("{}", record.planes),
      fmt::format("{} x {}", block.width, block.height)};
  if (with_capabilities) add_capability_cells(cells, capabilities_of(format));
  const std::vector<std::string> flags = format_flag_names(record.flags);
  cells.push_back(flags.empty() ? "-" : fmt::format("{}", fmt::join(flags, " ")));
  return cells;
}

std::vector<TableColumn> table_columns(bool with_capabilities) {
  std::vector<TableColumn> columns = {{"id", ""},
                                      {"name", "", TableColumn::left},
                                      {"element", "bytes"},
                                      {"planes", ""},
                                      {"block", "texels"}};
  if (with_capabilities) {
    columns.push_back({"renderable", "as", TableColumn::left});
    columns.push_back({"sampleable", "as", TableColumn::left});
    columns.push_back({"UBWC", "", TableColumn::left});
  }
  columns.push_back({"flags", "", TableColumn::left});
  return columns;
}

// Calls visit(format) for every format that is to be listed.
template <typename Visit>
void for_each_listed(bool all, Visit visit) {
  for (uint32_t format = 0; format < korvel::kFormatCount; ++format) {
    if (all || kIsUsed[format]) visit(format);
  }
}

std::string formats_text(const FormatsOptions& options) {
  const bool with_capabilities = options.chip.has_value();
  TextTable table(table_columns(with_capabilities));
  for_each_listed(options.all,
                  [&](uint32_t format) { table.add_row(format_cells(format, with_capabilities)); });
  const char* const legend =
      with_capabilities
          ? "\ncolour: other than depth/stencil use, ds: depth/stencil use, single and multi: "
            "samples of a colour resource\n"
          : "";
  return table.text() + legend;
}

Json formats_json(const FormatsOptions& options, const std::optional<Chip>& chip) {
  Json formats = Json::array();
  for_each_listed(options.all, [&](uint32_t format) {
    formats.push_back(format_json(format, chip.has_value()));
  });
  return {{"chip", chip ? chip_json(*chip) : Json()}, {"formats", std::move(formats)}};
}

}  // namespace

int list_formats(const FormatsOptions& options) {
  std::optional<Chip> chip;
  if (options.chip) chip = simulate_chip(options.chip, options.unknown_chip);
  // Both ask the library, which may have something to say.
  const Json json = options.json ? formats_json(options, chip) : Json();
  const std::string text = options.json ? "" : formats_text(options);
  const std::vector<std::string> warnings = distinct_texts(take_library_messages());
  print_warnings(warnings);
  print_data(options.json ? json_text("formats", json, warnings) : text);
  return kExitDone;
}

}  // namespace tool
