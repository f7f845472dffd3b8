#include "tools/output/layout_json.h"

#include <fmt/core.h>

#include <optional>

#include "tools/record/uuid_text.h"
#include "tools/request/format_names.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

// A format without a name is null.
Json name_json(uint32_t format) {
  const std::string_view name = format_name(format);
  return name.empty() ? Json() : Json(name);
}

std::string hex_text(uint32_t id) {
  return fmt::format("0x{:08X}", id);
}

Json header_json(const MetadataHeader& header) {
  return {{"magic", header.magic},
          {"header_version", header.header_version},
          {"blob_size", header.blob_size},
          {"record_kind", header.record_kind},
          {"record_offset", header.record_offset},
          {"record_size", header.record_size}};
}

// The words of a buffer that does not exist are null.
Json word_of(bool exists, uint64_t word) {
  return exists ? Json(word) : Json();
}

Json plane_json(const PlaneLayout& plane) {
  const bool flags = plane.flag_valid != 0;
  return {{"image_offset", plane.image_offset},
          {"image_size", plane.image_size},
          {"image_pitch", plane.image_pitch},
          {"image_slice_pitch", plane.image_slice_pitch},
          {"image_element_size", plane.image_element_size},
          {"image_width", plane.image_width},
          {"image_height", plane.image_height},
          {"flag_valid", plane.flag_valid},
          {"flag_offset", word_of(flags, plane.flag_offset)},
          {"flag_size", word_of(flags, plane.flag_size)},
          {"flag_pitch", word_of(flags, plane.flag_pitch)},
          {"flag_slice_pitch", word_of(flags, plane.flag_slice_pitch)}};
}

Json level_json(const LevelLayout& level) {
  Json planes = Json::array();
  for (uint32_t p = 0; p < level.planes; ++p) planes.push_back(plane_json(level.plane[p]));
  return {{"slices", level.slices},
          {"tiled", level.tiled},
          {"size", level.size},
          {"planes", level.planes},
          {"plane", std::move(planes)},
          {"lrz_valid", level.lrz_valid},
          {"lrz_fc_valid", level.lrz_fc_valid}};
}

Json record_json(const MemoryLayout& record) {
  const bool extra = record.extra_valid != 0;
  Json levels = Json::array();
  for (uint32_t l = 0; l < record.levels; ++l) levels.push_back(level_json(record.level[l]));
  return {{"signature", record.signature},
          {"size", record.size},
          {"device_uuid", uuid_text(record.device_uuid)},
          {"driver_uuid", uuid_text(record.driver_uuid)},
          {"total_size", record.total_size},
          {"alignment", record.alignment},
          {"format", record.format},
          {"samples", record.samples},
          {"linear_fallback", record.linear_fallback},
          {"levels", record.levels},
          {"level", std::move(levels)},
          {"extra_valid", record.extra_valid},
          {"extra_offset", word_of(extra, record.extra_offset)},
          {"extra_size", word_of(extra, record.extra_size)},
          {"extra_slice_pitch", word_of(extra, record.extra_slice_pitch)},
          {"extended", record.extended}};
}

}  // namespace

Json chip_json(const Chip& chip) {
  return {{"chip_id", chip.chip_id},
          {"chip_id_hex", hex_text(chip.chip_id)},
          {"known", chip.has_row},
          {"family_id", chip.row.family_id},
          {"model_code", chip.row.model_code},
          {"model_code_hex", fmt::format("0x{:06X}", chip.row.model_code)},
          {"rev_id", chip.row.rev_id},
          {"rev_id_hex", hex_text(chip.row.rev_id)},
          {"supported", chip.row.supported}};
}

Json request_json(const SurfaceRequest& request) {
  return {{"format", request.format},
          {"format_name", name_json(request.format)},
          {"width", request.size.width},
          {"height", request.size.height},
          {"depth", request.size.depth},
          {"samples", request.samples},
          {"tiled", request.tiling_mode == KORVEL_TILING_TILED},
          {"planes", request.planes},
          {"levels", request.levels ? Json(*request.levels) : Json()},
          {"ubwc", (request.flags & LAYOUT_FLAG_UBWC) != 0},
          {"extra", (request.flags & LAYOUT_FLAG_EXTRA) != 0},
          {"extended", (request.flags & LAYOUT_FLAG_EXTENDED) != 0}};
}

Json layout_json(const Chip& chip, const SurfaceRequest& request, const LayoutMetadata& blob) {
  return {{"chip", chip_json(chip)},
          {"request", request_json(request)},
          {"header", header_json(blob.header)},
          {"layout", record_json(blob.layout)},
          {"gpu_buffer_size", korvel_get_aligned_gpu_buffer_size(&blob)}};
}

}  // namespace tool
