// A stored file field by field, as text for people and as JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "tools/record/record_dump.h"

namespace tool {

// What the library says to the record that a file holds.
struct DumpVerdict {
  std::optional<bool> accepted;          // nothing where there is no whole record
  std::string reason;                    // why it is refused, or has no verdict
  std::vector<std::string> limits = {};  // of an acceptance
};

std::string dump_text(const RecordDump& dump, const DumpVerdict& verdict);
nlohmann::ordered_json dump_json(const RecordDump& dump, const DumpVerdict& verdict);

}  // namespace tool
