#include "tools/output/layout_json.h"

#include "tools/output/json_output.h"
#include "tools/record/uuid_text.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

Json header_json(const MetadataHeader& header) {
  Json json;
  add_id(json, "magic", header.magic);
  json["header_version"] = header.header_version;
  json["blob_size"] = header.blob_size;
  json["record_kind"] = header.record_kind;
  json["record_offset"] = header.record_offset;
  json["record_size"] = header.record_size;
  return json;
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
          {"flag_valid", flags},
          {"flag_offset", word_of(flags, plane.flag_offset)},
          {"flag_size", word_of(flags, plane.flag_size)},
          {"flag_pitch", word_of(flags, plane.flag_pitch)},
          {"flag_slice_pitch", word_of(flags, plane.flag_slice_pitch)}};
}

Json level_json(const LevelLayout& level) {
  Json planes = Json::array();
  for (uint32_t p = 0; p < level.planes; ++p) planes.push_back(plane_json(level.plane[p]));
  return {{"slices", level.slices},
          {"tiled", level.tiled == KORVEL_TILING_TILED},
          {"size", level.size},
          {"planes", level.planes},
          {"plane", std::move(planes)},
          {"lrz_valid", level.lrz_valid != 0},
          {"lrz_fc_valid", level.lrz_fc_valid != 0}};
}

Json record_json(const MemoryLayout& record) {
  const bool extra = record.extra_valid != 0;
  Json levels = Json::array();
  for (uint32_t l = 0; l < record.levels; ++l) levels.push_back(level_json(record.level[l]));
  Json json;
  add_id(json, "signature", record.signature);
  json["size"] = record.size;
  json["device_uuid"] = uuid_text(record.device_uuid);
  json["driver_uuid"] = uuid_text(record.driver_uuid);
  json["total_size"] = record.total_size;
  json["alignment"] = record.alignment;
  json["format"] = record.format;
  json["samples"] = record.samples;
  json["linear_fallback"] = record.linear_fallback != 0;
  json["levels"] = record.levels;
  json["level"] = std::move(levels);
  json["extra_valid"] = extra;
  json["extra_offset"] = word_of(extra, record.extra_offset);
  json["extra_size"] = word_of(extra, record.extra_size);
  json["extra_slice_pitch"] = word_of(extra, record.extra_slice_pitch);
  json["extended"] = record.extended != 0;
  return json;
}

}  // namespace

Json chip_json(const Chip& chip) {
  Json json;
  add_id(json, "chip_id", chip.chip_id);
  json["known"] = chip.has_row;
  json["family_id"] = chip.row.family_id;
  add_model_code(json, chip.row.model_code);
  add_id(json, "rev_id", chip.row.rev_id);
  json["supported"] = chip.row.supported;
  return json;
}

Json request_json(const SurfaceRequest& request) {
  Json json;
  add_format(json, "format", request.format);
  json["width"] = request.size.width;
  json["height"] = request.size.height;
  json["depth"] = request.size.depth;
  json["samples"] = request.samples;
  json["tiled"] = request.tiling_mode == KORVEL_TILING_TILED;
  json["planes"] = request.planes;
  json["levels"] = request.levels ? Json(*request.levels) : Json();
  json["ubwc"] = (request.flags & LAYOUT_FLAG_UBWC) != 0;
  json["extra"] = (request.flags & LAYOUT_FLAG_EXTRA) != 0;
  json["extended"] = (request.flags & LAYOUT_FLAG_EXTENDED) != 0;
  return json;
}

Json layout_json(const Chip& chip, const SurfaceRequest& request, const LayoutMetadata& blob) {
  return {{"chip", chip_json(chip)},
          {"request", request_json(request)},
          {"header", header_json(blob.header)},
          {"layout", record_json(blob.layout)},
          {"gpu_buffer_size", korvel_get_aligned_gpu_buffer_size(&blob)}};
}

}  // namespace tool
