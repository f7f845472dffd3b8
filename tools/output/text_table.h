// Tables in aligned columns of plain text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tool {

struct TableColumn {
  enum Side { left, right };
  std::string heading;
  std::string unit;  // second line of the heading; may be empty
  Side side = right;
};

class TextTable {
 public:
  explicit TextTable(std::vector<TableColumn> columns) : columns_(std::move(columns)) {}

  // A cell for each column.
  void add_row(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

  // Lines without trailing blanks, each with its line end.
  [[nodiscard]] std::string text() const;

 private:
  [[nodiscard]] std::vector<std::size_t> widths() const;

  std::vector<TableColumn> columns_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace tool
