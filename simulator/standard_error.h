// Lines on standard error.
#pragma once

#include <string_view>

namespace simulator {

// Writes the line, which brings its newline, at once. errno is kept, because a caller that reports
// a failure may still need it.
void write_to_standard_error(std::string_view line);

}  // namespace simulator
