// What a surface takes altogether, and how much of it was asked for.
#pragma once

#include <span>
#include <vector>

#include "tools/picture/plane_image.h"
#include "tools/picture/scene.h"

namespace tool {

std::vector<Said> totals(const PictureSource& source, std::span<const PlaneImage> images);

}  // namespace tool
