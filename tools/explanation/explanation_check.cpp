#include "tools/explanation/explanation_check.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <span>

#include "tools/record/named_words.h"

namespace tool {
namespace {

void add_plane(std::vector<FieldValue>& fields, uint32_t l, uint32_t p, const PlaneLayout& plane) {
  const auto add = [&](const char* name, uint64_t value) {
    fields.push_back({plane_field(l, p, name), value});
  };
  add("image_offset", plane.image_offset);
  add("image_size", plane.image_size);
  add("image_pitch", plane.image_pitch);
  add("image_slice_pitch", plane.image_slice_pitch);
  add("image_element_size", plane.image_element_size);
  add("image_width", plane.image_width);
  add("image_height", plane.image_height);
  add("flag_valid", plane.flag_valid);
  if (plane.flag_valid == 0) return;
  add("flag_offset", plane.flag_offset);
  add("flag_size", plane.flag_size);
  add("flag_pitch", plane.flag_pitch);
  add("flag_slice_pitch", plane.flag_slice_pitch);
}

template <typename Record>
std::span<const unsigned char> bytes_of(const Record& record) {
  return {reinterpret_cast<const unsigned char*>(&record), sizeof record};
}

// A field as one number; a UUID as its four.
void add_word(std::vector<FieldValue>& words, const std::string& name, const StoredField& field,
              const unsigned char* bytes, const Place& place) {
  const bool is_uuid =
      field.meaning == Meaning::device_uuid || field.meaning == Meaning::driver_uuid;
  if (!is_uuid) {
    words.push_back({name, field_number(field, bytes), place});
    return;
  }
  for (std::size_t i = 0; i < KORVEL_UUID_BYTES / sizeof(uint32_t); ++i) {
    uint32_t word = 0;
    std::memcpy(&word, bytes + i * sizeof word, sizeof word);
    words.push_back({fmt::format("{}[{}]", name, i), word, place});
  }
}

}  // namespace

std::vector<FieldValue> words_of(const LayoutMetadata& blob) {
  std::vector<FieldValue> words;
  for (const StoredField& field : kBlobHeaderFields) {
    add_word(words, std::string("header.") + field.name, field,
             bytes_of(blob.header).data() + field.offset, {});
  }
  const std::span<const unsigned char> record = bytes_of(blob.layout);
  for (const NamedWord& word : named_words(kLayoutFields, record, BufferWords::of_all_buffers)) {
    add_word(words, word.name, *word.field, record.data() + word.offset, {word.level, word.plane});
  }
  return words;
}

std::vector<FieldValue> further_words(const LayoutMetadata& blob) {
  std::set<std::string> explained;
  for (const FieldValue& field : explained_fields(blob)) explained.insert(field.field);
  std::vector<FieldValue> words = words_of(blob);
  std::erase_if(words,
                [&explained](const FieldValue& word) { return explained.contains(word.field); });
  return words;
}

std::vector<FieldValue> explained_fields(const LayoutMetadata& blob) {
  const MemoryLayout& record = blob.layout;
  std::vector<FieldValue> fields;
  for (uint32_t l = 0; l < record.levels; ++l) {
    const LevelLayout& level = record.level[l];
    fields.push_back({level_field(l, "size"), level.size});
    for (uint32_t p = 0; p < level.planes; ++p) add_plane(fields, l, p, level.plane[p]);
  }
  fields.push_back({"alignment", record.alignment});
  if (record.extra_valid != 0) {
    fields.push_back({"extra_offset", record.extra_offset});
    fields.push_back({"extra_size", record.extra_size});
    fields.push_back({"extra_slice_pitch", record.extra_slice_pitch});
  }
  fields.push_back({"total_size", record.total_size});
  fields.push_back({"gpu_buffer_size", record.total_size - record.size});
  return fields;
}

Comparison compare(const Explanation& explanation, const LayoutMetadata& blob) {
  return compare(explanation, explained_fields(blob));
}

Comparison compare(const Explanation& explanation, const std::vector<FieldValue>& fields) {
  std::map<std::string, const Step*> steps;
  for (const Step& step : explanation.steps) {
    if (step.field.empty()) continue;
    if (!steps.emplace(step.field, &step).second) {
      return {0, fmt::format("two steps give {}", step.field)};
    }
  }
  Comparison comparison;
  for (const FieldValue& field : fields) {
    const auto found = steps.find(field.field);
    if (found == steps.end()) {
      comparison.disagreement = fmt::format("no step leads to {}", field.field);
      return comparison;
    }
    const auto explained = static_cast<uint64_t>(found->second->after.value);
    if (explained != field.value) {
      comparison.disagreement = fmt::format("the steps lead to {} = {}, but the library answers {}",
                                            field.field, explained, field.value);
      return comparison;
    }
    ++comparison.compared;
  }
  if (comparison.compared != steps.size()) {
    comparison.disagreement = fmt::format("{} steps give fields, but the record has {} of them",
                                          steps.size(), comparison.compared);
  }
  return comparison;
}

}  // namespace tool
