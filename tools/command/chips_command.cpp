#include "tools/command/chips_command.h"

#include <fmt/core.h>

#include <array>
#include <cstddef>
#include <iterator>
#include <nlohmann/json.hpp>

#include "identify/chip_row.h"
#include "identify/hardware_data.h"
#include "tools/command/chip_columns.h"
#include "tools/command/exit_codes.h"
#include "tools/output/json_output.h"
#include "tools/output/standard_output.h"
#include "tools/output/text_table.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

// A chip with what its model and its family add to it.
struct WholeChip {
  korvel::ChipData chip;
  korvel::ModelData model;
  korvel::FamilyData family;
};

constexpr auto kWholeChips = [] {
  std::array<WholeChip, std::size(korvel::kChipData)> chips{};
  for (std::size_t i = 0; i < chips.size(); ++i) {
    const korvel::ChipData& chip = korvel::kChipData[i];
    chips[i] = {chip, korvel::model_data(chip.model_code), korvel::family_data(chip.family_id)};
  }
  return chips;
}();

Json columns_json(const korvel::ChipColumns& columns) {
  Json json;
  for (const ChipColumn& column : kChipColumns) json[column.name] = columns.*column.member;
  return json;
}

Json chip_json(const WholeChip& whole) {
  const auto& [chip, model, family] = whole;
  Json json;
  add_id(json, "chip_id", chip.chip_id);
  json["family_id"] = chip.family_id;
  add_model_code(json, chip.model_code);
  add_id(json, "rev_id", chip.rev_id);
  json["columns"] = columns_json(chip.columns);
  json["supported"] = chip.supported;
  json["ubwc_never"] = chip.ubwc.never;
  json["ubwc_depth_excluded"] = chip.ubwc.depth_excluded;
  json["ubwc_yuv_a"] = chip.ubwc.yuv_a;
  json["ubwc_yuv_b"] = chip.ubwc.yuv_b;
  json["ubwc_yuv16"] = chip.ubwc.yuv16;
  json["yuv16_ext"] = model.yuv16_ext;
  json["p016"] = model.p016;
  json["family5_sample_excluded"] = model.family5_sample_excluded;
  json["max_surface_pitch"] = model.max_surface_pitch;
  json["extra_padding_units"] = family.extra_padding_units;
  json["extra_padding_factor"] = model.extra_padding_factor;
  return json;
}

// The letter of what holds, a dot for what does not.
char mark(bool holds, char letter) {
  return holds ? letter : '.';
}

std::string column_marks(const korvel::ChipColumns& columns) {
  std::string marks;
  for (const ChipColumn& column : kChipColumns) {
    marks += mark(columns.*column.member, column.letter);
  }
  return marks;
}

std::string ubwc_marks(const korvel::ChipUbwc& ubwc) {
  return {mark(ubwc.never, 'N'), mark(ubwc.depth_excluded, 'D'), mark(ubwc.yuv_a, 'A'),
          mark(ubwc.yuv_b, 'B'), mark(ubwc.yuv16, 'Y')};
}

std::string model_marks(const korvel::ModelData& model) {
  return {mark(model.yuv16_ext, 'Y'), mark(model.p016, 'P'),
          mark(model.family5_sample_excluded, 'X')};
}

constexpr const char kOtherLetters[] =
    "ubwc     N ubwc_never, D ubwc_depth_excluded, A ubwc_yuv_a, B ubwc_yuv_b, Y ubwc_yuv16\n"
    "model    Y yuv16_ext, P p016, X family5_sample_excluded\n"
    "padding  units of the family x the model's factor\n"
    "A dot stands for what does not hold.\n";

std::string legend() {
  std::string text;
  for (const ChipColumn& column : kChipColumns) {
    text += fmt::format("{}{} {}\n", text.empty() ? "\ncolumns  " : "         ", column.letter,
                        column.name);
  }
  return text + kOtherLetters;
}

std::string chips_text() {
  TextTable table({{"chip id", "", TableColumn::left},
                   {"family", ""},
                   {"model code", "", TableColumn::left},
                   {"revision id", "", TableColumn::left},
                   {"supported", "", TableColumn::left},
                   {"columns", "", TableColumn::left},
                   {"ubwc", "", TableColumn::left},
                   {"model", "", TableColumn::left},
                   {"max pitch", "elements"},
                   {"padding", "units"}});
  for (const auto& [chip, model, family] : kWholeChips) {
    table.add_row({fmt::format("0x{:08X}", chip.chip_id), fmt::format("{}", chip.family_id),
                   fmt::format("0x{:06X}", chip.model_code), fmt::format("0x{:08X}", chip.rev_id),
                   chip.supported ? "yes" : "no", column_marks(chip.columns), ubwc_marks(chip.ubwc),
                   model_marks(model),
                   model.max_surface_pitch != 0 ? fmt::format("{}", model.max_surface_pitch) : "-",
                   fmt::format("{} x {}", family.extra_padding_units, model.extra_padding_factor)});
  }
  return table.text() + legend();
}

Json chips_json() {
  Json chips = Json::array();
  for (const WholeChip& whole : kWholeChips) chips.push_back(chip_json(whole));
  return {{"chips", std::move(chips)}};
}

}  // namespace

int list_chips(bool json) {
  print_data(json ? json_text("chips", chips_json(), {}) : chips_text());
  return kExitDone;
}

}  // namespace tool
