#include "tools/picture/page.h"

#include <algorithm>

#include "tools/picture/map_page.h"
#include "tools/picture/page_writer.h"
#include "tools/picture/sheet_page.h"

namespace tool {
namespace {

void write_heads(PageWriter& page, const Scene& scene) {
  page.paragraph(TextKind::title, {scene.title});
  page.paragraph(TextKind::plain, {scene.chip});
  page.space(6);
  for (const Said& sentence : scene.totals) page.paragraph(TextKind::plain, sentence);
  for (const std::string& warning : scene.warnings) {
    page.paragraph(TextKind::warning, {"Warning: " + warning});
  }
}

bool shows(const Page& page, Role role) {
  const auto is_shown = [role](const Mark& mark) {
    const Box* const box = std::get_if<Box>(&mark);
    return box != nullptr && box->role == role;
  };
  return std::any_of(page.marks.begin(), page.marks.end(), is_shown) ||
         std::any_of(page.map_marks.begin(), page.map_marks.end(), is_shown);
}

// The roles that the page shows, each beside a sample of its colour.
void write_legend(PageWriter& writer, const Page& page) {
  constexpr double kSample_px = 18;
  constexpr double kGap_px = 22;
  double x_px = kMargin_px;
  double top_px = writer.y_px() + 14;
  for (std::size_t i = 0; i < kRoleWords.size(); ++i) {
    const Role role = static_cast<Role>(i);
    if (!shows(page, role)) continue;
    const std::string meaning(words_of(role).meaning);
    const double width_px =
        kSample_px + 6 + text_width_px(meaning, text_size_px(TextKind::plain)) + kGap_px;
    if (x_px + width_px > kMargin_px + kContentWidth_px + kGap_px) {
      x_px = kMargin_px;
      top_px += 20;
    }
    writer.add(Box{{x_px, top_px, kSample_px, 12}, role, {meaning}});
    writer.add(Text{x_px + kSample_px + 6, top_px + 10, TextKind::plain, Anchor::start, {meaning}});
    x_px += width_px;
  }
  writer.move_to(top_px + 20);
}

}  // namespace

Page make_page(const Scene& scene) {
  Page page;
  page.width_px = kContentWidth_px + 2 * kMargin_px;
  page.title = scene.title;
  page.allocation_bytes = scene.allocation_bytes;
  PageWriter writer(page);
  write_heads(writer, scene);
  write_sheets(writer, scene);
  write_map(writer, page, scene);
  write_legend(writer, page);
  page.height_px = writer.y_px() + kMargin_px;
  return page;
}

double text_size_px(TextKind kind) {
  switch (kind) {
    case TextKind::title: return 18;
    case TextKind::heading: return 14;
    case TextKind::name:
    case TextKind::caption:
    case TextKind::label: return 11;
    case TextKind::tick: return 10;
    case TextKind::plain:
    case TextKind::warning: return 12;
  }
  return 12;
}

Weight text_weight(TextKind kind) {
  const bool bold = kind == TextKind::title || kind == TextKind::heading || kind == TextKind::name;
  return bold ? Weight::bold : Weight::regular;
}

Area area_of(const Text& text) {
  const double size_px = text_size_px(text.kind);
  const double width_px = text_width_px(text.said.text, size_px, text_weight(text.kind));
  const double left_px = text.anchor == Anchor::start    ? text.x_px
                         : text.anchor == Anchor::middle ? text.x_px - width_px / 2
                                                         : text.x_px - width_px;
  constexpr double kAscent_em = 0.80;  // of digits and capitals
  constexpr double kHeight_em = 1.05;
  return {left_px, text.baseline_px - kAscent_em * size_px, width_px, kHeight_em * size_px};
}

}  // namespace tool
