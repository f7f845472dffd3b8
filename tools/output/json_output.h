// What all JSON outputs have in common; docs/korvel-layout.schema.json describes them.
#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// The text of an output: the version of the schema and the command in front of what the command
// says, its warnings behind.
std::string json_text(std::string_view command, const nlohmann::ordered_json& body,
                      const std::vector<std::string>& warnings);

// An id as number and as hex text: "chip_id": 1124139008, "chip_id_hex": "0x43010000".
void add_id(nlohmann::ordered_json& json, const std::string& name, uint32_t id);

// The same of a model code, which has 6 digits.
void add_model_code(nlohmann::ordered_json& json, uint32_t model_code);

// A format and its name; null for one without a name.
void add_format(nlohmann::ordered_json& json, const std::string& name, uint32_t format);

}  // namespace tool
