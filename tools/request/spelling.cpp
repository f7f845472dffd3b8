#include "tools/request/spelling.h"

#include <algorithm>
#include <vector>

namespace tool {

std::size_t edit_distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row[b.size()];
}

std::string_view closest_name(std::string_view text, std::span<const std::string_view> names) {
  constexpr std::size_t kCompared = 64;  // longer than any name
  text = text.substr(0, kCompared);
  return *std::min_element(names.begin(), names.end(),
                           [text](std::string_view a, std::string_view b) {
                             return edit_distance(text, a) < edit_distance(text, b);
                           });
}

}  // namespace tool
