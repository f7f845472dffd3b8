#include "tools/output/guess_output.h"

#include <fmt/core.h>

#include <algorithm>
#include <set>

#include "tools/output/json_output.h"
#include "tools/output/layout_json.h"
#include "tools/output/text_table.h"
#include "tools/request/counted.h"
#include "tools/request/format_names.h"
#include "tools/request/surface_size.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMostRows = 40;
constexpr std::size_t kMostNames = 3;

std::vector<uint32_t> all_formats(const Guess& guess) {
  std::set<uint32_t> formats;
  for (const GuessedGroup& group : guess.groups) {
    formats.insert(group.formats.begin(), group.formats.end());
  }
  return {formats.begin(), formats.end()};
}

std::vector<uint32_t> all_chip_ids(const Guess& guess) {
  std::set<uint32_t> ids;
  for (const GuessedGroup& group : guess.groups) {
    for (const Chip& chip : group.chips) ids.insert(chip.chip_id);
  }
  return {ids.begin(), ids.end()};
}

// The first few of a list: "28, 29, 30 and 12 more".
template <typename Item, typename Name>
std::string first_few(const std::vector<Item>& items, Name name) {
  std::string text;
  const std::size_t shown = std::min(items.size(), kMostNames);
  for (std::size_t i = 0; i < shown; ++i) {
    text += fmt::format("{}{}", text.empty() ? "" : ", ", name(items[i]));
  }
  if (items.size() > shown) text += fmt::format(" and {} more", items.size() - shown);
  return text;
}

std::string formats_text(const std::vector<uint32_t>& formats) {
  return first_few(formats, [](uint32_t format) {
    const std::string_view name = format_name(format);
    return name.empty() ? fmt::format("{}", format) : std::string(name);
  });
}

std::string chips_text(const std::vector<uint32_t>& ids, const RequestLists& tried) {
  if (ids.size() == tried.chips.size() && ids.size() > kMostNames) {
    return fmt::format("all {}", ids.size());
  }
  return first_few(ids, [](uint32_t id) { return fmt::format("0x{:08X}", id); });
}

std::string rows_text(const Guesses& guesses, const RequestLists& tried) {
  TextTable table({{"size", "texels", TableColumn::left},
                   {"samples", ""},
                   {"levels", ""},
                   {"tiling", "", TableColumn::left},
                   {"ubwc", "", TableColumn::left},
                   {"planes", ""},
                   {"pitch", "bytes"},
                   {"formats", "", TableColumn::left},
                   {"chips", "", TableColumn::left}});
  const std::size_t shown = std::min(guesses.found.size(), kMostRows);
  for (std::size_t i = 0; i < shown; ++i) {
    const Guess& guess = guesses.found[i];
    const SurfaceRequest& request = guess.request;
    table.add_row(
        {surface_size_text(request.size), fmt::format("{}", request.samples),
         request.levels ? fmt::format("{}", *request.levels) : "-",
         request.tiling_mode == KORVEL_TILING_TILED ? "tiled" : "linear",
         (request.flags & LAYOUT_FLAG_UBWC) != 0 ? "yes" : "-", fmt::format("{}", request.planes),
         fmt::format("{}", guess.pitch_bytes),
         formats_text(all_formats(guess)) + (guess.counts_record ? " (with the record)" : ""),
         chips_text(all_chip_ids(guess), tried) + (guess.groups.size() > 1 ? " *" : "")});
  }
  std::string text = table.text();
  if (guesses.found.size() > shown) {
    text += fmt::format("and {} more; --json lists them all\n", guesses.found.size() - shown);
  }
  const bool by_chip = std::any_of(guesses.found.begin(), guesses.found.end(),
                                   [](const Guess& guess) { return guess.groups.size() > 1; });
  if (by_chip) text += "\n* not every chip lays out every format so; --json says which\n";
  return text;
}

Json group_json(const GuessedGroup& group) {
  Json formats = Json::array();
  for (const uint32_t format : group.formats) add_format(formats.emplace_back(), "format", format);
  Json chips = Json::array();
  for (const Chip& chip : group.chips) add_id(chips.emplace_back(), "chip_id", chip.chip_id);
  return {{"formats", std::move(formats)}, {"chips", std::move(chips)}};
}

Json found_json(const Guess& guess) {
  Json groups = Json::array();
  for (const GuessedGroup& group : guess.groups) groups.push_back(group_json(group));
  Json request = request_json(guess.request);
  request.erase("format");
  request.erase("format_name");
  return {{"request", std::move(request)},
          {"image_pitch", guess.pitch_bytes},
          {"image_element_size", guess.element_bytes},
          {"counts_record", guess.counts_record},
          {"groups", std::move(groups)}};
}

Json optional_bytes(std::optional<uint64_t> bytes) {
  return bytes ? Json(*bytes) : Json();
}

std::string closest_text(uint64_t bytes, const Guesses& guesses) {
  std::string text;
  if (guesses.closest_below) {
    text += fmt::format("; the closest below has {}, {} less", *guesses.closest_below,
                        bytes - *guesses.closest_below);
  }
  if (guesses.closest_above) {
    text += fmt::format("; the closest above has {}, {} more", *guesses.closest_above,
                        *guesses.closest_above - bytes);
  }
  return text;
}

}  // namespace

std::string guess_text(uint64_t bytes, const Guesses& guesses, const RequestLists& tried) {
  if (guesses.found.empty()) {
    return fmt::format("None of {} comes to {}{}\n", counted(guesses.tried, "layout"),
                       counted(bytes, "byte"), closest_text(bytes, guesses));
  }
  return fmt::format("{} {} to {}\n\n", counted(guesses.found.size(), "layout"),
                     guesses.found.size() == 1 ? "comes" : "come", counted(bytes, "byte")) +
         rows_text(guesses, tried);
}

Json guess_json(uint64_t bytes, const Guesses& guesses) {
  Json found = Json::array();
  for (const Guess& guess : guesses.found) found.push_back(found_json(guess));
  return {{"bytes", bytes},
          {"tried", guesses.tried},
          {"found", std::move(found)},
          {"closest_below", optional_bytes(guesses.closest_below)},
          {"closest_above", optional_bytes(guesses.closest_above)}};
}

}  // namespace tool
