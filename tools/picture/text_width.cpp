#include "tools/picture/text_width.h"

#include <algorithm>

namespace tool {
namespace {

constexpr double kRegular_em = 0.62;
constexpr double kBold_em = 0.70;
constexpr double kNarrow_em = 0.40;

bool is_narrow(char c) {
  return std::string_view(" ,.:;()'|!ijlt").find(c) != std::string_view::npos;
}

}  // namespace

double text_width_px(std::string_view text, double size_px, Weight weight) {
  const double wide_em = weight == Weight::bold ? kBold_em : kRegular_em;
  const auto narrow = static_cast<double>(std::count_if(text.begin(), text.end(), is_narrow));
  const auto all = static_cast<double>(text.size());
  return size_px * (narrow * kNarrow_em + (all - narrow) * wide_em);
}

std::vector<std::string> lines_of(std::string_view text, double width_px, double size_px,
                                  Weight weight) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string word(text.substr(0, end));
    const bool fits =
        !lines.empty() && text_width_px(lines.back() + " " + word, size_px, weight) <= width_px;
    if (fits) {
      lines.back() += " " + word;
    } else {
      lines.push_back(word);
    }
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

}  // namespace tool
