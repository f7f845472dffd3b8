// A scene on a page: every rectangle, line and text where it is drawn, in pixels from the upper
// left.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tools/picture/role.h"
#include "tools/picture/scene.h"
#include "tools/picture/text_width.h"

namespace tool {

struct Area {
  double x_px = 0;
  double y_px = 0;
  double width_px = 0;
  double height_px = 0;

  [[nodiscard]] double right_px() const { return x_px + width_px; }
  [[nodiscard]] double bottom_px() const { return y_px + height_px; }
};

struct ByteRange {
  uint64_t first_byte = 0;
  uint64_t end_byte = 0;
};

// A part of a sheet or of the memory map.
struct Box {
  Area area;
  Role role = Role::gap;
  Said said;
  std::optional<ByteRange> bytes = {};   // of the memory map
  std::vector<std::string> labels = {};  // of the memory map, the longest first
};

// Lines that repeat: the borders of tiles.
struct Grid {
  Area area;
  double origin_x_px = 0;  // a crossing of two lines
  double origin_y_px = 0;
  double cell_width_px = 0;
  double cell_height_px = 0;
};

// A border without a filling.
struct Frame {
  Area area;
};

// A further slice, behind the one that is drawn.
struct SliceBehind {
  Area area;
  Role role = Role::payload;
};

// What connects a part of one bar with the same part enlarged: from a line to a longer one.
struct Lens {
  double top_left_px = 0;
  double top_right_px = 0;
  double top_px = 0;
  double bottom_left_px = 0;
  double bottom_right_px = 0;
  double bottom_px = 0;
};

enum class TextKind : uint8_t { title, heading, name, plain, caption, label, tick, warning };
enum class Anchor : uint8_t { start, middle, end };

struct Text {
  double x_px = 0;
  double baseline_px = 0;
  TextKind kind = TextKind::plain;
  Anchor anchor = Anchor::start;
  Said said;
};

struct Tick {
  double x_px = 0;
  double top_px = 0;
  double bottom_px = 0;
};

using Mark = std::variant<Box, Grid, Frame, SliceBehind, Lens, Text, Tick>;

struct Page {
  double width_px = 0;
  double height_px = 0;
  std::string title;
  Area map;  // the bar of the whole allocation
  uint64_t allocation_bytes = 0;
  std::vector<Mark> map_marks;  // the bar's boxes, texts and ticks
  std::vector<Mark> marks;      // all else, in the order of drawing
};

Page make_page(const Scene& scene);

// The size of a text of this kind.
double text_size_px(TextKind kind);
Weight text_weight(TextKind kind);

// The room that a text takes at most.
Area area_of(const Text& text);

}  // namespace tool
