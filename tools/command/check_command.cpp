#include "tools/command/check_command.h"

#include <fmt/core.h>

#include <cstddef>
#include <vector>

#include <korvel_utils.h>
#include "tools/command/exit_codes.h"
#include "tools/comparison/strict_findings.h"
#include "tools/library/simulated_chip.h"
#include "tools/output/json_output.h"
#include "tools/output/layout_json.h"
#include "tools/output/standard_error.h"
#include "tools/output/standard_output.h"
#include "tools/record/stored_file.h"
#include "tools/record/stored_verdict.h"
#include "tools/record/uuid_text.h"
#include "tools/request/bad_input.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

Uuid device_uuid(const korvel::ChipRow& chip) {
  Uuid uuid{};
  get_device_uuid(uuid.data(), KORVEL_UUID_BYTES, chip.family_id, chip.model_code, chip.rev_id);
  return uuid;
}

void add_header_word(std::vector<std::string>& warnings, const char* name, uint32_t stored,
                     uint32_t expected) {
  if (stored == expected) return;
  warnings.push_back(
      fmt::format("the blob header's {} is {} instead of {}", name, stored, expected));
}

// The validator sees only the record; readers of blobs go by the words in front of it too.
void add_header_warnings(std::vector<std::string>& warnings, const MetadataHeader& header) {
  const auto add = [&warnings](const char* name, uint32_t stored, uint32_t expected) {
    add_header_word(warnings, name, stored, expected);
  };
  add("version", header.header_version, KORVEL_HEADER_VERSION);
  add("blob size", header.blob_size, KORVEL_BLOB_BYTES);
  add("record kind", header.record_kind, KORVEL_HEADER_RECORD_KIND);
  add("record offset", header.record_offset, offsetof(LayoutMetadata, layout));
  add("record size", header.record_size, KORVEL_LAYOUT_BYTES_VERSION_3);
}

// Several chips may share the device that a record names: then the first one.
Chip named_chip(const StoredFile& file) {
  const Uuid device = named_device(file);
  for (const Chip& chip : parse_chips("all", false)) {
    if (device_uuid(chip.row) == device) return chip;
  }
  refuse(
      "the record names no chip that is known ({}); name the one that it must be for, for example "
      "--chip 0x43010000",
      device_uuid_meaning(device.data()));
}

Chip chip_of(const CheckOptions& options, const StoredFile& file) {
  return options.chip ? parse_chip(*options.chip, options.unknown_chip) : named_chip(file);
}

std::vector<std::string> findings_of(const StoredFile& file, const Chip& chip) {
  if (file.kind() == RecordKind::surface) return strict_findings(surface_record(file), chip);
  return strict_findings(layout_record(file), chip);
}

struct Result {
  Chip chip;
  const char* kind;
  Verdict verdict = {};
  std::vector<std::string> warnings = {};
  std::vector<std::string> findings = {};  // of --strict
};

std::string text_of(const Result& result) {
  if (result.verdict.result != KORVEL_SUCCESS) {
    return fmt::format("refused {} record: {}\n", result.kind, result.verdict.reason);
  }
  return fmt::format("valid {} record for chip 0x{:08X}{}\n", result.kind, result.chip.chip_id,
                     result.findings.empty()
                         ? ""
                         : fmt::format(", but with {} beyond its rules",
                                       counted(result.findings.size(), "finding")));
}

nlohmann::ordered_json json_of(const CheckOptions& options, const Result& result) {
  const bool valid = result.verdict.result == KORVEL_SUCCESS;
  nlohmann::ordered_json json = {{"file", options.stored.file},
                                 {"kind", result.kind},
                                 {"chip", chip_json(result.chip)},
                                 {"valid", valid},
                                 {"reason", nullptr},
                                 {"findings", nullptr}};
  if (!valid) json["reason"] = result.verdict.reason;
  if (valid && options.strict) json["findings"] = result.findings;
  return json;
}

}  // namespace

int check(const CheckOptions& options) {
  const StoredFile file(options.stored.file, options.stored.kind);
  Result result = {.chip = chip_of(options, file), .kind = kind_name(file.kind())};
  simulate(result.chip);
  result.verdict = judge(file, device_uuid(result.chip.row));
  if (file.is_blob()) add_header_warnings(result.warnings, file.header());
  if (!result.chip.has_row) {
    result.warnings.push_back(fmt::format(
        "chip 0x{:08X} has no row: its device UUID is that of unknown chips", result.chip.chip_id));
  }
  result.warnings.insert(result.warnings.end(), result.verdict.limits.begin(),
                         result.verdict.limits.end());
  const bool valid = result.verdict.result == KORVEL_SUCCESS;
  if (valid && options.strict) result.findings = findings_of(file, result.chip);
  print_warnings(result.warnings);
  print_warnings(result.findings);
  print_data(options.json ? json_text("check", json_of(options, result), result.warnings)
                          : text_of(result));
  if (!valid) return kExitRefused;
  const bool clean = result.warnings.empty() && result.findings.empty();
  return options.strict && !clean ? kExitRefused : kExitDone;
}

}  // namespace tool
