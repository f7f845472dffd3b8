// Words of stored records, which may stand at any address.
#pragma once

#include <cstddef>
#include <cstring>

namespace korvel {

template <typename Word>
inline Word stored_word(const unsigned char* record, std::size_t offset) {
  Word word;
  std::memcpy(&word, record + offset, sizeof word);
  return word;
}

}  // namespace korvel

// The word of a field of `record_type` in the bytes of such a record.
#define KORVEL_STORED(bytes, record_type, field) \
  korvel::stored_word<decltype(record_type::field)>(bytes, offsetof(record_type, field))
