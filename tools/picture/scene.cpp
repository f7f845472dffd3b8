#include "tools/picture/scene.h"

#include "tools/picture/bands.h"
#include "tools/picture/sheets.h"
#include "tools/picture/totals.h"

namespace tool {
namespace {

std::string elements_sentence(const korvel::FormatTraits& format) {
  if (!korvel::has_rule(format, korvel::kRuleBlockCompressed)) return "One element is one texel.";
  return fmt::format("One element is one block of {} x {} texels.", format.block.width,
                     format.block.height);
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
      .elements = elements_sentence(korvel::format_traits(source.request.format)),
      .sheets = sheets(source, images),
      .allocation_bytes = allocation_bytes,
      .bands = bands(source, images, memory_map(images, record, allocation_bytes)),
      .warnings = source.warnings,
  };
}

}  // namespace tool
