// The images and flag buffers of a surface as sheets.
#pragma once

#include <span>
#include <vector>

#include "tools/picture/plane_image.h"
#include "tools/picture/scene.h"

namespace tool {

// The images first, then the flag buffers; of equal flag buffers of several levels one.
std::vector<Sheet> sheets(const PictureSource& source, std::span<const PlaneImage> images);

}  // namespace tool
