#include "tools/request/spelling.h"

#include <algorithm>
#include <vector>

namespace tool {
namespace {

constexpr std::size_t kShortestAbbreviation = 3;
constexpr std::size_t kLongestWord = 64;  // longer than any name

// How many letters of the name it takes to find those of the text in their order.
std::optional<std::size_t> letters_that_hold(std::string_view name, std::string_view text) {
  if (name.empty() || name.front() != text.front()) return std::nullopt;
  std::size_t at = 0;
  for (const char c : text) {
    const std::size_t found = name.find(c, at);
    if (found == std::string_view::npos) return std::nullopt;
    at = found + 1;
  }
  return at;
}

std::optional<std::string_view> written_out(std::string_view text,
                                            std::span<const std::string_view> names) {
  std::optional<std::string_view> nearest;
  std::size_t fewest = 0;
  for (const std::string_view name : names) {
    const std::optional<std::size_t> letters = letters_that_hold(name, text);
    if (!letters || (nearest && *letters >= fewest)) continue;
    nearest = name;
    fewest = *letters;
  }
  return nearest;
}

}  // namespace

std::size_t edit_distance(std::string_view a, std::string_view b) {
  std::vector<std::vector<std::size_t>> rows(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) {
    for (std::size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        rows[i][j] = i + j;
        continue;
      }
      const std::size_t replaced = rows[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      rows[i][j] = std::min({replaced, rows[i - 1][j] + 1, rows[i][j - 1] + 1});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
      }
    }
  }
  return rows[a.size()][b.size()];
}

std::optional<std::string_view> likely_name(std::string_view text,
                                            std::span<const std::string_view> names) {
  if (text.empty() || text.size() > kLongestWord || names.empty()) return std::nullopt;
  if (text.size() >= kShortestAbbreviation) {
    if (const std::optional<std::string_view> name = written_out(text, names)) return name;
  }
  const auto closest =
      std::min_element(names.begin(), names.end(), [text](std::string_view a, std::string_view b) {
        return edit_distance(text, a) < edit_distance(text, b);
      });
  const std::size_t shorter = std::min(text.size(), closest->size());
  if (edit_distance(text, *closest) > std::max<std::size_t>(1, shorter / 3)) return std::nullopt;
  return *closest;
}

}  // namespace tool
