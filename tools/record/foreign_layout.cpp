#include "tools/record/foreign_layout.h"

#include <nlohmann/json.hpp>
#include <string_view>

#include "tools/output/standard_error.h"
#include "tools/record/input_file.h"
#include "tools/request/bad_input.h"
#include "tools/request/number_text.h"
#include "tools/request/spelling.h"
#include "tools/request/text_list.h"

namespace tool {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kLongestLayoutFile = 1 << 20;

const NumberName& name_of(std::string_view text) {
  std::vector<std::string_view> names;
  for (const NumberName& known : foreign_plane_names()) {
    if (text == known.name) return known;
    names.emplace_back(known.name);
  }
  refuse("--plane: {} is no number of a plane; did you mean {}? Write for example {}",
         in_quotes(text), closest_name(text, names),
         "--plane pitch=7680,height=1080,offset=0,size=8294400");
}

ForeignPlane plane_of(const Json& json, const std::string& path) {
  ForeignPlane plane;
  for (const NumberName& known : foreign_plane_names()) {
    const auto found = json.find(known.field_name);
    if (found == json.end() || found->is_null()) continue;
    if (!found->is_number_unsigned()) {
      refuse("{}: {} is no number from 0 on", in_quotes(path), known.field_name);
    }
    plane.*known.member = found->get<uint64_t>();
  }
  return plane;
}

// Of what show prints, the planes of level 0.
const Json* planes_in(const Json& json) {
  const Json* at = &json;
  if (at->is_object() && at->contains("layout")) at = &at->at("layout");
  if (at->is_object() && at->contains("level")) {
    const Json& levels = at->at("level");
    if (!levels.is_array() || levels.empty()) return nullptr;
    at = &levels.front();
  }
  if (!at->is_object() || !at->contains("plane")) return nullptr;
  const Json& planes = at->at("plane");
  return planes.is_array() ? &planes : nullptr;
}

}  // namespace

ForeignPlane parse_foreign_plane(const std::string& text) {
  ForeignPlane plane;
  for_each_item(text, [&plane](std::string_view item) {
    const std::size_t equals = item.find('=');
    const NumberName& name = name_of(item.substr(0, equals));
    const std::optional<uint64_t> number =
        equals == std::string_view::npos ? std::nullopt : long_number_of(item.substr(equals + 1));
    if (!number) {
      refuse("--plane: {} has no number; write for example {}=7680", in_quotes(item), name.name);
    }
    plane.*name.member = number;
  });
  return plane;
}

std::vector<ForeignPlane> read_foreign_planes(const std::string& path) {
  const std::vector<unsigned char> bytes = read_file(path, kLongestLayoutFile);
  if (bytes.size() > kLongestLayoutFile) {
    refuse("{} holds more than {} bytes; a layout is shorter", in_quotes(path), kLongestLayoutFile);
  }
  const Json json = Json::parse(bytes.begin(), bytes.end(), nullptr, false);
  const Json* const planes = json.is_discarded() ? nullptr : planes_in(json);
  if (planes == nullptr) {
    refuse(R"({} is no JSON with planes; write for example {{"plane": [{{"image_pitch": 7680}}]}})",
           in_quotes(path));
  }
  std::vector<ForeignPlane> found;
  for (const Json& plane : *planes) {
    if (!plane.is_object()) refuse("{}: a plane is an object of numbers", in_quotes(path));
    if (found.size() == KORVEL_MAX_PLANES) {
      refuse("{}: a surface has at most {} planes", in_quotes(path), KORVEL_MAX_PLANES);
    }
    found.push_back(plane_of(plane, path));
  }
  return found;
}

}  // namespace tool
