#include "tools/picture/page_writer.h"

namespace tool {

void PageWriter::paragraph(TextKind kind, const Said& said) {
  const double size_px = text_size_px(kind);
  for (std::string& line : lines_of(said.text, kContentWidth_px, size_px, text_weight(kind))) {
    y_px_ += size_px;
    add(Text{kMargin_px, y_px_, kind, Anchor::start, {std::move(line), said.explanation}});
    y_px_ += size_px / 2;
  }
}

}  // namespace tool
