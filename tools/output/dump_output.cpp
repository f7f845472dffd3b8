#include "tools/output/dump_output.h"

#include <fmt/core.h>

#include <algorithm>
#include <string_view>

#include "tools/output/stored_value_json.h"
#include "tools/record/field_value.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;
using Bytes = std::span<const unsigned char>;

constexpr std::size_t kBytesInRow = 8;

std::string hex_bytes(Bytes bytes) {
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

std::size_t count_filled(Bytes bytes) {
  return static_cast<std::size_t>(
      std::count_if(bytes.begin(), bytes.end(), [](auto byte) { return byte != 0; }));
}

// Takes the text up to the next line end away from `lines`.
std::string_view take_line(std::string_view& lines) {
  const std::size_t end = std::min(lines.find('\n'), lines.size());
  const std::string_view line = lines.substr(0, end);
  lines.remove_prefix(std::min(end + 1, lines.size()));
  return line;
}

std::string line_of(std::size_t at, Bytes bytes, std::string_view type, std::string_view name,
                    std::string_view value) {
  std::string line =
      fmt::format("0x{:04X}  {:<25}{:<8}{:<20}{}", at, hex_bytes(bytes), type, name, value);
  line.erase(line.find_last_not_of(' ') + 1);
  return line + '\n';
}

std::string field_text(const DumpRow& row, uint32_t record_bytes) {
  const std::string value = field_value(*row.field, row.bytes.data(), record_bytes);
  std::string_view lines = value;
  std::string type = type_name(*row.field);
  std::string_view name = row.field->name;
  std::string text;
  for (std::size_t done = 0; done < row.bytes.size(); done += kBytesInRow) {
    const Bytes rest = row.bytes.subspan(done);
    text += line_of(row.offset + done, rest.first(std::min(rest.size(), kBytesInRow)), type, name,
                    take_line(lines));
    type.clear();
    name = {};
  }
  return text;
}

std::string stretch_text(const DumpRow& row) {
  const std::size_t filled = count_filled(row.bytes);
  return fmt::format("0x{:04X}  {:<25}{} bytes, {}: {}\n", row.offset,
                     fmt::format("to 0x{:04X}", row.offset + row.bytes.size() - 1),
                     row.bytes.size(), filled == 0 ? "all 0" : fmt::format("{} not 0", filled),
                     row.text);
}

std::string row_text(const DumpRow& row, uint32_t record_bytes) {
  switch (row.kind) {
    case DumpRow::Kind::heading: return fmt::format("\n{}\n", row.text);
    case DumpRow::Kind::field: return field_text(row, record_bytes);
    case DumpRow::Kind::stretch: return stretch_text(row);
  }
  return {};
}

std::string verdict_text(const DumpVerdict& verdict) {
  if (!verdict.accepted) return fmt::format("none: {}\n", verdict.reason);
  if (!*verdict.accepted) return fmt::format("refused: {}\n", verdict.reason);
  std::string text = "accepted\n";
  for (const std::string& limit : verdict.limits) text += fmt::format("but {}\n", limit);
  return text;
}

// The lines of a value in one.
std::string meaning_of(const DumpRow& row, uint32_t record_bytes) {
  std::string meaning = field_value(*row.field, row.bytes.data(), record_bytes);
  std::replace(meaning.begin(), meaning.end(), '\n', ' ');
  return meaning;
}

Json field_json(const DumpRow& row, uint32_t record_bytes) {
  return {{"field", row.place + row.field->name},
          {"offset_bytes", row.offset},
          {"size_bytes", row.bytes.size()},
          {"stored", hex_bytes(row.bytes)},
          {"value", stored_value_json(*row.field, row.bytes.data())},
          {"value_hex", stored_hex_json(*row.field, row.bytes.data())},
          {"unit", stored_unit_json(*row.field)},
          {"meaning", meaning_of(row, record_bytes)}};
}

Json stretch_json(const DumpRow& row) {
  return {{"offset_bytes", row.offset},
          {"size_bytes", row.bytes.size()},
          {"filled_bytes", count_filled(row.bytes)},
          {"what", row.text}};
}

}  // namespace

std::string dump_text(const RecordDump& dump, const DumpVerdict& verdict) {
  std::string text = fmt::format("{:<8}{:<25}{:<8}{:<20}{}\n", "offset", "bytes as stored, hex",
                                 "type", "field", "value");
  for (const DumpRow& row : dump.rows) text += row_text(row, dump.record_bytes);
  return text + "\nthe library's verdict, for the device that the record names\n" +
         verdict_text(verdict);
}

Json dump_json(const RecordDump& dump, const DumpVerdict& verdict) {
  Json fields = Json::array();
  Json stretches = Json::array();
  for (const DumpRow& row : dump.rows) {
    if (row.kind == DumpRow::Kind::field) fields.push_back(field_json(row, dump.record_bytes));
    if (row.kind == DumpRow::Kind::stretch) stretches.push_back(stretch_json(row));
  }
  return {{"record_offset_bytes", dump.record_offset},
          {"fields", std::move(fields)},
          {"stretches", std::move(stretches)},
          {"valid", verdict.accepted ? Json(*verdict.accepted) : Json()},
          {"reason", verdict.reason.empty() ? Json() : Json(verdict.reason)}};
}

}  // namespace tool
