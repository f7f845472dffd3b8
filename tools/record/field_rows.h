// The rows of a dump: fields, and stretches of bytes that are told in one line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "tools/record/stored_field.h"

namespace tool {

class FieldRows {
 public:
  explicit FieldRows(std::span<const unsigned char> file);

  // What the record says of its own size, for the fields that are told with it.
  void set_record_size(uint32_t bytes) { record_size_ = bytes; }

  void add_heading(std::string_view text);

  // Lines that tell no bytes.
  void add_text(std::string_view text);

  // Fields of the structure at `base`, as far as the file holds them.
  void add_fields(std::size_t base, FieldList fields);

  // One line for the bytes from `first` up to `end`, as far as the file holds them.
  void add_stretch(std::size_t first, std::size_t end, std::string_view what);

  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  void add_field(std::size_t at, const StoredField& field);
  void add_row(std::size_t at, std::span<const unsigned char> bytes, std::string_view type,
               std::string_view name, std::string_view value);

  std::span<const unsigned char> file_;
  uint32_t record_size_ = 0;
  std::string text_;
};

}  // namespace tool
