// Formatting, and copying to arrays of a fixed size.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <string>
#include <string_view>

namespace simulator {

// The whole text, of any length; the format itself where it cannot be formatted.
__attribute__((format(printf, 1, 0))) std::string format_text(const char* format,
                                                              std::va_list arguments);

// Copies as much as fits and terminates. A size of 0 bytes copies nothing.
void copy_text(char* destination, std::size_t size, std::string_view text);

// The text, or "(null)" for a null pointer.
const char* text_or_null(const char* text);

}  // namespace simulator
