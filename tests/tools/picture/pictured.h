// Layouts of the built library as scenes.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/harness/chips.h"
#include "tests/harness/gpu.h"
#include "tests/tools/exported_layout.h"
#include "tools/explanation/explain_surface.h"
#include "tools/picture/scene.h"
#include "tools/request/surface_request.h"

namespace picture_test {

struct Pictured {
  LayoutMetadata blob = {};
  std::vector<tool::PlaneImage> images;
  tool::Scene scene;
};

inline Pictured pictured(harness::Gpu& gpu, const korvel::ChipRow& chip,
                         const tool::SurfaceRequest& request) {
  Pictured result;
  if (!tool_test::lay_out(gpu, request, result.blob)) {
    ADD_FAILURE() << "refused: " << tool::request_label(request);
    return result;
  }
  const tool::Explanation explanation = tool::explain_surface(chip, request);
  result.images = tool::plane_images(chip, request, result.blob.layout);
  result.scene = tool::make_scene({chip, request, result.blob, explanation, "a chip", {}});
  return result;
}

// On the full chip of family 6.
inline Pictured pictured(const tool::SurfaceRequest& request) {
  const korvel::ChipRow& chip = tool_test::row_of(harness::full_chip(6).chip_id);
  harness::Gpu gpu(chip.chip_id);
  Pictured result = pictured(gpu, chip, request);
  gpu.take_messages();
  return result;
}

inline tool::SurfaceRequest request_of(uint32_t format, tool::SurfaceSize size, uint64_t flags = 0,
                                       uint32_t tiling_mode = KORVEL_TILING_TILED) {
  tool::SurfaceRequest request;
  request.format = format;
  request.size = size;
  request.flags = flags;
  request.tiling_mode = tiling_mode;
  request.planes = tool::own_planes(format);
  return request;
}

}  // namespace picture_test
