// Counts with their noun: "1 slice", "6 slices".
#pragma once

#include <fmt/core.h>

#include <concepts>
#include <string>
#include <string_view>

namespace tool {

template <std::integral Count>
std::string counted(Count count, std::string_view noun) {
  return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

}  // namespace tool
