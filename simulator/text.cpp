#include "text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

namespace simulator {

std::string format_text(const char* format, std::va_list arguments) {
  std::va_list arguments_again;
  va_copy(arguments_again, arguments);
  std::array<char, 4096> buffer;
  const int length = std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
  std::string text;
  if (length < 0) {
    text = format;
  } else if (const auto size = static_cast<std::size_t>(length); size < buffer.size()) {
    text.assign(buffer.data(), size);
  } else {
    text.resize(size);
    // The terminator goes where the string keeps its own.
    std::vsnprintf(text.data(), size + 1, format, arguments_again);
  }
  va_end(arguments_again);
  return text;
}

void copy_text(char* destination, std::size_t size, std::string_view text) {
  if (size == 0) {
    return;
  }
  const std::size_t length = std::min(text.size(), size - 1);
  std::memcpy(destination, text.data(), length);
  destination[length] = '\0';
}

const char* text_or_null(const char* text) {
  return text == nullptr ? "(null)" : text;
}

}  // namespace simulator
