#include "tools/picture/plane_image.h"

#include <algorithm>

#include "align/family5_rules.h"
#include "align/family67_rules.h"
#include "formats/compressed_extent.h"
#include "formats/sample_tile_dims.h"
#include "layout/surface.h"

namespace tool {
namespace {

using Elements = korvel::Extent<korvel::Elements>;
using SignedTexels = korvel::SignedExtent<korvel::Texels>;

uint32_t started_blocks(int32_t texels, uint32_t block_texels) {
  if (block_texels == 0) return 0;
  return static_cast<uint32_t>(std::max(korvel::blocks_that_hold(texels, block_texels), 0));
}

Elements elements_of(const korvel::FormatTraits& format, SignedTexels size) {
  if (!korvel::has_rule(format, korvel::kRuleBlockCompressed)) {
    return {static_cast<uint32_t>(size.width), static_cast<uint32_t>(size.height)};
  }
  return {started_blocks(size.width, format.block.width),
          started_blocks(size.height, format.block.height)};
}

Elements tile_of(const korvel::ChipRow& chip, const korvel::AlignmentRequest& request,
                 uint32_t plane) {
  if (!korvel::is_tiled(request) || !chip.supported) return {0, 0};
  if (chip.family_id != 5) return korvel::plane_tile_family67(request, plane);
  const uint32_t bytes = korvel::element_bytes(request, plane);
  if (!korvel::has_tile_family5(bytes)) return {0, 0};
  return korvel::tile_size(bytes, korvel::tile_variant_family5(request.format));
}

// A linear chain of one plane has flag buffers by its words, but no place for them.
bool has_place(const PlaneLayout& plane) {
  return plane.flag_valid != 0 && plane.flag_slice_pitch != 0;
}

}  // namespace

std::vector<PlaneImage> plane_images(const korvel::ChipRow& chip, const SurfaceRequest& request,
                                     const MemoryLayout& record) {
  const korvel::AlignmentRequest alignment = korvel::alignment_request(
      request.format, request.samples, request.tiling_mode, chip.properties.aux_alignment);
  std::vector<PlaneImage> images;
  SignedTexels size = korvel::first_level({request.size.width, request.size.height});
  for (uint32_t l = 0; l < record.levels; ++l) {
    const LevelLayout& level = record.level[l];
    const Elements asked = elements_of(alignment.format, size);
    for (uint32_t p = 0; p < level.planes; ++p) {
      const PlaneLayout& layout = level.plane[p];
      images.push_back({
          .level = l,
          .plane = p,
          .slices = level.slices,
          .tiled = korvel::is_tiled(alignment),
          .layout = layout,
          .payload = {std::min(asked.width, layout.image_width),
                      std::min(asked.height, layout.image_height)},
          .tile = tile_of(chip, alignment, p),
          .flag_tile =
              korvel::sample_tile_dims(chip.family_id, alignment.format, p != 0, request.samples),
          .has_flags = has_place(layout),
      });
    }
    size = korvel::next_level(size);
  }
  return images;
}

uint64_t rows_bytes(const PlaneImage& image) {
  const uint64_t exact = uint64_t{image.layout.image_pitch} * image.layout.image_height;
  return std::min(exact, image.layout.image_size);
}

uint64_t payload_bytes(const PlaneImage& image) {
  const uint64_t elements = uint64_t{image.payload.width} * image.payload.height;
  uint64_t bytes = 0;
  const bool fits =
      !__builtin_mul_overflow(elements, uint64_t{image.layout.image_element_size}, &bytes);
  return fits ? std::min(bytes, rows_bytes(image)) : rows_bytes(image);
}

}  // namespace tool
