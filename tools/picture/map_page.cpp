#include "tools/picture/map_page.h"

#include <fmt/core.h>

#include <algorithm>
#include <bit>

#include "tools/request/counted.h"

namespace tool {
namespace {

constexpr double kBar_px = 46;
constexpr double kTickRoom_px = 22;   // ticks and their numbers
constexpr double kLens_px = 22;       // between the numbers of one bar and the next bar
constexpr double kColumnGap_px = 24;  // between two bars beside each other
constexpr double kNarrow_px = 14;     // bands below this are shown again, enlarged,
constexpr double kHidden_px = 6;      // where one of them is below this

struct Bar {
  Area area;
  ByteRange range;

  [[nodiscard]] double bytes() const {
    return static_cast<double>(range.end_byte - range.first_byte);
  }
  // A byte outside the range counts as its nearest border.
  [[nodiscard]] double x_px(uint64_t byte) const {
    const uint64_t inside = std::clamp(byte, range.first_byte, range.end_byte);
    return area.x_px + area.width_px * static_cast<double>(inside - range.first_byte) / bytes();
  }
  [[nodiscard]] double width_px(const MapPart& part) const {
    return x_px(part.end_byte) - x_px(part.first_byte);
  }
};

// Labels that fit are drawn: the longest of each band.
void add_label(std::vector<Mark>& marks, const Band& band, const Area& area) {
  constexpr double kSides_px = 8;
  for (const std::string& label : band.labels) {
    if (text_width_px(label, text_size_px(TextKind::label)) + kSides_px > area.width_px) continue;
    marks.emplace_back(Text{area.x_px + area.width_px / 2,
                            area.y_px + area.height_px / 2 + 4,
                            TextKind::label,
                            Anchor::middle,
                            {label}});
    return;
  }
}

void add_bands(std::vector<Mark>& marks, const Bar& bar, const Scene& scene) {
  for (const Band& band : scene.bands) {
    const double width_px = bar.width_px(band.part);
    if (width_px <= 0) continue;
    const Area area = {bar.x_px(band.part.first_byte), bar.area.y_px, width_px, kBar_px};
    marks.emplace_back(Box{area, band.part.role, band.said,
                           ByteRange{band.part.first_byte, band.part.end_byte}, band.labels});
    add_label(marks, band, area);
  }
}

// ---- The axis ----

std::string offset_words(uint64_t byte) {
  return fmt::format("0x{:X}", byte);
}

void add_tick(std::vector<Mark>& marks, const Bar& bar, uint64_t byte, Anchor anchor) {
  const double x_px = bar.x_px(byte);
  const double bottom_px = bar.area.bottom_px();
  marks.emplace_back(Tick{x_px, bottom_px, bottom_px + 5});
  marks.emplace_back(Text{x_px,
                          bottom_px + 16,
                          TextKind::tick,
                          anchor,
                          {offset_words(byte), fmt::format("offset {}", counted(byte, "byte"))}});
}

double offset_width_px(uint64_t byte) {
  return text_width_px(offset_words(byte), text_size_px(TextKind::tick));
}

// A power of two, so that numbers are round in hexadecimal, and so large that they do not touch.
uint64_t tick_step_bytes(const Bar& bar) {
  const double width_px = offset_width_px(bar.range.end_byte) + 24;
  const double least_bytes = bar.bytes() * width_px / bar.area.width_px;
  uint64_t step_bytes = 1;
  while (static_cast<double>(step_bytes) < least_bytes) step_bytes *= 2;
  return step_bytes;
}

void add_axis(std::vector<Mark>& marks, const Bar& bar) {
  const ByteRange& range = bar.range;
  add_tick(marks, bar, range.first_byte, Anchor::start);
  add_tick(marks, bar, range.end_byte, Anchor::end);
  const double width_px = offset_width_px(range.end_byte);
  const double first_px = bar.area.x_px + offset_width_px(range.first_byte) + 8;
  const double last_px = bar.area.right_px() - width_px - 8;
  const uint64_t step_bytes = tick_step_bytes(bar);
  for (uint64_t i = range.first_byte / step_bytes + 1; i <= (range.end_byte - 1) / step_bytes;
       ++i) {
    const double x_px = bar.x_px(i * step_bytes);
    if (x_px - width_px / 2 < first_px || x_px + width_px / 2 > last_px) continue;
    add_tick(marks, bar, i * step_bytes, Anchor::middle);
  }
}

// ---- What is too narrow ----

// Bands that follow each other.
struct Run {
  std::size_t first = 0;
  std::size_t end = 0;
};

std::vector<Run> narrow_runs(const Bar& bar, const std::vector<Band>& bands) {
  std::vector<Run> runs;
  for (std::size_t i = 0; i < bands.size(); ++i) {
    Run run = {i, i};
    bool hidden = false;
    for (; run.end < bands.size(); ++run.end) {
      const double width_px = bar.width_px(bands[run.end].part);
      if (width_px <= 0 || width_px >= kNarrow_px) break;
      hidden = hidden || width_px < kHidden_px;
    }
    if (hidden) runs.push_back(run);
    i = std::max(i, run.end);
  }
  return runs;
}

// Those with the most bands, in the order of their offsets.
std::vector<Run> largest_runs(std::vector<Run> runs, std::size_t most) {
  const auto bands = [](const Run& run) { return run.end - run.first; };
  std::stable_sort(runs.begin(), runs.end(),
                   [&](const Run& a, const Run& b) { return bands(a) > bands(b); });
  if (runs.size() > most) runs.resize(most);
  std::sort(runs.begin(), runs.end(), [](const Run& a, const Run& b) { return a.first < b.first; });
  return runs;
}

// The run with a little of what lies beside it.
ByteRange range_of(const Run& run, const Bar& bar, const std::vector<Band>& bands) {
  const uint64_t first = std::max(bands[run.first].part.first_byte, bar.range.first_byte);
  const uint64_t end = std::min(bands[run.end - 1].part.end_byte, bar.range.end_byte);
  const uint64_t beside = run.end - run.first == 1 ? (end - first) / 2 : (end - first) / 16;
  return {first - std::min(beside, first - bar.range.first_byte),
          end + std::min(beside, bar.range.end_byte - end)};
}

class EnlargedBars {
 public:
  EnlargedBars(Page& page, const Scene& scene) : page_(page), scene_(scene) {}

