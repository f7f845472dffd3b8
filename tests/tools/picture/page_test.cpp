// Pages: texts stand beside each other and on the page, and files stay small.
#include "tools/picture/page.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/tools/picture/every_layout.h"
#include "tools/picture/html_text.h"
#include "tools/picture/svg_text.h"

namespace picture_test {
namespace {

using tool::Area;
using tool::Box;
using tool::Mark;
using tool::Page;
using tool::Text;

template <typename Kind>
std::vector<Kind> all_of(const Page& page) {
  std::vector<Kind> found;
  for (const std::vector<Mark>* marks : {&page.map_marks, &page.marks}) {
    for (const Mark& mark : *marks) {
      if (const Kind* const kind = std::get_if<Kind>(&mark)) found.push_back(*kind);
    }
  }
  return found;
}

bool overlap(const Area& a, const Area& b) {
  return a.x_px < b.right_px() && b.x_px < a.right_px() && a.y_px < b.bottom_px() &&
         b.y_px < a.bottom_px();
}

bool is_inside(const Area& area, const Page& page) {
  constexpr double kRounding_px = 0.01;
  return area.x_px >= -kRounding_px && area.y_px >= -kRounding_px &&
         area.right_px() <= page.width_px + kRounding_px &&
         area.bottom_px() <= page.height_px + kRounding_px;
}

void expect_texts_apart(const Page& page, const std::string& request) {
  std::vector<Text> texts = all_of<Text>(page);
  std::sort(texts.begin(), texts.end(),
            [](const Text& a, const Text& b) { return a.baseline_px < b.baseline_px; });
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const Area area = tool::area_of(texts[i]);
    ASSERT_TRUE(is_inside(area, page)) << request << ": " << texts[i].said.text;
    for (std::size_t j = i + 1; j < texts.size(); ++j) {
      if (texts[j].baseline_px > texts[i].baseline_px + 24) break;
      ASSERT_FALSE(overlap(area, tool::area_of(texts[j])))
          << request << ": \"" << texts[i].said.text << "\" and \"" << texts[j].said.text << "\"";
    }
  }
}

TEST(Pages, HaveRoomForEverything) {
  std::size_t boxes = 0;
  std::size_t texts = 0;
  std::size_t largest_bytes = 0;
  const std::size_t layouts =
      for_every_layout([&](const tool::SurfaceRequest& request, const Pictured& picture) {
        const std::string label = tool::request_label(request);
        const Page page = tool::make_page(picture.scene);
        expect_texts_apart(page, label);
        texts += all_of<Text>(page).size();
        for (const Box& box : all_of<Box>(page)) {
          ++boxes;
          ASSERT_TRUE(is_inside(box.area, page)) << label << ": " << box.said.text;
          ASSERT_GT(box.area.width_px, 0) << label << ": " << box.said.text;
          ASSERT_GT(box.area.height_px, 0) << label << ": " << box.said.text;
          ASSERT_FALSE(box.said.text.empty()) << label;
        }
        const std::size_t bytes = tool::svg_text(page).size();
        largest_bytes = std::max(largest_bytes, bytes);
        ASSERT_LT(bytes, 2'000'000U) << label;
      });
  EXPECT_GE(layouts, kLeastLayouts);
  EXPECT_GE(boxes, 10 * kLeastLayouts);
  EXPECT_GE(texts, 15 * kLeastLayouts);
  EXPECT_GE(largest_bytes, 100'000U);
  RecordProperty("largest_svg_bytes", static_cast<int>(largest_bytes));
}

// The main bar is as wide as the page's content: 976 pixels from 32 on. 36864 of 8392704 bytes are
// flags: 976 x 36864 / 8392704 = 4.287.
TEST(Pages, DrawTheMapToScale) {
  const Page page =
      tool::make_page(pictured(request_of(28, {1900, 1080, 1}, LAYOUT_FLAG_UBWC)).scene);
  std::vector<Box> bar;
  for (const Mark& mark : page.map_marks) {
    if (const Box* const box = std::get_if<Box>(&mark)) bar.push_back(*box);
  }
  ASSERT_EQ(bar.size(), 2U);
  EXPECT_NEAR(bar[0].area.x_px, 32, 1e-9);
  EXPECT_NEAR(bar[0].area.width_px, 4.287, 0.001);
  EXPECT_NEAR(bar[1].area.right_px(), 32 + 976, 1e-9);
  EXPECT_NEAR(bar[0].area.right_px(), bar[1].area.x_px, 1e-9);
}

// 1920 x 1088 elements in at most 560 x 330 pixels: 560 / 1920 of a pixel an element, the payload
// of 1900 x 1080 being 554.17 x 315 of them.
TEST(Pages, DrawImagesToScale) {
  const Page page =
      tool::make_page(pictured(request_of(28, {1900, 1080, 1}, LAYOUT_FLAG_UBWC)).scene);
  const std::vector<Box> boxes = all_of<Box>(page);
  const auto payload = std::find_if(boxes.begin(), boxes.end(), [](const Box& box) {
    return box.role == tool::Role::payload && !box.bytes;
  });
  ASSERT_NE(payload, boxes.end());
  EXPECT_NEAR(payload->area.width_px, 554.17, 0.01);
  EXPECT_NEAR(payload->area.height_px, 315, 0.01);
  const std::vector<tool::Grid> grids = all_of<tool::Grid>(page);
  ASSERT_FALSE(grids.empty());
  // Tiles of 64 x 16 elements are 18.67 x 4.67 pixels, less than 8: two to a side.
  EXPECT_NEAR(grids[0].cell_width_px, 37.33, 0.01);
  EXPECT_NEAR(grids[0].cell_height_px, 9.33, 0.01);
}

// 33554432 x 3: a row is as high as can be seen, and the page says so.
TEST(Pages, SayWhereTheyAreNotToScale) {
  const Page page =
      tool::make_page(pictured(request_of(28, {33554432, 3, 1}, 0, KORVEL_TILING_LINEAR)).scene);
  const std::vector<Text> texts = all_of<Text>(page);
  EXPECT_TRUE(std::any_of(texts.begin(), texts.end(), [](const Text& text) {
    return text.said.text.find("Not to scale: rows are drawn") != std::string::npos;
  }));
}

// Whatever words a scene has, they end up as text.
TEST(Markup, KeepsWordsApartFromTags) {
  tool::Scene scene = pictured(request_of(28, {64, 64, 1})).scene;
  const std::string hostile = "<script>alert('x')</script> & \"]]>\" \x01";
  scene.title = hostile;
  scene.chip = hostile;
  scene.warnings = {hostile};
  scene.bands[0].said = {hostile, hostile};
  scene.bands[0].labels = {hostile, "<b>"};
  scene.sheets[0].name = hostile;
  const Page page = tool::make_page(scene);
  const std::string svg = tool::svg_text(page);
  const std::string html = tool::html_text(page);
  for (const std::string& text : {svg, html}) {
    EXPECT_EQ(text.find("alert('x')"), std::string::npos);
    EXPECT_EQ(text.find("<b>"), std::string::npos);
    EXPECT_EQ(text.find("]]>"), std::string::npos);
    EXPECT_EQ(text.find('\x01'), std::string::npos);
    EXPECT_NE(text.find("&lt;script&gt;alert(&#39;x&#39;)"), std::string::npos);
  }
  EXPECT_EQ(svg.find("<script"), std::string::npos);
  EXPECT_EQ(html.find("<script"), html.rfind("<script"));  // its own
}

}  // namespace
}  // namespace picture_test
