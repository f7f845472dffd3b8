#include "tools/output/scene_json.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

Json said_json(const Said& said) {
  return {{"text", said.text}, {"explanation", said.explanation}};
}

Json said_list_json(const std::vector<Said>& list) {
  Json json = Json::array();
  for (const Said& said : list) json.push_back(said_json(said));
  return json;
}

Json part_json(const SheetPart& part) {
  return {{"role", words_of(part.role).name},
          {"x", part.x},
          {"y", part.y},
          {"width", part.width},
          {"height", part.height},
          {"said", said_json(part.said)}};
}

Json sheet_json(const Sheet& sheet) {
  Json parts = Json::array();
  for (const SheetPart& part : sheet.parts) parts.push_back(part_json(part));
  return {{"kind", sheet.kind == Sheet::Kind::image ? "image" : "flags"},
          {"level", sheet.level},
          {"plane", sheet.plane},
          {"name", sheet.name},
          {"width", sheet.width},
          {"height", sheet.height},
          {"tile_width", sheet.tile_width},
          {"tile_height", sheet.tile_height},
          {"slices", sheet.slices},
          {"parts", std::move(parts)},
          {"captions", said_list_json(sheet.captions)}};
}

const char* buffer_name(Buffer buffer) {
  switch (buffer) {
    case Buffer::image: return "image";
    case Buffer::flags: return "flags";
    case Buffer::extra: return "extra";
  }
  return "";
}

Json buffer_json(const BufferSlice& slice) {
  return {{"buffer", buffer_name(slice.buffer)},
          {"level", slice.level},
          {"plane", slice.plane},
          {"first_slice", slice.first_slice},
          {"slices", slice.slices}};
}

Json band_json(const Band& band) {
  Json buffers = Json::array();
  for (const BufferSlice& slice : band.part.buffers) buffers.push_back(buffer_json(slice));
  return {{"role", words_of(band.part.role).name},
          {"first_byte", band.part.first_byte},
          {"end_byte", band.part.end_byte},
          {"buffers", std::move(buffers)},
          {"labels", band.labels},
          {"said", said_json(band.said)}};
}

// What a part of each role shows, for a legend.
Json roles_json() {
  Json json;
  for (const RoleWords& words : kRoleWords) json[std::string(words.name)] = words.meaning;
  return json;
}

}  // namespace

Json scene_json(const Scene& scene) {
  Json sheets = Json::array();
  for (const Sheet& sheet : scene.sheets) sheets.push_back(sheet_json(sheet));
  Json bands = Json::array();
  for (const Band& band : scene.bands) bands.push_back(band_json(band));
  return {{"title", scene.title},
          {"chip", scene.chip},
          {"totals", said_list_json(scene.totals)},
          {"elements", scene.elements},
          {"sheets", std::move(sheets)},
          {"allocation_bytes", scene.allocation_bytes},
          {"bands", std::move(bands)},
          {"roles", roles_json()},
          {"warnings", scene.warnings}};
}

}  // namespace tool
