// The script of a picture in HTML.
#pragma once

#include <string_view>

namespace tool {

std::string_view html_script();

}  // namespace tool
