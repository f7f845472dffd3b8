// Two stored or laid-out records of one kind, word by word.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/record/stored_field.h"

namespace tool {

// One side's word; neither pointer is null.
struct ComparedWord {
  const StoredField* field;
  const unsigned char* bytes;
};

// A word that differs, or that one of the two records does not have.
struct WordDifference {
  std::string name;  // "level[0].plane[1].image_pitch"
  std::optional<ComparedWord> a;
  std::optional<ComparedWord> b;
};

// The number of a word of 4 or 8 bytes; none for a longer one.
std::optional<uint64_t> number_of(const ComparedWord& word);

struct RecordComparison {
  std::size_t compared = 0;  // words that one of the two has
  std::vector<WordDifference> differences;
};

// The words that are in use, in the order of the record. The bytes must outlive the comparison.
RecordComparison compare_records(const RecordFields& fields, std::span<const unsigned char> a,
                                 std::span<const unsigned char> b);

// The words in front of the records of two blobs, as "header.blob_size".
RecordComparison compare_headers(std::span<const unsigned char> a,
                                 std::span<const unsigned char> b);

}  // namespace tool
