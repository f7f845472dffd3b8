// What a mistyped word may have meant.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tool {

// Letters to insert, remove or replace until one text is the other.
std::size_t edit_distance(std::string_view a, std::string_view b);

// The name that is the fewest letters away; the first one of several. There is at least one name.
std::string_view closest_name(std::string_view text, std::span<const std::string_view> names);

}  // namespace tool
