#include "tools/request/chip.h"

#include <fmt/core.h>

#include <algorithm>
#include <span>

#include "simulator/hxl_sim.h"
#include "tools/output/standard_error.h"
#include "tools/request/bad_input.h"
#include "tools/request/number_text.h"
#include "tools/request/spelling.h"
#include "tools/request/text_list.h"

namespace tool {
namespace {

constexpr std::string_view kFamilyPrefix = "family-";

std::span<const korvel::ChipRow> known_rows() {
  return std::span(korvel::kChipRows).subspan(korvel::kRowFirstChip);
}

Chip known_chip(const korvel::ChipRow& row) {
  return {row.chip_id, true, row};
}

template <typename Test>
std::vector<Chip> chips_where(Test test) {
  std::vector<Chip> chips;
  for (const korvel::ChipRow& row : known_rows()) {
    if (test(row)) chips.push_back(known_chip(row));
  }
  return chips;
}

// The chip that development runs on, and others that the alignment rules know.
Chip usual_chip(uint32_t family_id) {
  const Chip chip = default_chip();
  if (chip.row.family_id == family_id) return chip;
  const std::vector<Chip> chips = chips_where([family_id](const korvel::ChipRow& row) {
    return row.family_id == family_id && row.supported &&
           (family_id != 7 || row.max_surface_pitch != 0);
  });
  return chips.front();
}

std::string id_text(uint32_t chip_id) {
  return fmt::format("0x{:08X}", chip_id);
}

// "the closest id is 0x43010000; ", or nothing where none is near.
std::string closest_id(std::string_view text) {
  static const std::vector<std::string> texts = [] {
    std::vector<std::string> ids;
    for (const korvel::ChipRow& row : known_rows()) ids.push_back(id_text(row.chip_id));
    return ids;
  }();
  const std::vector<std::string_view> names(texts.begin(), texts.end());
  const std::optional<std::string_view> likely = likely_name(text, names);
  return likely ? fmt::format("the closest id is {}; ", *likely) : std::string();
}

// All chips that the text may mean.
std::vector<Chip> chips_meant(std::string_view text, bool unknown_too) {
  if (text.starts_with(kFamilyPrefix)) {
    const std::optional<uint32_t> family = number_of(text.substr(kFamilyPrefix.size()));
    if (!family || *family < 5 || *family > 7) {
      refuse(
          "--chip: {} is no family; there are family-5, family-6 and family-7; write for example "
          "--chip family-6",
          in_quotes(text));
    }
    return {usual_chip(*family)};
  }
  const std::optional<uint32_t> number = number_of(text);
  if (!number) {
    refuse(
        "--chip: {} is no chip; write an id, a model or a revision, for example 0x43010000, or "
        "family-6",
        in_quotes(text));
  }
  const Chip chip = chip_with_id(*number);
  if (chip.has_row) return {chip};
  std::vector<Chip> chips = chips_where([number](const korvel::ChipRow& row) {
    return row.model_code == *number || row.rev_id == *number;
  });
  if (!chips.empty()) return chips;
  if (unknown_too) return {chip};
  refuse(
      "--chip: no chip has the id, model or revision {}; {}korvel-layout chips lists all, and "
      "--unknown-chip lays out for one that is not known",
      id_text(*number), closest_id(id_text(*number)));
}

}  // namespace

Chip chip_with_id(uint32_t chip_id) {
  for (const korvel::ChipRow& row : known_rows()) {
    if (row.chip_id == chip_id) return known_chip(row);
  }
  return {chip_id, false, korvel::kChipRows[korvel::kRowUnknownChip]};
}

Chip default_chip() {
  return chip_with_id(HXL_SIM_DEFAULT_CHIP);
}

std::string chip_label(const Chip& chip) {
  if (!chip.has_row) return fmt::format("0x{:08X}, unknown: laid out with defaults", chip.chip_id);
  return fmt::format("0x{:08X}, family {}, model 0x{:06X}, revision 0x{:08X}{}", chip.chip_id,
                     chip.row.family_id, chip.row.model_code, chip.row.rev_id,
                     chip.row.supported ? "" : ", not in the supported list");
}

Chip parse_chip(std::string_view text, bool unknown_too) {
  const std::vector<Chip> chips = chips_meant(text, unknown_too);
  if (chips.size() == 1) return chips.front();
  std::string ids;
  for (const Chip& chip : chips) {
    ids += (ids.empty() ? "" : ", ") + id_text(chip.chip_id);
  }
  refuse("--chip: {} chips have {}; name one of them: {}; write for example --chip {}",
         chips.size(), text, ids, id_text(chips.front().chip_id));
}

std::vector<Chip> parse_chips(std::string_view text, bool unknown_too) {
  std::vector<Chip> chips;
  const auto add = [&chips](const std::vector<Chip>& more) {
    for (const Chip& chip : more) {
      const auto same = [&chip](const Chip& other) { return other.chip_id == chip.chip_id; };
      if (std::none_of(chips.begin(), chips.end(), same)) chips.push_back(chip);
    }
  };
  for_each_item(text, [&](std::string_view item) {
    if (item == "all") {
      add(chips_where([](const korvel::ChipRow&) { return true; }));
    } else if (item == "all-families") {
      add({usual_chip(5), usual_chip(6), usual_chip(7)});
    } else {
      add(chips_meant(item, unknown_too));
    }
  });
  return chips;
}

}  // namespace tool
