// Layouts that come from elsewhere, as users write them.
#pragma once

#include <string>
#include <vector>

#include "tools/comparison/layout_fit.h"

namespace tool {

// "pitch=7680,height=1080,offset=0,size=8294400". Throws BadInput.
ForeignPlane parse_foreign_plane(const std::string& text);

// A JSON file with the names that show prints: {"plane": [{"image_pitch": 7680}]}, or what show
// --json prints itself, of which level 0 counts. Throws BadInput.
std::vector<ForeignPlane> read_foreign_planes(const std::string& path);

}  // namespace tool
