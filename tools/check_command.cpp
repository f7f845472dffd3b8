#include "tools/check_command.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cstring>

#include <korvel_utils.h>
#include "tools/acceptance_limits.h"
#include "tools/bad_input.h"
#include "tools/exit_codes.h"
#include "tools/library_messages.h"
#include "tools/simulated_chip.h"
#include "tools/standard_error.h"
#include "tools/standard_output.h"
#include "tools/stored_file.h"

namespace tool {
namespace {

using Uuid = std::array<uint8_t, KORVEL_UUID_BYTES>;

Uuid device_uuid(const korvel::ChipRow& chip) {
  Uuid uuid{};
  get_device_uuid(uuid.data(), KORVEL_UUID_BYTES, chip.family_id, chip.model_code, chip.rev_id);
  return uuid;
}

Uuid driver_uuid() {
  Uuid uuid{};
  get_driver_uuid(uuid.data(), KORVEL_UUID_BYTES);
  return uuid;
}

void warn_of_header_word(const char* name, uint32_t stored, uint32_t expected) {
  if (stored == expected) return;
  print_warning(fmt::format("the blob header's {} is {} instead of {}", name, stored, expected));
}

void check_magic(const MetadataHeader& header) {
  if (header.magic == KORVEL_HEADER_MAGIC) return;
  refuse("the file has the size of a blob but starts with 0x{:08X} instead of 0x{:08X}",
         header.magic, KORVEL_HEADER_MAGIC);
}

// The validator sees only the record; readers of blobs go by the words in front of it too.
void warn_of_header(const MetadataHeader& header) {
  warn_of_header_word("version", header.header_version, KORVEL_HEADER_VERSION);
  warn_of_header_word("blob size", header.blob_size, KORVEL_BLOB_BYTES);
  warn_of_header_word("record kind", header.record_kind, KORVEL_HEADER_RECORD_KIND);
  warn_of_header_word("record offset", header.record_offset, offsetof(LayoutMetadata, layout));
  warn_of_header_word("record size", header.record_size, KORVEL_LAYOUT_BYTES_VERSION_3);
}

// A record of a known length may be longer than what its file holds of it.
void check_length(std::span<const unsigned char> record) {
  uint32_t size = 0;
  std::memcpy(&size, record.data() + offsetof(MemoryLayout, size), sizeof size);
  const bool known = size == KORVEL_LAYOUT_BYTES_VERSION_2 || size == KORVEL_LAYOUT_BYTES_VERSION_3;
  if (known && size > record.size()) {
    refuse("the record says that it has {} bytes, but the file holds {} of them", size,
           record.size());
  }
}

std::span<const unsigned char> resource_record(const StoredFile& file) {
  if (file.is_blob()) check_magic(file.header());
  const std::optional<std::size_t> offset = file.record_offset();
  if (!offset) {
    refuse("the blob header's record offset {} leaves no room for a record in its {} bytes",
           file.header().record_offset, file.bytes().size());
  }
  const std::span<const unsigned char> record = file.bytes().subspan(*offset);
  check_length(record);
  return record;
}

// A copy of the record; what its file does not hold of it is 0.
template <typename Record>
Record copy_of(std::span<const unsigned char> stored) {
  Record record{};
  std::memcpy(&record, stored.data(), std::min(stored.size(), sizeof record));
  return record;
}

using Validator = uint32_t(KORVEL_CALL*)(const void* record, const uint8_t* device_uuid,
                                         const uint8_t* driver_uuid);

struct Verdict {
  uint32_t result;                  // the validator's
  std::vector<std::string> limits;  // of its acceptance
};

template <typename Record>
Verdict judge(const Record& record, const Uuid& device, Validator validate) {
  const uint32_t result = validate(&record, device.data(), driver_uuid().data());
  if (result != KORVEL_SUCCESS) return {result, {}};
  return {result, limits_of_acceptance(record)};
}

Verdict judge(const StoredFile& file, const Uuid& device) {
  if (file.kind() == RecordKind::surface) {
    return judge(copy_of<SurfaceMetadata>(file.bytes()), device, validate_surface_metadata);
  }
  return judge(copy_of<MemoryLayout>(resource_record(file)), device,
               validate_resource_memory_layout_metadata);
}

std::string reason_of(const std::vector<LibraryMessage>& messages) {
  return messages.empty() ? "no reason given" : messages.front().text;
}

}  // namespace

int check(const CheckOptions& options) {
  const SimulatedChip chip = simulate_chip(options.chip);
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
  print_data(fmt::format("refused {} record: {}\n", kind, reason_of(take_library_messages())));
  return kExitRefused;
}

}  // namespace tool
