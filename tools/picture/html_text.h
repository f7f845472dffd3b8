// A page as HTML: one file without any other, readable without its script, which makes the bar of
// the allocation zoomable and shows explanations beside the pointer.
#pragma once

#include <string>

#include "tools/picture/page.h"

namespace tool {

std::string html_text(const Page& page);

}  // namespace tool
