// Fills a page from top to bottom.
#pragma once

#include "tools/picture/page.h"

namespace tool {

inline constexpr double kMargin_px = 32;
inline constexpr double kContentWidth_px = 976;

class PageWriter {
 public:
  explicit PageWriter(Page& page) : page_(page) {}

  [[nodiscard]] double y_px() const { return y_px_; }
  void move_to(double y_px) { y_px_ = y_px; }
  void space(double height_px) { y_px_ += height_px; }

  void add(Mark mark) { page_.marks.push_back(std::move(mark)); }

  // Lines below each other; the explanation belongs to all of them.
  void paragraph(TextKind kind, const Said& said);

 private:
  Page& page_;
  double y_px_ = kMargin_px;
};

}  // namespace tool
