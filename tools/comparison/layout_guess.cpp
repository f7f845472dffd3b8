#include "tools/comparison/layout_guess.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <tuple>

#include "formats/format_traits.h"
#include "formats/ubwc_formats.h"
#include "tools/comparison/surface_cost.h"
#include "tools/explanation/explain_surface.h"
#include "tools/explanation/explained_record.h"
#include "tools/explanation/fault_forecast.h"
#include "tools/request/refused_request.h"

namespace tool {
namespace {

// What the layouts of a chip go by, beside its identity.
using ChipKey = std::tuple<uint32_t, std::vector<unsigned char>, int32_t, uint32_t, bool, uint8_t>;

ChipKey key_of(const Chip& chip) {
  const korvel::ChipRow& row = chip.row;
  std::vector<unsigned char> properties(sizeof row.properties);
  std::memcpy(properties.data(), &row.properties, properties.size());
  return {row.family_id,           std::move(properties), row.max_surface_pitch,
          row.extra_padding_units, row.supported,         row.ubwc};
}

std::vector<std::vector<Chip>> chips_alike(const std::vector<Chip>& chips) {
  std::map<ChipKey, std::vector<Chip>> groups;
  for (const Chip& chip : chips) groups[key_of(chip)].push_back(chip);
  std::vector<std::vector<Chip>> alike;
  alike.reserve(groups.size());
  for (auto& [key, group] : groups) alike.push_back(std::move(group));
  return alike;
}

// What the layouts of a format go by on one chip.
using FormatKey = std::tuple<std::vector<unsigned char>, uint32_t, bool, uint32_t, uint32_t>;

FormatKey key_of(uint32_t format, const korvel::ChipRow& chip) {
  korvel::FormatTraits traits = korvel::format_traits(format);
  // Planes that another format describes are told apart by it, others by nothing.
  for (uint16_t& plane : traits.plane_index) {
    if (plane == format) plane = 0;
  }
  std::vector<unsigned char> bytes(sizeof traits);
  std::memcpy(bytes.data(), &traits, bytes.size());
  const ChromaSteps chroma = chroma_steps(format);
  return {std::move(bytes), own_planes(format), korvel::ubwc_supported(chip, format),
          chroma.width_texels, chroma.height_texels};
}

std::vector<std::vector<uint32_t>> formats_alike(const std::vector<uint32_t>& formats,
                                                 const korvel::ChipRow& chip) {
  std::map<FormatKey, std::vector<uint32_t>> groups;
  for (const uint32_t format : formats) groups[key_of(format, chip)].push_back(format);
  std::vector<std::vector<uint32_t>> alike;
  alike.reserve(groups.size());
  for (auto& [key, group] : groups) alike.push_back(std::move(group));
  return alike;
}

struct LaidOut {
  uint64_t bytes;
  uint32_t pitch_bytes;
  uint32_t element_bytes;
};

bool wraps(const Explanation& explanation) {
  return std::any_of(explanation.steps.begin(), explanation.steps.end(),
                     [](const Step& step) { return step.wrapped; });
}

// Nothing for a request without a layout, for one whose numbers wrap, and for one that comes to the
// same as one without flag buffers.
std::optional<LaidOut> laid_out(const korvel::ChipRow& chip, const SurfaceRequest& request) {
  const bool flags = (request.flags & LAYOUT_FLAG_UBWC) != 0;
  if (flags && !korvel::ubwc_supported(chip, request.format)) return std::nullopt;
  if (!refused_request(request).empty() || !forecast_fault(chip, request).empty()) {
    return std::nullopt;
  }
  const Explanation explanation = explain_surface(chip, request);
  if (wraps(explanation)) return std::nullopt;
  const MemoryLayout record = explained_record(chip, request, explanation);
  const PlaneLayout& plane = record.level[0].plane[0];
  return LaidOut{record.total_size - record.size, plane.image_pitch, plane.image_element_size};
}

bool is_same_layout(const Guess& a, const Guess& b) {
  const auto key = [](const Guess& g) {
    const SurfaceSize& size = g.request.size;
    return std::tuple(size.width, size.height, size.depth, g.request.samples, g.request.tiling_mode,
                      g.request.flags, g.request.levels, g.request.planes, g.pitch_bytes,
                      g.element_bytes, g.counts_record);
  };
  return key(a) == key(b);
}

class Guesser {
 public:
  Guesser(uint64_t bytes, const RequestLists& lists) : bytes_(bytes), lists_(lists) {}

  Guesses guess(const std::function<void(std::size_t, std::size_t)>& progress) {
    const std::vector<std::vector<Chip>> chips = chips_alike(lists_.chips);
    for (std::size_t i = 0; i < chips.size(); ++i) {
      for (const std::vector<uint32_t>& formats :
           formats_alike(lists_.formats, chips[i].front().row)) {
        try_all({formats, chips[i]});
        progress(i, chips.size());
      }
    }
    return std::move(guesses_);
  }

