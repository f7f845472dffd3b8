// The colours and letters of pictures.
#pragma once

#include <string_view>

namespace tool {

// A style sheet for both brightnesses, as the reader's system asks for them.
std::string_view picture_style();

}  // namespace tool
