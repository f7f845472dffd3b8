// The class bits of the format table by name.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

// In the order of the bits, for example {"UNORM", "SRGB"}.
std::vector<std::string> format_flag_names(uint32_t flags);

}  // namespace tool
