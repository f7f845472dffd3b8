#include "tools/record/named_words.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstring>

namespace tool {
namespace {

class WordNames {
 public:
  WordNames(const RecordFields& fields, std::span<const unsigned char> record, BufferWords buffers)
      : fields_(fields), record_(record), buffers_(buffers) {}

  std::vector<NamedWord> names() {
    add({}, 0, fields_.head);
    const uint32_t levels = std::min<uint32_t>(number(fields_.levels_word), KORVEL_MAX_LEVELS);
    for (uint32_t l = 0; l < levels; ++l) {
      add_level({fmt::format("level[{}].", l), l, {}},
                fields_.levels_offset + std::size_t{l} * fields_.level_bytes);
    }
    add({}, 0, fields_.tail);
    return std::move(words_);
  }

 private:
  struct Place {
    std::string prefix = {};  // of the names
    std::optional<uint32_t> level = {};
    std::optional<uint32_t> plane = {};
  };

  // 0 where the record ends before.
  [[nodiscard]] uint32_t number(std::size_t at) const {
    uint32_t value = 0;
    if (at + sizeof value <= record_.size()) std::memcpy(&value, record_.data() + at, sizeof value);
    return value;
  }

  void add(const Place& place, std::size_t base, FieldList fields) {
    for (const StoredField& field : fields) {
      const std::size_t at = base + field.offset;
      if (field.meaning == Meaning::unused || at + field.size > record_.size()) continue;
      words_.push_back({place.prefix + field.name, &field, at, place.level, place.plane});
    }
  }

  void add_buffer(const Place& place, std::size_t base, uint32_t valid_word, FieldList fields) {
    if (buffers_ == BufferWords::of_all_buffers || number(base + valid_word) != 0) {
      add(place, base, fields);
    }
  }

  void add_level(const Place& place, std::size_t base) {
    add(place, base, fields_.level_head);
    const uint32_t planes =
        std::min<uint32_t>(number(base + fields_.planes_word), KORVEL_MAX_PLANES);
    for (uint32_t p = 0; p < planes; ++p) {
      const Place plane_place = {fmt::format("{}plane[{}].", place.prefix, p), place.level, p};
      const std::size_t plane = base + fields_.planes_offset + std::size_t{p} * fields_.plane_bytes;
      add(plane_place, plane, fields_.image);
      add(plane_place, plane, fields_.flag_valid);
      add_buffer(plane_place, plane, fields_.flag_valid_word, fields_.flag_buffer);
    }
    add(place, base, fields_.lrz_valid);
    add_buffer(place, base, fields_.lrz_valid_word, fields_.lrz_buffer);
    add(place, base, fields_.lrz_fc_valid);
    add_buffer(place, base, fields_.lrz_fc_valid_word, fields_.lrz_fc_buffer);
    add(place, base, fields_.level_tail);
  }

  const RecordFields& fields_;
  std::span<const unsigned char> record_;
  BufferWords buffers_;
  std::vector<NamedWord> words_;
};

}  // namespace

std::vector<NamedWord> named_words(const RecordFields& fields,
                                   std::span<const unsigned char> record, BufferWords buffers) {
  return WordNames(fields, record, buffers).names();
}

uint64_t word_value(const NamedWord& word, std::span<const unsigned char> record) {
  return field_number(*word.field, record.data() + word.offset);
}

}  // namespace tool
