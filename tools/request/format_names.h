// The names of the formats that have one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tool {

// Without its prefix, for example "R8G8B8A8_UNORM"; empty for a format without a name.
std::string_view format_name(uint32_t format);

// "R8G8B8A8_UNORM (28)", or "format 501".
std::string format_label(uint32_t format);

// "formats are 1 to 721 or have names, for example 28 ..."
std::string allowed_formats();

// A number, or a name with or without its prefix in any case; names with VK_FORMAT_ and those of DRM
// with their four letters are understood too. Throws BadInput.
uint32_t parse_format(std::string_view text);

}  // namespace tool
