#include "tools/picture/scene.h"

#include <fmt/core.h>

#include "formats/format_traits.h"
#include "tools/picture/bands.h"
#include "tools/picture/sheets.h"
#include "tools/picture/totals.h"

namespace tool {
namespace {

std::string elements_sentence(const SurfaceRequest& request) {
  const korvel::FormatTraits& format = korvel::format_traits(request.format);
  std::string text = "One element is one texel.";
  if (korvel::has_rule(format, korvel::kRuleBlockCompressed)) {
    text = fmt::format("One element is one block of {} x {} texels.", format.block.width,
                       format.block.height);
  }
  if (request.planes > 1) text += " Every plane takes the whole size of the surface, chroma too.";
  return text;
}

}  // namespace

Scene make_scene(const PictureSource& source) {
  const MemoryLayout& record = source.blob.layout;
  const std::vector<PlaneImage> images = plane_images(source.chip, source.request, record);
  const uint64_t allocation_bytes = record.total_size - record.size;
  return {
      .title = request_label(source.request),
      .chip = source.chip_words,
      .totals = totals(source, images),
      .elements = elements_sentence(source.request),
      .sheets = sheets(source, images),
      .allocation_bytes = allocation_bytes,
      .bands = bands(source, images, memory_map(images, record, allocation_bytes)),
      .warnings = source.warnings,
  };
}

}  // namespace tool
