// Words of stored records. A record may stand at any address, and another process may change it
// while it is read: each word is fetched once and goes on as a value, so that what is used is what
// was checked.
#pragma once

#include <cstddef>

namespace korvel {

// Volatile: no compiler may fetch the word again in the place of keeping its value. Of a packed
// record: one access, wherever the word stands.
template <typename Word>
inline Word stored_word(const unsigned char* record, std::size_t offset) {
  struct [[gnu::packed, gnu::may_alias]] Anywhere {
    Word word;
  };
  return reinterpret_cast<const volatile Anywhere*>(record + offset)->word;
}

// A record, or a part of one, as the bytes that it is.
template <typename Record>
inline const unsigned char* stored_bytes(const Record& record) {
  return reinterpret_cast<const unsigned char*>(&record);
}

}  // namespace korvel

// The word of a field of `record_type` in the bytes of such a record.
#define KORVEL_STORED(bytes, record_type, field) \
  korvel::stored_word<decltype(record_type::field)>(bytes, offsetof(record_type, field))
