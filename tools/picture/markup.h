// Text inside XML and HTML.
#pragma once

#include <string>
#include <string_view>

namespace tool {

// As content or between quotes of an attribute. Characters that XML cannot hold become U+FFFD.
std::string escaped(std::string_view text);

// A number of pixels in the fewest digits, to a hundredth.
std::string pixels(double px);

}  // namespace tool
