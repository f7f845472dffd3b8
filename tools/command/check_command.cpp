#include "tools/command/check_command.h"

#include <fmt/core.h>

#include <cstddef>

#include <korvel_utils.h>
#include "tools/command/exit_codes.h"
#include "tools/library/simulated_chip.h"
#include "tools/output/standard_error.h"
#include "tools/output/standard_output.h"
#include "tools/record/stored_file.h"
#include "tools/record/stored_verdict.h"

namespace tool {
namespace {

Uuid device_uuid(const korvel::ChipRow& chip) {
  Uuid uuid{};
  get_device_uuid(uuid.data(), KORVEL_UUID_BYTES, chip.family_id, chip.model_code, chip.rev_id);
  return uuid;
}

void warn_of_header_word(const char* name, uint32_t stored, uint32_t expected) {
  if (stored == expected) return;
  print_warning(fmt::format("the blob header's {} is {} instead of {}", name, stored, expected));
}

// The validator sees only the record; readers of blobs go by the words in front of it too.
void warn_of_header(const MetadataHeader& header) {
  warn_of_header_word("version", header.header_version, KORVEL_HEADER_VERSION);
  warn_of_header_word("blob size", header.blob_size, KORVEL_BLOB_BYTES);
  warn_of_header_word("record kind", header.record_kind, KORVEL_HEADER_RECORD_KIND);
  warn_of_header_word("record offset", header.record_offset, offsetof(LayoutMetadata, layout));
  warn_of_header_word("record size", header.record_size, KORVEL_LAYOUT_BYTES_VERSION_3);
}

}  // namespace

int check(const CheckOptions& options) {
  const Chip chip = simulate_chip(options.chip, options.unknown_chip);
  const StoredFile file(options.file, options.kind);
  const Verdict verdict = judge(file, device_uuid(chip.row));
  if (file.is_blob()) warn_of_header(file.header());
  if (!chip.has_row) {
    print_warning(fmt::format("chip 0x{:08X} has no row: its device UUID is that of unknown chips",
                              chip.chip_id));
  }
  const char* const kind = file.kind() == RecordKind::surface ? "surface" : "resource";
  for (const std::string& limit : verdict.limits) print_warning(limit);
  if (verdict.result == KORVEL_SUCCESS) {
    print_data(fmt::format("valid {} record for chip 0x{:08X}\n", kind, chip.chip_id));
    return kExitDone;
  }
  print_data(fmt::format("refused {} record: {}\n", kind, verdict.reason));
  return kExitRefused;
}

}  // namespace tool
