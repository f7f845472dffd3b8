#include "tools/picture/svg_text.h"

#include <fmt/core.h>
#include <fmt/format.h>

#include <iterator>

#include "tools/picture/markup.h"
#include "tools/picture/style.h"

namespace tool {
namespace {

std::string_view class_of(TextKind kind) {
  switch (kind) {
    case TextKind::title: return "title";
    case TextKind::heading: return "heading";
    case TextKind::name: return "name";
    case TextKind::plain: return "plain";
    case TextKind::caption: return "caption";
    case TextKind::label: return "label";
    case TextKind::tick: return "tick";
    case TextKind::warning: return "warning";
  }
  return "";
}

std::string_view name_of(Anchor anchor) {
  switch (anchor) {
    case Anchor::start: return "start";
    case Anchor::middle: return "middle";
    case Anchor::end: return "end";
  }
  return "";
}

std::string place_attributes(const Area& area) {
  return fmt::format(R"(x="{}" y="{}" width="{}" height="{}")", pixels(area.x_px),
                     pixels(area.y_px), pixels(area.width_px), pixels(area.height_px));
}

// Patterns of 8 x 8 pixels over the colour of a role.
std::string pattern(Role role, std::string_view path) {
  const std::string_view name = words_of(role).name;
  return fmt::format(
      R"(<pattern id="fill-{0}" width="8" height="8" patternUnits="userSpaceOnUse">)"
      R"(<rect class="base-{0}" width="8" height="8"/><path class="hatch" d="{1}"/></pattern>)"
      "\n",
      name, path);
}

std::string patterns() {
  return pattern(Role::padding_right, "M-2,2 L2,-2 M0,8 L8,0 M6,10 L10,6") +
         pattern(Role::padding_below, "M0,2 H8 M0,6 H8") +
         pattern(Role::gap, "M2,1.5 V2.5 M6,5.5 V6.5") +
         pattern(Role::shared, "M0,0 L8,8 M8,0 L0,8") + pattern(Role::slices, "M2,0 V8");
}

class SvgWriter {
 public:
  enum class Bytes : uint8_t { left_out, in_attributes };

  explicit SvgWriter(Bytes bytes) : bytes_(bytes) {}

  void operator()(const Box& box) {
    constexpr double kEdged_px = 4;
    const bool edged = box.area.width_px >= kEdged_px && box.area.height_px >= kEdged_px;
    append(R"(<rect class="{}{}" {}{}>{}</rect>)"
           "\n",
           words_of(box.role).name, edged ? " edge" : "", place_attributes(box.area),
           byte_attributes(box), title_element(box.said.text, box.said.explanation));
  }

  void operator()(const Grid& grid) {
    const std::string id = fmt::format("grid-{}", grids_++);
    append(R"(<pattern id="{}" x="{}" y="{}" width="{}" height="{}" )"
           R"(patternUnits="userSpaceOnUse"><path class="grid" d="M{},0 H0 V{}"/></pattern>)"
           "\n",
           id, pixels(grid.origin_x_px), pixels(grid.origin_y_px), pixels(grid.cell_width_px),
           pixels(grid.cell_height_px), pixels(grid.cell_width_px), pixels(grid.cell_height_px));
    append(R"svg(<rect {} fill="url(#{})" pointer-events="none"/>)svg"
           "\n",
           place_attributes(grid.area), id);
  }

  void operator()(const Frame& frame) {
    append(R"(<rect class="frame" {} pointer-events="none"/>)"
           "\n",
           place_attributes(frame.area));
  }

  void operator()(const SliceBehind& slice) {
    append(R"(<rect class="{} behind" {}/>)"
           "\n",
           words_of(slice.role).name, place_attributes(slice.area));
  }

  void operator()(const Lens& lens) {
    append(R"(<path class="lens" d="M{},{} H{} L{},{} H{} Z"/>)"
           "\n",
           pixels(lens.top_left_px), pixels(lens.top_px), pixels(lens.top_right_px),
           pixels(lens.bottom_right_px), pixels(lens.bottom_px), pixels(lens.bottom_left_px));
  }

  void operator()(const Text& text) {
    const bool told = !text.said.explanation.empty();
    append(R"(<text class="{}{}" x="{}" y="{}" text-anchor="{}">{}{}</text>)"
           "\n",
           class_of(text.kind), told ? " told" : "", pixels(text.x_px), pixels(text.baseline_px),
           name_of(text.anchor), escaped(text.said.text),
           told ? title_element(text.said.explanation, "") : "");
  }

  void operator()(const Tick& tick) {
    append(R"(<path class="tick-line" d="M{},{} V{}"/>)"
           "\n",
           pixels(tick.x_px), pixels(tick.top_px), pixels(tick.bottom_px));
  }

  template <typename... Arguments>
  void append(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    fmt::format_to(std::back_inserter(text_), format, std::forward<Arguments>(arguments)...);
  }

  void marks(const std::vector<Mark>& marks) {
    for (const Mark& mark : marks) std::visit(*this, mark);
  }

  [[nodiscard]] std::string take() { return std::move(text_); }

 private:
  static std::string title_element(const std::string& text, const std::string& explanation) {
    std::string words = text;
    if (!explanation.empty()) words += "\n\n" + explanation;
    return "<title>" + escaped(words) + "</title>";
  }

  [[nodiscard]] std::string byte_attributes(const Box& box) const {
    if (bytes_ == Bytes::left_out || !box.bytes) return {};
    return fmt::format(R"( data-first="{}" data-end="{}" data-labels="{}")", box.bytes->first_byte,
                       box.bytes->end_byte,
                       escaped(fmt::format("{}", fmt::join(box.labels, "\n"))));
  }

  std::string text_;
  Bytes bytes_;
  std::size_t grids_ = 0;
};

void write_map(SvgWriter& writer, const Page& page) {
  if (page.map_marks.empty()) return;
  writer.append(R"(<g id="map" data-x="{}" data-width="{}" data-bytes="{}">)"
                "\n",
                pixels(page.map.x_px), pixels(page.map.width_px), page.allocation_bytes);
  writer.marks(page.map_marks);
  writer(Frame{page.map});
  writer.append("</g>\n");
}

std::string element(const Page& page, SvgWriter::Bytes bytes, std::string_view style) {
  SvgWriter writer(bytes);
  writer.append(R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {0} {1}" width="{0}" )"
                R"(height="{1}" role="img" aria-labelledby="picture-title">)"
                "\n",
                pixels(page.width_px), pixels(page.height_px));
  writer.append("<title id=\"picture-title\">{}</title>\n{}<defs>\n{}</defs>\n",
                escaped("Memory layout: " + page.title), style, patterns());
  writer.append(R"(<rect class="ground" width="{}" height="{}"/>)"
                "\n",
                pixels(page.width_px), pixels(page.height_px));
  write_map(writer, page);
  writer.marks(page.marks);
  writer.append("</svg>\n");
  return writer.take();
}

}  // namespace

std::string svg_text(const Page& page) {
  return element(page, SvgWriter::Bytes::left_out,
                 fmt::format("<style>{}</style>\n", picture_style()));
}

std::string svg_element(const Page& page) {
  return element(page, SvgWriter::Bytes::in_attributes, "");
}

}  // namespace tool
