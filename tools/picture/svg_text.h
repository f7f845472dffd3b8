// A page as an SVG picture: one file without any other, no script.
#pragma once

#include <string>

#include "tools/picture/page.h"

namespace tool {

// A whole file.
std::string svg_text(const Page& page);

// The element alone, for a page that brings the style sheet. Its parts say their bytes in
// attributes, for a script.
std::string svg_element(const Page& page);

}  // namespace tool
