// The data that a command was asked for.
#pragma once

#include <string_view>

namespace tool {

// Throws BadInput when standard output does not take all of it.
void print_data(std::string_view text);

}  // namespace tool
