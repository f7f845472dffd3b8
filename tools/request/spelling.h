// What a mistyped or shortened word may have meant.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tool {

// Letters to insert, remove, replace or swap with the next one until one text is the other.
std::size_t edit_distance(std::string_view a, std::string_view b);

// Of the names that begin with the same letter and hold all others in their order, as
// R8G8B8A8_UNORM does for RGBA8, the one that holds them nearest to its beginning. Where there is
// none, the one that is the fewest letters away, but at most every third. The first one of several.
std::optional<std::string_view> likely_name(std::string_view text,
                                            std::span<const std::string_view> names);

}  // namespace tool
