#include "tools/output/json_output.h"

#include <fmt/core.h>

#include "tools/request/format_names.h"

namespace tool {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kSchemaVersion = 1;

}  // namespace

std::string json_text(std::string_view command, const Json& body,
                      const std::vector<std::string>& warnings) {
  Json json = {{"schema_version", kSchemaVersion}, {"command", command}};
  json.update(body);
  json["warnings"] = warnings;
  // Texts may quote a file's name, which need not be UTF-8.
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

void add_id(Json& json, const std::string& name, uint32_t id) {
  json[name] = id;
  json[name + "_hex"] = fmt::format("0x{:08X}", id);
}

void add_model_code(Json& json, uint32_t model_code) {
  json["model_code"] = model_code;
  json["model_code_hex"] = fmt::format("0x{:06X}", model_code);
}

void add_format(Json& json, const std::string& name, uint32_t format) {
  const std::string_view known = format_name(format);
  json[name] = format;
  json[name + "_name"] = known.empty() ? Json() : Json(known);
}

}  // namespace tool
