// What the user gave cannot be used. The reason becomes the one line on standard error.
#pragma once

#include <fmt/core.h>

#include <stdexcept>
#include <utility>

namespace tool {

class BadInput : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

template <typename... Arguments>
[[noreturn]] void refuse(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
  throw BadInput(fmt::format(format, std::forward<Arguments>(arguments)...));
}

}  // namespace tool
