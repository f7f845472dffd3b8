// Sets of format ids as a person writes them: "2-4 10-14 54".
#pragma once

#include <bitset>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace formats_test {

class IdList {
 public:
  IdList(const char* text) {  // NOLINT: a text is a list
    for (const char* rest = text; *rest != '\0';) {
      unsigned first = 0;
      unsigned last = 0;
      int length = 0;
      if (std::sscanf(rest, "%u-%u%n", &first, &last, &length) != 2) {
        last = 0;
        if (std::sscanf(rest, "%u%n", &first, &length) != 1) give_up(text);
        last = first;
      }
      if (last < first || last >= ids_.size()) give_up(text);
      for (unsigned id = first; id <= last; ++id) ids_.set(id);
      rest += length;
      while (*rest == ' ') ++rest;
    }
  }

  bool has(uint32_t id) const { return id < ids_.size() && ids_[id]; }
  std::size_t size() const { return ids_.count(); }

 private:
  [[noreturn]] static void give_up(const char* text) {
    std::fprintf(stderr, "not a list of format ids: %s\n", text);
    std::abort();
  }

  std::bitset<1024> ids_;
};

// Ids of the table.
inline constexpr uint32_t kTableIds = 722;

// The one format that is a four-character code, "WXB7".
inline constexpr uint32_t kFourCharacterCode = 0x37425857;

}  // namespace formats_test
