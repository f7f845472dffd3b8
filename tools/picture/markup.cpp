#include "tools/picture/markup.h"

#include <fmt/core.h>

namespace tool {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

bool is_control(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

}  // namespace

std::string escaped(std::string_view text) {
  std::string safe;
  safe.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '&': safe += "&amp;"; break;
      case '<': safe += "&lt;"; break;
      case '>': safe += "&gt;"; break;
      case '"': safe += "&quot;"; break;
      case '\'': safe += "&#39;"; break;
      case '\n': safe += "&#10;"; break;
      default:
        if (is_control(c)) {
          safe += kReplacement;
        } else {
          safe += c;
        }
    }
  }
  return safe;
}

std::string pixels(double px) {
  std::string text = fmt::format("{:.2f}", px);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.ends_with('.')) text.pop_back();
  return text == "-0" ? "0" : text;
}

}  // namespace tool
