#include "tools/record/foreign_layout.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
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

constexpr const char kPlaneExample[] = "--plane pitch=7680,height=1080,offset=0,size=8294400";
constexpr const char kJsonExample[] = R"({"plane": [{"image_pitch": 7680}]})";

std::string did_you_mean(std::string_view text, const std::vector<std::string_view>& names) {
  const std::optional<std::string_view> likely = likely_name(text, names);
  return likely ? fmt::format("; did you mean {}? Write", *likely) : std::string("; write");
}

const NumberName& name_of(std::string_view text) {
  std::vector<std::string_view> names;
  for (const NumberName& known : foreign_plane_names()) {
    if (text == known.name) return known;
    names.emplace_back(known.name);
  }
  refuse("--plane: {} is no number of a plane{} for example {}", in_quotes(text),
         did_you_mean(text, names), kPlaneExample);
}

// What show prints of a plane beside the numbers that count here.
constexpr std::string_view kFurtherNames[] = {"image_element_size", "image_width", "flag_valid",
                                              "flag_slice_pitch"};

void check_name(const std::string& name, const std::string& path) {
  std::vector<std::string_view> names;
  for (const NumberName& known : foreign_plane_names()) names.emplace_back(known.field_name);
  const auto knows = [&name](const auto& list) {
    return std::find(std::begin(list), std::end(list), name) != std::end(list);
  };
  if (knows(names) || knows(kFurtherNames)) return;
  refuse("{}: {} is no number of a plane{} for example {}", in_quotes(path), in_quotes(name),
         did_you_mean(name, names), kJsonExample);
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
      refuse("{}: {} stands twice in one object; leave one of them, for example {}",
             in_quotes(path_), in_quotes(name), kJsonExample);
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

// What stands in place of a number. Of lists and objects, which may be deep, the type alone.
std::string found_text(const Json& json) {
  if (json.is_structured()) return fmt::format("an {}", json.type_name());
  return in_quotes(json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

ForeignPlane plane_of(const Json& json, const std::string& path) {
  for (const auto& [name, value] : json.items()) check_name(name, path);
  ForeignPlane plane;
  for (const NumberName& known : foreign_plane_names()) {
    const auto found = json.find(known.field_name);
    if (found == json.end() || found->is_null()) continue;
    if (!found->is_number_unsigned()) {
      refuse("{}: {} is no whole number from 0 to {}, but {}; write for example {}",
             in_quotes(path), known.field_name, std::numeric_limits<uint64_t>::max(),
             found_text(*found), kJsonExample);
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
  for_each_item(text, [&](std::string_view item) {
    const std::size_t equals = item.find('=');
    const NumberName& name = name_of(item.substr(0, equals));
    const std::optional<uint64_t> number =
        equals == std::string_view::npos ? std::nullopt : long_number_of(item.substr(equals + 1));
    if (!number) {
      refuse("--plane: {} has no number; write for example {}=7680", in_quotes(item), name.name);
    }
    if (plane.*name.member) {
      refuse("--plane: {} stands there twice in {}; write for example {}", name.name,
             in_quotes(text), kPlaneExample);
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
    refuse("{} is no JSON with planes; write for example {}", in_quotes(path), kJsonExample);
  }
  std::vector<ForeignPlane> found;
  for (const Json& plane : *planes) {
    if (!plane.is_object()) {
      refuse("{}: a plane is an object of numbers; write for example {}", in_quotes(path),
             kJsonExample);
    }
    if (found.size() == KORVEL_MAX_PLANES) {
      refuse("{}: a surface has at most {} planes, and {} stand there; leave the others out",
             in_quotes(path), KORVEL_MAX_PLANES, planes->size());
    }
    found.push_back(plane_of(plane, path));
  }
  return found;
}

}  // namespace tool
