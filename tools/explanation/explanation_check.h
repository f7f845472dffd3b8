// An explanation held against the library's own answer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <korvel_utils.h>
#include "tools/explanation/explanation.h"

namespace tool {

struct FieldValue {
  std::string field;  // as Step::field
  uint64_t value;
  Place place = {};
};

// The fields of a laid-out blob that an explanation leads to, each with the library's number.
std::vector<FieldValue> explained_fields(const LayoutMetadata& blob);

// Every word of a laid-out blob in its order, those of buffers that it does not have too. A UUID is
// four: "device_uuid[0]". Padding is left out.
std::vector<FieldValue> words_of(const LayoutMetadata& blob);

// Those of them that are no explained_fields(), which have words of their own (explain_words.h).
std::vector<FieldValue> further_words(const LayoutMetadata& blob);

struct Comparison {
  std::size_t compared = 0;  // fields
  std::string disagreement;  // empty when every field has a step that comes to its number
};

Comparison compare(const Explanation& explanation, const std::vector<FieldValue>& fields);

// With the explained_fields() of a blob.
Comparison compare(const Explanation& explanation, const LayoutMetadata& blob);

}  // namespace tool
