#include "tools/output/text_table.h"

#include <algorithm>
#include <cstddef>

namespace tool {
namespace {

constexpr std::string_view kGap = "  ";

std::string padded(std::string_view cell, std::size_t width, TableColumn::Side side) {
  const std::string blanks(width - cell.size(), ' ');
  return side == TableColumn::right ? blanks + std::string(cell) : std::string(cell) + blanks;
}

std::string line_of(const std::vector<TableColumn>& columns, const std::vector<std::size_t>& widths,
                    const std::vector<std::string>& cells) {
  std::string line;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (i > 0) line += kGap;
    line += padded(cells[i], widths[i], columns[i].side);
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line + '\n';
}

std::vector<std::string> texts_of(const std::vector<TableColumn>& columns,
                                  std::string TableColumn::*text) {
  std::vector<std::string> texts;
  texts.reserve(columns.size());
  for (const TableColumn& column : columns) texts.push_back(column.*text);
  return texts;
}

}  // namespace

std::vector<std::size_t> TextTable::widths() const {
  std::vector<std::size_t> widths;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    std::size_t width = std::max(columns_[i].heading.size(), columns_[i].unit.size());
    for (const auto& row : rows_) width = std::max(width, row[i].size());
    widths.push_back(width);
  }
  return widths;
}

std::string TextTable::text() const {
  const std::vector<std::size_t> column_widths = widths();
  std::string text = line_of(columns_, column_widths, texts_of(columns_, &TableColumn::heading));
  const bool has_units =
      std::any_of(columns_.begin(), columns_.end(),
                  [](const TableColumn& column) { return !column.unit.empty(); });
  if (has_units) text += line_of(columns_, column_widths, texts_of(columns_, &TableColumn::unit));
  for (const auto& row : rows_) text += line_of(columns_, column_widths, row);
  return text;
}

}  // namespace tool
