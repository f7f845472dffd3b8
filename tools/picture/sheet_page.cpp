#include "tools/picture/sheet_page.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>

namespace tool {
namespace {

// Pixels of a cell. Both sides are the same unless a sheet would be too thin to see.
struct Scale {
  double x_px = 1;
  double y_px = 1;
};

constexpr double kThinnest_px = 24;
constexpr double kSheetGap_px = 24;
constexpr double kRowGap_px = 14;  // between cells below each other
constexpr double kLine_px = 15;
constexpr double kBehind_px = 5;  // how far a further slice looks out
constexpr uint64_t kMostBehind = 2;

// A rectangle of a sheet's cells.
struct Window {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
};

Window whole(const Sheet& sheet) {
  return {0, 0, static_cast<double>(sheet.width), static_cast<double>(sheet.height)};
}

// A drawn sheet with its words.
struct Cell {
  const Sheet& sheet;
  Window window;
  Scale scale;
  std::string name;
  std::vector<Said> captions;

  [[nodiscard]] double drawn_width_px() const { return std::max(window.width * scale.x_px, 1.0); }
  [[nodiscard]] double drawn_height_px() const { return std::max(window.height * scale.y_px, 1.0); }
  // Further slices that look out from behind: none where they would hide how small a sheet is.
  [[nodiscard]] uint64_t slices_behind() const {
    const bool small = std::min(drawn_width_px(), drawn_height_px()) < kThinnest_px;
    return small ? 0 : std::min(sheet.slices - 1, kMostBehind);
  }
  [[nodiscard]] double behind_px() const {
    return kBehind_px * static_cast<double>(slices_behind());
  }
};

double cell_width_px(const Cell& cell) {
  double width_px = cell.drawn_width_px() + cell.behind_px();
  const auto hold = [&width_px](std::string_view text, TextKind kind) {
    width_px = std::max(width_px, text_width_px(text, text_size_px(kind), text_weight(kind)));
  };
  hold(cell.name, TextKind::name);
  for (const Said& caption : cell.captions) hold(caption.text, TextKind::caption);
  return width_px;
}

double cell_height_px(const Cell& cell) {
  const auto lines = static_cast<double>(1 + cell.captions.size());
  return cell.behind_px() + cell.drawn_height_px() + 4 + lines * kLine_px;
}

// ---- Scales ----

struct Room {
  double width_px;
  double height_px;
  double most_px;  // of a cell
};

Scale scale_for(const std::vector<const Sheet*>& sheets, Room room) {
  double width = 1;
  double height = 1;
  for (const Sheet* sheet : sheets) {
    width = std::max(width, static_cast<double>(sheet->width));
    height = std::max(height, static_cast<double>(sheet->height));
  }
  const double scale_px = std::min({room.width_px / width, room.height_px / height, room.most_px});
  return {std::max(scale_px, std::min(kThinnest_px / width, room.most_px)),
          std::max(scale_px, std::min(kThinnest_px / height, room.most_px))};
}

bool is_to_scale(Scale scale) {
  return scale.x_px == scale.y_px;
}

std::string stretch_sentence(Scale scale, const char* across, const char* down) {
  if (is_to_scale(scale)) return {};
  if (scale.x_px > scale.y_px) {
    return fmt::format(" Not to scale: {} are drawn {:.0f} times as wide as {} are high.", across,
                       scale.x_px / scale.y_px, down);
  }
  return fmt::format(" Not to scale: {} are drawn {:.0f} times as high as {} are wide.", down,
                     scale.y_px / scale.x_px, across);
}

// ---- One sheet ----

// So many tiles to a side of a grid's cell that its lines can be told apart.
constexpr double kSmallestGrid_px = 8;

uint64_t tiles_of_grid(const Sheet& sheet, Scale scale) {
  const double side_px = std::min(sheet.tile_width * scale.x_px, sheet.tile_height * scale.y_px);
  uint64_t tiles = 1;
  while (static_cast<double>(tiles) * side_px < kSmallestGrid_px && tiles < (uint64_t{1} << 40)) {
    tiles *= 2;
  }
  return tiles;
}

class CellWriter {
 public:
  CellWriter(PageWriter& page, const Cell& cell, double x_px, double y_px)
      : page_(page),
        cell_(cell),
        area_{x_px, y_px + cell.behind_px(), cell.drawn_width_px(), cell.drawn_height_px()} {}

