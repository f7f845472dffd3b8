#include "explorer/module/request_json.h"

#include <fmt/ranges.h>

#include <algorithm>
#include <string_view>

#include "tools/request/bad_input.h"

namespace explorer {

using nlohmann::json;
using tool::refuse;

Members::Members(const json& object, std::initializer_list<const char*> known) : object_(object) {
  if (!object.is_object()) refuse("an object is expected, such as {{\"{}\": ...}}", *known.begin());
  for (const auto& [name, value] : object.items()) {
    const bool is_known =
        std::any_of(known.begin(), known.end(),
                    [name = std::string_view(name)](const char* k) { return name == k; });
    if (!is_known) refuse("\"{}\" is no member; there are {}", name, fmt::join(known, ", "));
  }
}

std::optional<std::string> Members::text(const char* name) const {
  const auto found = object_.find(name);
  if (found == object_.end() || found->is_null()) return std::nullopt;
  if (found->is_string()) return found->get<std::string>();
  if (found->is_number_integer()) return found->dump();
  refuse("\"{}\" is neither a text nor a whole number", name);
}

std::string Members::needed_text(const char* name) const {
  const std::optional<std::string> found = text(name);
  if (!found) refuse("\"{}\" is missing", name);
  return *found;
}

bool Members::yes(const char* name) const {
  const auto found = object_.find(name);
  if (found == object_.end()) return false;
  if (!found->is_boolean()) refuse("\"{}\" is neither true nor false", name);
  return found->get<bool>();
}

const json& Members::needed(const char* name) const {
  const auto found = object_.find(name);
  if (found == object_.end()) refuse("\"{}\" is missing", name);
  return *found;
}

tool::RequestOptions request_options(const json& request) {
  const Members members(request, {"format", "size", "chip", "unknown_chip", "samples", "planes",
                                  "levels", "linear", "ubwc", "extra", "extended"});
  return {.format = members.needed_text("format"),
          .size = members.needed_text("size"),
          .chip = members.text("chip"),
          .unknown_chip = members.yes("unknown_chip"),
          .samples = members.text("samples"),
          .planes = members.text("planes"),
          .levels = members.text("levels"),
          .linear = members.yes("linear"),
          .ubwc = members.yes("ubwc"),
          .extra = members.yes("extra"),
          .extended = members.yes("extended")};
}

}  // namespace explorer
