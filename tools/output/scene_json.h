// The scene of a picture as JSON: rectangles in elements, rows and bytes, for who draws them.
#pragma once

#include <nlohmann/json.hpp>

#include "tools/picture/scene.h"

namespace tool {

nlohmann::ordered_json scene_json(const Scene& scene);

}  // namespace tool