  void write() {
    further_slices();
    parts();
    grid();
    page_.add(Frame{area_});
    words();
  }

 private:
  void further_slices() {
    const bool flags = cell_.sheet.kind == Sheet::Kind::flags;
    for (uint64_t i = cell_.slices_behind(); i > 0; --i) {
      const double shift_px = kBehind_px * static_cast<double>(i);
      page_.add(SliceBehind{
          {area_.x_px + shift_px, area_.y_px - shift_px, area_.width_px, area_.height_px},
          flags ? Role::flags : Role::payload});
    }
  }

  // What of a side lies in the window, in pixels from its start.
  static std::pair<double, double> inside(double first, double count, double window_first,
                                          double window_count, double cell_px) {
    const double from = std::clamp(first - window_first, 0.0, window_count);
    const double to = std::clamp(first + count - window_first, 0.0, window_count);
    return {from * cell_px, (to - from) * cell_px};
  }

  void parts() {
    const Window& window = cell_.window;
    for (const SheetPart& part : cell_.sheet.parts) {
      const auto [x_px, width_px] =
          inside(part.x, part.width, window.x, window.width, cell_.scale.x_px);
      const auto [y_px, height_px] =
          inside(part.y, part.height, window.y, window.height, cell_.scale.y_px);
      if (width_px <= 0 || height_px <= 0) continue;
      page_.add(
          Box{{area_.x_px + x_px, area_.y_px + y_px, width_px, height_px}, part.role, part.said});
    }
  }

  void grid() {
    const Sheet& sheet = cell_.sheet;
    if (sheet.tile_width == 0) return;
    const auto tiles = static_cast<double>(tiles_of_grid(sheet, cell_.scale));
    page_.add(Grid{area_, area_.x_px - cell_.window.x * cell_.scale.x_px,
                   area_.y_px - cell_.window.y * cell_.scale.y_px,
                   tiles * sheet.tile_width * cell_.scale.x_px,
                   tiles * sheet.tile_height * cell_.scale.y_px});
  }

  void words() {
    double baseline_px = area_.bottom_px() + 4 + text_size_px(TextKind::name);
    page_.add(Text{area_.x_px, baseline_px, TextKind::name, Anchor::start, {cell_.name}});
    for (const Said& caption : cell_.captions) {
      baseline_px += kLine_px;
      page_.add(Text{area_.x_px, baseline_px, TextKind::caption, Anchor::start, caption});
    }
  }

