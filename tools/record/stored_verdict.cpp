#include "tools/record/stored_verdict.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "tools/library/library_messages.h"
#include "tools/record/acceptance_limits.h"
#include "tools/record/refusal_words.h"
#include "tools/request/bad_input.h"

namespace tool {
namespace {

Uuid callers_driver_uuid() {
  Uuid uuid{};
  get_driver_uuid(uuid.data(), KORVEL_UUID_BYTES);
  return uuid;
}

void check_magic(const MetadataHeader& header) {
  if (header.magic == KORVEL_HEADER_MAGIC) return;
  refuse("the file has the size of a blob but starts with 0x{:08X} instead of 0x{:08X}",
         header.magic, KORVEL_HEADER_MAGIC);
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

template <typename Record>
Verdict judge_record(const Record& record, const std::optional<Uuid>& device, Validator validate) {
  take_library_messages();
  const uint8_t* const device_uuid = device ? device->data() : record.device_uuid;
  const uint32_t result = validate(&record, device_uuid, callers_driver_uuid().data());
  const std::vector<LibraryMessage> messages = take_library_messages();
  if (result == KORVEL_SUCCESS) return {result, {}, limits_of_acceptance(record)};
  if (messages.empty()) return {result, "no reason given", {}};
  return {result, refusal_words(messages.front().text, record.size), {}};
}

}  // namespace

MemoryLayout layout_record(const StoredFile& file) {
  return copy_of<MemoryLayout>(resource_record(file));
}

SurfaceMetadata surface_record(const StoredFile& file) {
  return copy_of<SurfaceMetadata>(file.bytes());
}

Uuid named_device(const StoredFile& file) {
  Uuid uuid{};
  if (file.kind() == RecordKind::surface) {
    std::memcpy(uuid.data(), surface_record(file).device_uuid, uuid.size());
  } else {
    std::memcpy(uuid.data(), layout_record(file).device_uuid, uuid.size());
  }
  return uuid;
}

Verdict judge(const StoredFile& file, const std::optional<Uuid>& device) {
  if (file.kind() == RecordKind::surface) {
    return judge_record(surface_record(file), device, validate_surface_metadata);
  }
  return judge_record(layout_record(file), device, validate_resource_memory_layout_metadata);
}

}  // namespace tool
