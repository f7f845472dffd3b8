// The words of a stored record one after another, under names such as
// "level[0].plane[1].image_pitch".
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/record/stored_field.h"

namespace tool {

struct NamedWord {
  std::string name;
  const StoredField* field;
  std::size_t offset;                  // bytes from the start of the record
  std::optional<uint32_t> level = {};  // that it is of; none for words of the whole record
  std::optional<uint32_t> plane = {};
};

enum class BufferWords : uint8_t { of_valid_buffers, of_all_buffers };

// The words that are in use: of the levels and planes that the record counts, as far as it may have
// so many. Padding is left out.
std::vector<NamedWord> named_words(const RecordFields& fields,
                                   std::span<const unsigned char> record, BufferWords buffers);

// The value of a word of 4 or 8 bytes.
uint64_t word_value(const NamedWord& word, std::span<const unsigned char> record);

}  // namespace tool