  PageWriter& page_;
  const Cell& cell_;
  Area area_;
};

// ---- Which cells there are ----

Cell whole_cell(const Sheet& sheet, Scale scale) {
  return {sheet, whole(sheet), scale, sheet.name, sheet.captions};
}

bool is_tiny(const Sheet& sheet, Scale scale) {
  return sheet.width * scale.x_px < kThinnest_px || sheet.height * scale.y_px < kThinnest_px;
}

// The thinnest padding that cannot be seen; 0 for none.
double hidden_padding(const Sheet& sheet, Scale scale) {
  constexpr double kVisible_px = 3;
  double thinnest = 0;
  for (const SheetPart& part : sheet.parts) {
    const bool right = part.role == Role::padding_right;
    if (!right && part.role != Role::padding_below) continue;
    const double cells = right ? part.width : part.height;
    if (cells * (right ? scale.x_px : scale.y_px) >= kVisible_px) continue;
    thinnest = thinnest == 0 ? cells : std::min(thinnest, cells);
  }
  return thinnest;
}

// Where the grid is not the one that the page speaks of.
void say_own_grid(Cell& cell, Scale page_scale) {
  if (cell.sheet.tile_width == 0) return;
  const uint64_t tiles = tiles_of_grid(cell.sheet, cell.scale);
  if (tiles == tiles_of_grid(cell.sheet, page_scale)) return;
  cell.captions.push_back(
      {tiles == 1 ? "grid: single tiles" : fmt::format("grid: {} x {} tiles", tiles, tiles)});
}

// The lower right corner, so large that padding can be seen.
Cell corner_cell(const Sheet& sheet, Scale scale, double padding) {
  constexpr double kSide_px = 150;
  constexpr double kPadding_px = 14;
  const double cell_px = std::min(kPadding_px / padding, 12.0);
  const double width = std::min<double>(std::floor(kSide_px / cell_px), sheet.width);
  const double height = std::min<double>(std::floor(kSide_px / cell_px), sheet.height);
  Cell cell = {sheet,
               {sheet.width - width, sheet.height - height, width, height},
               {cell_px, cell_px},
               "its lower right corner",
               {{fmt::format("{:.0f} elements x {:.0f} rows", width, height)},
                {fmt::format("{:.0f} times as large", cell_px / scale.x_px)}}};
  say_own_grid(cell, scale);
  return cell;
}

// A small level in its place: where it lies is said where it is drawn larger.
Cell tiny_cell(const Sheet& sheet, Scale scale) {
  return {sheet, whole(sheet), scale, sheet.name, {sheet.captions.front()}};
}

Cell enlarged_cell(const Sheet& sheet, Scale scale) {
  const Scale large = scale_for({&sheet}, {128, 80, 8});
  Cell cell = whole_cell(sheet, large);
  if (!sheet.parts.empty()) {
    const SheetPart& payload = sheet.parts.front();
    cell.captions.push_back(
        {fmt::format("{} x {} asked for", payload.width, payload.height), payload.said.text});
  }
  cell.captions.push_back({fmt::format("{:.0f} times as large", large.x_px / scale.x_px)});
  const uint64_t tiles = sheet.tile_width == 0 ? 1 : tiles_of_grid(sheet, large);
  if (tiles > 1) cell.captions.push_back({fmt::format("grid: {} x {} tiles", tiles, tiles)});
  return cell;
}

// ---- Tiles ----

bool have_one_tile(const std::vector<const Sheet*>& sheets) {
  return std::all_of(sheets.begin(), sheets.end(), [&sheets](const Sheet* sheet) {
    return sheet->tile_width == sheets.front()->tile_width &&
           sheet->tile_height == sheets.front()->tile_height;
  });
}

// "A tile is 64 elements x 16 rows; its elements lie together in memory."
std::string tile_sentence(const std::vector<const Sheet*>& sheets, Scale scale) {
  const Sheet& first = *sheets.front();
  if (first.tile_width == 0) return {};
  if (!have_one_tile(sheets)) return " The elements of a tile lie together in memory.";
  const uint64_t tiles = tiles_of_grid(first, scale);
  const std::string grid =
      tiles == 1 ? "" : fmt::format(" The grid shows {} x {} of them in one cell.", tiles, tiles);
  return fmt::format(" The elements of a tile, {} elements x {} rows, lie together in memory.{}",
                     first.tile_width, first.tile_height, grid);
}

// Where tiles differ from sheet to sheet.
void say_own_tile(Cell& cell) {
  const Sheet& sheet = cell.sheet;
  if (sheet.tile_width == 0) return;
  const uint64_t tiles = tiles_of_grid(sheet, cell.scale);
  cell.captions.push_back(
      {fmt::format("tiles of {} elements x {} rows", sheet.tile_width, sheet.tile_height)});
  if (tiles > 1) cell.captions.push_back({fmt::format("grid: {} x {} tiles", tiles, tiles)});
}

// ---- Sections ----

std::vector<const Sheet*> of_kind(const Scene& scene, Sheet::Kind kind) {
  std::vector<const Sheet*> sheets;
  for (const Sheet& sheet : scene.sheets) {
    if (sheet.kind == kind) sheets.push_back(&sheet);
  }
  return sheets;
}

Room image_room(std::size_t images) {
  if (images == 1) return {560, 330, 8};
  if (images == 2) return {450, 300, 8};
  return {400, 300, 8};
}

// From the left in rows. What is no higher than a row's first cell stands below each other in it.
void write_cells(PageWriter& page, const std::vector<Cell>& cells) {
  constexpr double kRight_px = kMargin_px + kContentWidth_px;
  page.space(12);
  double row_px = 0;  // height of the row
  double column_px = kMargin_px;
  double column_width_px = 0;
  double used_px = 0;  // of the column's height
  for (const Cell& cell : cells) {
    const double width_px = cell_width_px(cell);
    const double height_px = cell_height_px(cell);
    const bool below = used_px > 0 && used_px + kRowGap_px + height_px <= row_px &&
                       column_px + width_px <= kRight_px;
    if (!below && used_px > 0) {
      column_px += column_width_px + kSheetGap_px;
      column_width_px = used_px = 0;
    }
    if (used_px == 0 && column_px > kMargin_px && column_px + width_px > kRight_px) {
      page.space(row_px + kSheetGap_px);
      column_px = kMargin_px;
      row_px = 0;
    }
    if (used_px > 0) used_px += kRowGap_px;
    CellWriter(page, cell, column_px, page.y_px() + used_px).write();
    used_px += height_px;
    column_width_px = std::max(column_width_px, width_px);
    row_px = std::max(row_px, used_px);
  }
  page.space(row_px + kSheetGap_px);
}

std::vector<Cell> flag_cells(const std::vector<const Sheet*>& flags, Scale scale) {
  std::vector<Cell> cells;
  cells.reserve(flags.size());
  for (const Sheet* sheet : flags) cells.push_back(whole_cell(*sheet, scale));
  return cells;
}

std::string flag_sentence(Scale scale) {
  return "One byte of a flag buffer says how one small part of the image is compressed." +
         stretch_sentence(scale, "bytes", "rows of flags");
}

struct ImageCells {
  std::vector<Cell> cells;
  std::vector<Cell> enlarged;
};

// Each image with its flag buffer behind it, where `flags` has one.
ImageCells image_cells(const std::vector<const Sheet*>& images, Scale scale,
                       const std::vector<Cell>& flags) {
  const bool one_tile = have_one_tile(images);
  ImageCells all;
  for (const Sheet* image : images) {
    if (images.size() > 1 && is_tiny(*image, scale)) {
      all.cells.push_back(tiny_cell(*image, scale));
      all.enlarged.push_back(enlarged_cell(*image, scale));
    } else {
      Cell& cell = all.cells.emplace_back(whole_cell(*image, scale));
      if (!one_tile) say_own_tile(cell);
      const double padding = hidden_padding(*image, scale);
      if (padding > 0) all.cells.push_back(corner_cell(*image, scale, padding));
    }
    for (const Cell& cell : flags) {
      if (cell.sheet.level == image->level && cell.sheet.plane == image->plane) {
        all.cells.push_back(cell);
      }
    }
  }
  return all;
}

// Of a chain the flag buffers have a section of their own.
constexpr std::size_t kMostPlanes = 3;

}  // namespace

void write_sheets(PageWriter& page, const Scene& scene) {
  const std::vector<const Sheet*> images = of_kind(scene, Sheet::Kind::image);
  const std::vector<const Sheet*> flags = of_kind(scene, Sheet::Kind::flags);
  if (images.empty()) return;
  const Scale scale = scale_for(images, image_room(images.size()));
  const Scale flag_scale = scale_for(flags, {220, 150, 3});
  const bool together = images.size() <= kMostPlanes && !flags.empty();
  const std::vector<Cell> all_flags = flag_cells(flags, flag_scale);
  const ImageCells cells = image_cells(images, scale, together ? all_flags : std::vector<Cell>());
  page.space(18);
  page.paragraph(TextKind::heading, {together ? "Images, and flag buffers to a scale of their own"
                                     : images.size() == 1 ? "The image"
                                                          : "The images, to one scale"});
  page.paragraph(TextKind::plain, {scene.elements + tile_sentence(images, scale) +
                                   stretch_sentence(scale, "elements", "rows")});
  if (together) page.paragraph(TextKind::plain, {flag_sentence(flag_scale)});
  write_cells(page, cells.cells);
  if (!cells.enlarged.empty()) {
    page.paragraph(TextKind::heading, {"The small levels again, each as large as fits"});
    if (images.front()->tile_width != 0) {
      page.paragraph(TextKind::plain,
                     {"A cell of the grid is one tile, where nothing else is said."});
    }
    write_cells(page, cells.enlarged);
  }
  if (together || flags.empty()) return;
  page.paragraph(TextKind::heading, {"Flag buffers, to a scale of their own"});
  page.paragraph(TextKind::plain, {flag_sentence(flag_scale)});
  write_cells(page, all_flags);
}

}  // namespace tool