  // Below `bar`, whose own marks are `marks`. Returns where the lowest one ends.
  double write(const Bar& bar, std::vector<Mark>& marks, std::size_t columns, int depth) {
    double bottom_px = bar.area.bottom_px() + kTickRoom_px;
    if (depth == 0) return bottom_px;
    const std::vector<Run> runs = largest_runs(narrow_runs(bar, scene_.bands), columns);
    const auto count = static_cast<double>(runs.size());
    double x_px = bar.area.x_px;
    for (const Run& run : runs) {
      const ByteRange range = range_of(run, bar, scene_.bands);
      if (static_cast<double>(range.end_byte - range.first_byte) * 2 > bar.bytes()) continue;
      const double width_px = (bar.area.width_px - (count - 1) * kColumnGap_px) / count;
      const Bar large = {{x_px, bar.area.bottom_px() + kTickRoom_px + kLens_px, width_px, kBar_px},
                         range};
      marks.emplace_back(Lens{bar.x_px(range.first_byte), bar.x_px(range.end_byte),
                              bar.area.bottom_px(), large.area.x_px, large.area.right_px(),
                              large.area.y_px});
      add_bands(page_.marks, large, scene_);
      add_axis(page_.marks, large);
      page_.marks.emplace_back(Frame{large.area});
      bottom_px = std::max(bottom_px, write(large, page_.marks, 1, depth - 1));
      x_px += width_px + kColumnGap_px;
    }
    return bottom_px;
  }

 private:
  Page& page_;
  const Scene& scene_;
};

}  // namespace

void write_map(PageWriter& writer, Page& page, const Scene& scene) {
  writer.paragraph(TextKind::heading, {"The allocation, from its first byte to its last"});
  if (scene.allocation_bytes == 0) {
    writer.paragraph(TextKind::plain, {"It has 0 bytes: there is nothing to draw."});
    return;
  }
  writer.paragraph(TextKind::plain, {"The numbers below are offsets in bytes."});
  writer.space(6);
  const Bar bar = {{kMargin_px, writer.y_px(), kContentWidth_px, kBar_px},
                   {0, scene.allocation_bytes}};
  page.map = bar.area;
  add_bands(page.map_marks, bar, scene);
  add_axis(page.map_marks, bar);
  constexpr std::size_t kColumns = 2;
  constexpr int kDepth = 2;
  EnlargedBars enlarged(page, scene);
  writer.move_to(enlarged.write(bar, page.map_marks, kColumns, kDepth));
}

}  // namespace tool
