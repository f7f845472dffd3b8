// The text of docs/korvel-layout.schema.json, which describes every JSON output.
#pragma once

#include <string_view>

namespace tool {

extern const std::string_view kJsonSchema;

}  // namespace tool
