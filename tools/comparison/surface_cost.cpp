#include "tools/comparison/surface_cost.h"

#include <algorithm>

#include "formats/format_traits.h"

namespace tool {
namespace {

constexpr uint64_t started_units(uint64_t texels, uint64_t texels_of_one) {
  return (texels + texels_of_one - 1) / texels_of_one;
}

uint64_t plane_payload_bytes(const SurfaceRequest& request, uint32_t plane, uint64_t width_texels,
                             uint64_t height_texels) {
  const korvel::FormatTraits& format = korvel::format_traits(request.format);
  const bool one_plane = own_planes(request.format) == 1;
  const uint64_t element_bytes = one_plane ? format.bytes : korvel::plane_bytes(format, plane);
  const ChromaSteps steps = plane == 0 ? ChromaSteps{} : chroma_steps(request.format);
  const uint64_t columns =
      started_units(width_texels, uint64_t{format.block.width} * steps.width_texels);
  const uint64_t rows =
      started_units(height_texels, uint64_t{format.block.height} * steps.height_texels);
  return columns * rows * element_bytes * request.samples;
}

}  // namespace

ChromaSteps chroma_steps(uint32_t format) {
  switch (format) {
    case 103:                 // NV12
    case 104:                 // P010
    case 105:                 // P016
    case 106: return {2, 2};  // 420_OPAQUE
    case 110: return {4, 1};  // NV11
    default: return {};
  }
}

uint64_t payload_bytes(const SurfaceRequest& request) {
  const uint32_t planes = std::min(request.planes, own_planes(request.format));
  auto width_texels = static_cast<uint64_t>(request.size.width);
  auto height_texels = static_cast<uint64_t>(request.size.height);
  uint64_t slice_bytes = 0;
  for (uint32_t level = 0; level < request.levels.value_or(1); ++level) {
    for (uint32_t plane = 0; plane < planes; ++plane) {
      slice_bytes += plane_payload_bytes(request, plane, width_texels, height_texels);
    }
    if (width_texels == 1 && height_texels == 1) break;  // what follows holds nothing more
    width_texels = std::max<uint64_t>(width_texels / 2, 1);
    height_texels = std::max<uint64_t>(height_texels / 2, 1);
  }
  return slice_bytes * static_cast<uint64_t>(request.size.depth);
}

std::optional<double> SurfaceCost::padding_per_cent() const {
  if (bytes == 0) return std::nullopt;
  return 100.0 * static_cast<double>(padding_bytes()) / static_cast<double>(bytes);
}

SurfaceCost surface_cost(const SurfaceRequest& request, const MemoryLayout& record) {
  SurfaceCost cost = {.bytes = record.total_size - record.size,
                      .payload_bytes = payload_bytes(request)};
  for (uint32_t l = 0; l < record.levels; ++l) {
    for (uint32_t p = 0; p < record.level[l].planes; ++p) {
      const PlaneLayout& plane = record.level[l].plane[p];
      // Those of a linear chain have a size, but no place.
      const bool placed = plane.flag_valid != 0 && plane.flag_slice_pitch != 0;
      if (placed) cost.flag_bytes += plane.flag_size * record.level[l].slices;
    }
  }
  if (record.extra_valid != 0) cost.extra_bytes = record.extra_size;
  return cost;
}

}  // namespace tool
