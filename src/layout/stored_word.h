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
