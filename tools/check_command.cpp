#include "tools/check_command.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cstring>

#include <korvel_utils.h>
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

// The record at the start of as many bytes as the longest one has.
std::vector<unsigned char> whole_record(std::span<const unsigned char> stored) {
  std::vector<unsigned char> record(stored.begin(), stored.end());
  record.resize(std::max<std::size_t>(record.size(), KORVEL_LAYOUT_BYTES_VERSION_3));
  return record;
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

uint32_t validate(const StoredFile& file, const Uuid& device) {
  const Uuid driver = driver_uuid();
  if (file.kind() == RecordKind::surface) {
    return validate_surface_metadata(file.bytes().data(), device.data(), driver.data());
  }
  const std::vector<unsigned char> record = whole_record(resource_record(file));
  return validate_resource_memory_layout_metadata(record.data(), device.data(), driver.data());
}

std::string reason_of(const std::vector<LibraryMessage>& messages) {
  return messages.empty() ? "no reason given" : messages.front().text;
}

}  // namespace

int check(const CheckOptions& options) {
  const SimulatedChip chip = simulate_chip(options.chip);
  const StoredFile file(options.file, options.kind);
  const uint32_t result = validate(file, device_uuid(chip.row));
  if (file.is_blob()) warn_of_header(file.header());
  if (!chip.has_row) {
    print_warning(fmt::format("chip 0x{:08X} has no row: its device UUID is that of unknown chips",
                              chip.chip_id));
  }
  const char* const kind = file.kind() == RecordKind::surface ? "surface" : "resource";
  if (result == KORVEL_SUCCESS) {
    print_data(fmt::format("valid {} record for chip 0x{:08X}\n", kind, chip.chip_id));
    return kExitDone;
  }
  print_data(fmt::format("refused {} record: {}\n", kind, reason_of(take_library_messages())));
  return kExitRefused;
}

}  // namespace tool
