#include "tools/comparison/record_comparison.h"

#include <cstring>
#include <map>
#include <set>
#include <string_view>

#include "tools/record/named_words.h"

namespace tool {
namespace {

ComparedWord compared(const NamedWord& word, std::span<const unsigned char> record) {
  return {word.field, record.data() + word.offset};
}

bool is_equal(const ComparedWord& a, const ComparedWord& b) {
  return a.field->size == b.field->size && std::memcmp(a.bytes, b.bytes, a.field->size) == 0;
}

// The names of both lists: those that the first one lacks stand where the second has them.
std::vector<std::string_view> merged_names(const std::vector<NamedWord>& a,
                                           const std::vector<NamedWord>& b) {
  std::set<std::string_view> in_a;
  for (const NamedWord& word : a) in_a.insert(word.name);
  std::vector<std::string_view> names;
  auto next = a.begin();
  for (const NamedWord& word : b) {
    if (!in_a.contains(word.name)) {
      names.emplace_back(word.name);
      continue;
    }
    while (next != a.end()) {
      names.emplace_back(next->name);
      if ((next++)->name == word.name) break;
    }
  }
  for (; next != a.end(); ++next) names.emplace_back(next->name);
  return names;
}

}  // namespace

std::optional<uint64_t> number_of(const ComparedWord& word) {
  if (word.field->size > sizeof(uint64_t)) return std::nullopt;
  return field_number(*word.field, word.bytes);
}

RecordComparison compare_records(const RecordFields& fields, std::span<const unsigned char> a,
                                 std::span<const unsigned char> b) {
  const std::vector<NamedWord> words_a = named_words(fields, a, BufferWords::of_valid_buffers);
  const std::vector<NamedWord> words_b = named_words(fields, b, BufferWords::of_valid_buffers);
  std::map<std::string_view, ComparedWord> by_name_a;
  std::map<std::string_view, ComparedWord> by_name_b;
  for (const NamedWord& word : words_a) by_name_a.emplace(word.name, compared(word, a));
  for (const NamedWord& word : words_b) by_name_b.emplace(word.name, compared(word, b));

  RecordComparison comparison;
  for (const std::string_view name : merged_names(words_a, words_b)) {
    ++comparison.compared;
    const auto in_a = by_name_a.find(name);
    const auto in_b = by_name_b.find(name);
    WordDifference difference{std::string(name), {}, {}};
    if (in_a != by_name_a.end()) difference.a = in_a->second;
    if (in_b != by_name_b.end()) difference.b = in_b->second;
    if (difference.a && difference.b && is_equal(*difference.a, *difference.b)) continue;
    comparison.differences.push_back(std::move(difference));
  }
  return comparison;
}

RecordComparison compare_headers(std::span<const unsigned char> a,
                                 std::span<const unsigned char> b) {
  RecordComparison comparison;
  for (const StoredField& field : kBlobHeaderFields) {
    ++comparison.compared;
    const ComparedWord in_a = {&field, a.data() + field.offset};
    const ComparedWord in_b = {&field, b.data() + field.offset};
    if (is_equal(in_a, in_b)) continue;
    comparison.differences.push_back({std::string("header.") + field.name, in_a, in_b});
  }
  return comparison;
}

}  // namespace tool