 private:
  void try_all(const GuessedGroup& group) {
    const Chip& chip = group.chips.front();
    RequestLists one = lists_;
    one.chips = {chip};
    one.formats = {group.formats.front()};
    for (const ChipRequest& asked : all_requests(one)) {
      // No layout is smaller than its texels, but for those whose numbers wrap.
      const uint64_t payload = payload_bytes(asked.request);
      if (payload > bytes_ && guesses_.closest_above && payload >= *guesses_.closest_above)
        continue;
      const std::optional<LaidOut> layout = laid_out(chip.row, asked.request);
      if (!layout) continue;
      ++guesses_.tried;
      compare(*layout, asked, group);
    }
  }

  void compare(const LaidOut& layout, const ChipRequest& asked, const GuessedGroup& group) {
    const bool with_record = layout.bytes + sizeof(MemoryLayout) == bytes_;
    if (layout.bytes == bytes_ || with_record) {
      add({asked.request, layout.pitch_bytes, layout.element_bytes, with_record, {}}, group);
    } else if (layout.bytes < bytes_) {
      guesses_.closest_below = std::max(guesses_.closest_below.value_or(0), layout.bytes);
    } else {
      guesses_.closest_above =
          std::min(guesses_.closest_above.value_or(layout.bytes), layout.bytes);
    }
  }

  void add(const Guess& guess, const GuessedGroup& group) {
    auto known = std::find_if(guesses_.found.begin(), guesses_.found.end(),
                              [&guess](const Guess& g) { return is_same_layout(g, guess); });
    if (known == guesses_.found.end()) {
      guesses_.found.push_back(guess);
      known = guesses_.found.end() - 1;
    }
    known->groups.push_back(group);
  }

  uint64_t bytes_;
  const RequestLists& lists_;
  Guesses guesses_;
};

bool has_same_chips(const GuessedGroup& a, const GuessedGroup& b) {
  return std::equal(a.chips.begin(), a.chips.end(), b.chips.begin(), b.chips.end(),
                    [](const Chip& x, const Chip& y) { return x.chip_id == y.chip_id; });
}

// First the formats of the same chips, then the chips of the same formats.
void merge_groups(std::vector<GuessedGroup>& groups) {
  std::vector<GuessedGroup> by_chips;
  for (const GuessedGroup& group : groups) {
    const auto same = std::find_if(by_chips.begin(), by_chips.end(), [&group](const auto& known) {
      return has_same_chips(known, group);
    });
    if (same == by_chips.end()) {
      by_chips.push_back(group);
    } else {
      same->formats.insert(same->formats.end(), group.formats.begin(), group.formats.end());
    }
  }
  std::map<std::vector<uint32_t>, std::vector<Chip>> by_formats;
  for (GuessedGroup& group : by_chips) {
    std::sort(group.formats.begin(), group.formats.end());
    std::vector<Chip>& chips = by_formats[group.formats];
    chips.insert(chips.end(), group.chips.begin(), group.chips.end());
  }
  groups.clear();
  for (auto& [formats, chips] : by_formats) {
    std::sort(chips.begin(), chips.end(),
              [](const Chip& a, const Chip& b) { return a.chip_id < b.chip_id; });
    groups.push_back({formats, std::move(chips)});
  }
}

}  // namespace

Guesses guess_layouts(uint64_t bytes, const RequestLists& lists,
                      const std::function<void(std::size_t, std::size_t)>& progress) {
  Guesses guesses = Guesser(bytes, lists).guess(progress);
  for (Guess& guess : guesses.found) merge_groups(guess.groups);
  return guesses;
}

std::vector<SurfaceSize> usual_sizes() {
  std::vector<SurfaceSize> sizes = {
      {320, 240, 1},   {352, 288, 1},   {640, 360, 1},   {640, 480, 1},   {720, 480, 1},
      {720, 576, 1},   {800, 600, 1},   {854, 480, 1},   {960, 540, 1},   {1024, 768, 1},
      {1280, 720, 1},  {1280, 800, 1},  {1280, 1024, 1}, {1366, 768, 1},  {1440, 900, 1},
      {1600, 900, 1},  {1600, 1200, 1}, {1680, 1050, 1}, {1920, 1080, 1}, {1920, 1088, 1},
      {1920, 1200, 1}, {2160, 1440, 1}, {2560, 1440, 1}, {2560, 1600, 1}, {2736, 1824, 1},
      {2880, 1920, 1}, {3000, 2000, 1}, {3440, 1440, 1}, {3840, 2160, 1}, {4096, 2160, 1},
      {5120, 2880, 1}, {7680, 4320, 1}};
  for (int32_t side = 16; side <= 16384; side *= 2) sizes.push_back({side, side, 1});
  return sizes;
}

}  // namespace tool
