// The words of a memory map.
#pragma once

#include <span>
#include <vector>

#include "tools/picture/plane_image.h"
#include "tools/picture/scene.h"

namespace tool {

std::vector<Band> bands(const PictureSource& source, std::span<const PlaneImage> images,
                        const std::vector<MapPart>& parts);

}  // namespace tool
