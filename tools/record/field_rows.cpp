#include "tools/record/field_rows.h"

#include <fmt/core.h>

#include <algorithm>

#include "tools/record/field_value.h"

namespace tool {
namespace {

constexpr std::size_t kBytesInRow = 8;

std::string hex_bytes(std::span<const unsigned char> bytes) {
  std::string text;
  for (const unsigned char byte : bytes) {
    text += fmt::format("{}{:02X}", text.empty() ? "" : " ", byte);
  }
  return text;
}

std::string type_name(const StoredField& field) {
  switch (field.size) {
    case sizeof(uint32_t): return "u32";
    case sizeof(uint64_t): return "u64";
    default: return fmt::format("u8[{}]", field.size);
  }
}

// Takes the text up to the next line end away from `lines`.
std::string_view take_line(std::string_view& lines) {
  const std::size_t end = std::min(lines.find('\n'), lines.size());
  const std::string_view line = lines.substr(0, end);
  lines.remove_prefix(std::min(end + 1, lines.size()));
  return line;
}

}  // namespace

FieldRows::FieldRows(std::span<const unsigned char> file)
    : file_(file),
      text_(fmt::format("{:<8}{:<25}{:<8}{:<20}{}\n", "offset", "bytes as stored, hex", "type",
                        "field", "value")) {}

void FieldRows::add_heading(std::string_view text) {
  text_ += fmt::format("\n{}\n", text);
}

void FieldRows::add_text(std::string_view text) {
  text_ += fmt::format("{}\n", text);
}

void FieldRows::add_fields(std::size_t base, FieldList fields) {
  for (const StoredField& field : fields) {
    const std::size_t at = base + field.offset;
    if (at + field.size <= file_.size()) {
      add_field(at, field);
    } else {
      add_stretch(at, file_.size(), fmt::format("{}, cut by the end of the file", field.name));
    }
  }
}

void FieldRows::add_field(std::size_t at, const StoredField& field) {
  std::span<const unsigned char> bytes = file_.subspan(at, field.size);
  const std::string value = field_value(field, bytes.data(), record_size_);
  std::string_view lines = value;
  std::string type = type_name(field);
  std::string_view name = field.name;
  while (!bytes.empty()) {
    const auto row = bytes.first(std::min(bytes.size(), kBytesInRow));
    add_row(at, row, type, name, take_line(lines));
    type.clear();
    name = {};
    at += row.size();
    bytes = bytes.subspan(row.size());
  }
}

void FieldRows::add_row(std::size_t at, std::span<const unsigned char> bytes, std::string_view type,
                        std::string_view name, std::string_view value) {
  std::string row =
      fmt::format("0x{:04X}  {:<25}{:<8}{:<20}{}", at, hex_bytes(bytes), type, name, value);
  row.erase(row.find_last_not_of(' ') + 1);
  text_ += row + '\n';
}

void FieldRows::add_stretch(std::size_t first, std::size_t end, std::string_view what) {
  end = std::min(end, file_.size());
  if (first >= end) return;
  const auto bytes = file_.subspan(first, end - first);
  const auto filled =
      std::count_if(bytes.begin(), bytes.end(), [](auto byte) { return byte != 0; });
  text_ +=
      fmt::format("0x{:04X}  {:<25}{} bytes, {}: {}\n", first, fmt::format("to 0x{:04X}", end - 1),
                  bytes.size(), filled == 0 ? "all 0" : fmt::format("{} not 0", filled), what);
}

}  // namespace tool
