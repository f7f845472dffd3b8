#include "tools/record/foreign_layout.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>
#include <set>
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

// A text that says one thing twice may be read either way.
class NamesOnce {
 public:
  explicit NamesOnce(const std::string& path) : path_(path) {}

  void see(Json::parse_event_t event, const Json& parsed) {
    using Event = Json::parse_event_t;
    if (event == Event::object_start) open_.emplace_back();
    if (event == Event::object_end) open_.pop_back();
    if (event != Event::key) return;
    const auto& name = parsed.get_ref<const std::string&>();
    if (!open_.back().insert(name).second) {
      refuse("{}: {} stands twice in one object; leave one of them", in_quotes(path_),
             in_quotes(name));
    }
  }

 private:
  const std::string& path_;
  std::vector<std::set<std::string>> open_;  // names of the objects that are not closed yet
};

// None for a text that is no JSON.
std::optional<Json> json_in(const std::string& path, const std::vector<unsigned char>& text) {
  // Behind a zero byte the parser would not look any further.
  if (std::find(text.begin(), text.end(), '\0') != text.end()) return std::nullopt;
  NamesOnce names(path);
  const auto see = [&names](int /*depth*/, Json::parse_event_t event, const Json& parsed) {
    names.see(event, parsed);
    return true;
  };
  Json json = Json::parse(text.begin(), text.end(), see, false);
  if (json.is_discarded()) return std::nullopt;
  return json;
}

// What stands in place of a number; nothing that may be long.
std::string found_text(const Json& json) {
  return json.is_number() || json.is_boolean() ? json.dump()
                                               : fmt::format("of type {}", json.type_name());
}

ForeignPlane plane_of(const Json& json, const std::string& path) {
  ForeignPlane plane;
  for (const NumberName& known : foreign_plane_names()) {
    const auto found = json.find(known.field_name);
    if (found == json.end() || found->is_null()) continue;
    if (!found->is_number_unsigned()) {
      refuse("{}: {} is {}; it is a whole number from 0 to {}, for example 7680", in_quotes(path),
             known.field_name, found_text(*found), std::numeric_limits<uint64_t>::max());
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
  const std::optional<Json> json = json_in(path, bytes);
  const Json* const planes = json ? planes_in(*json) : nullptr;
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
