#include "tools/output/guess_output.h"

#include <fmt/core.h>

#include <algorithm>

#include "tools/output/layout_json.h"
#include "tools/output/text_table.h"
#include "tools/request/counted.h"
#include "tools/request/format_names.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMostRows = 40;
constexpr std::size_t kMostNames = 3;

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

std::string chips_text(const std::vector<Chip>& chips, const RequestLists& tried) {
  if (chips.size() == tried.chips.size() && chips.size() > kMostNames) {
    return fmt::format("all {}", chips.size());
  }
  return first_few(chips, [](const Chip& chip) { return fmt::format("0x{:08X}", chip.chip_id); });
}

std::string size_text(const SurfaceSize& size) {
  std::string text = fmt::format("{}x{}", size.width, size.height);
  if (size.depth != 1) text += fmt::format("x{}", size.depth);
  return text;
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
    table.add_row({size_text(request.size), fmt::format("{}", request.samples),
                   request.levels ? fmt::format("{}", *request.levels) : "-",
                   request.tiling_mode == KORVEL_TILING_TILED ? "tiled" : "linear",
                   (request.flags & LAYOUT_FLAG_UBWC) != 0 ? "yes" : "-",
                   fmt::format("{}", request.planes), fmt::format("{}", guess.pitch_bytes),
                   formats_text(guess.formats) + (guess.counts_record ? " (with the record)" : ""),
                   chips_text(guess.chips, tried)});
  }
  std::string text = table.text();
  if (guesses.found.size() > shown) {
    text += fmt::format("and {} more; --json lists them all\n", guesses.found.size() - shown);
  }
  return text;
}

Json guess_json(const Guess& guess) {
  Json formats = Json::array();
  for (const uint32_t format : guess.formats) {
    const std::string_view name = format_name(format);
    formats.push_back({{"format", format}, {"format_name", name.empty() ? Json() : Json(name)}});
  }
  Json chips = Json::array();
  for (const Chip& chip : guess.chips) {
    chips.push_back(
        {{"chip_id", chip.chip_id}, {"chip_id_hex", fmt::format("0x{:08X}", chip.chip_id)}});
  }
  Json request = request_json(guess.request);
  request.erase("format");
  request.erase("format_name");
  return {{"request", std::move(request)},
          {"image_pitch", guess.pitch_bytes},
          {"image_element_size", guess.element_bytes},
          {"counts_record", guess.counts_record},
          {"formats", std::move(formats)},
          {"chips", std::move(chips)}};
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
  return fmt::format("{}: {} of the {} tried\n\n", counted(bytes, "byte"),
                     counted(guesses.found.size(), "kind of layout"), guesses.tried) +
         rows_text(guesses, tried);
}

Json guess_json(uint64_t bytes, const Guesses& guesses) {
  Json found = Json::array();
  for (const Guess& guess : guesses.found) found.push_back(guess_json(guess));
  return {{"bytes", bytes},
          {"tried", guesses.tried},
          {"found", std::move(found)},
          {"closest_below", optional_bytes(guesses.closest_below)},
          {"closest_above", optional_bytes(guesses.closest_above)}};
}

}  // namespace tool
