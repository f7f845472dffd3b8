#include <korvel_utils.h>

#include <cstddef>

#include "layout/plain_levels.h"
#include "layout/validate_record_header.h"

namespace korvel {
namespace {

constexpr const char* kName = MemoryLayoutKind::kValidator;

struct LayoutVersion {
  uint32_t version;
  uint32_t size;  // bytes of a record
};
constexpr LayoutVersion kLayoutVersions[] = {
    {1, KORVEL_LAYOUT_BYTES_VERSION_1},
    {2, KORVEL_LAYOUT_BYTES_VERSION_2},
    {3, KORVEL_LAYOUT_BYTES_VERSION_3},
};
constexpr const LayoutVersion& kCurrentVersion = kLayoutVersions[2];

// Null for a version that the library does not read. A caller's own version is the current one,
// whatever its number is.
const LayoutVersion* layout_version(uint32_t stored, uint32_t callers) {
  if (stored == callers) return &kCurrentVersion;
  for (const LayoutVersion& version : kLayoutVersions) {
    if (version.version == stored) return &version;
  }
  return nullptr;
}

// Who wrote the record. Returns its layout version, null after a message.
const LayoutVersion* identity_passes(const unsigned char* record, const uint8_t* device_uuid,
                                     const uint8_t* driver_uuid) {
  const auto signature = KORVEL_STORED(record, MemoryLayout, signature);
  if (signature != KORVEL_LAYOUT_SIGNATURE) {
    KORVEL_LOG(kName, "Metadata has bad signature %u", signature);
    return nullptr;
  }
  if (!device_uuid_passes(kName, read_uuid(record + offsetof(MemoryLayout, device_uuid)),
                          read_uuid(device_uuid))) {
    return nullptr;
  }
  const ReadUuid stored = read_uuid(record + offsetof(MemoryLayout, driver_uuid));
  const ReadUuid callers = read_uuid(driver_uuid);
  if (!driver_uuid_passes(kName, stored, callers, kDriverVersionWord)) return nullptr;
  const LayoutVersion* version =
      layout_version(uuid_word(stored, kLayoutVersionWord), uuid_word(callers, kLayoutVersionWord));
  if (version == nullptr) {
    const UuidTexts texts = uuid_texts(stored, callers);
    KORVEL_LOG(kName, "Metadata memory layout version mismatch {store uuid %s, struct uuid %s}",
               texts.stored, texts.callers);
  }
  return version;
}

// The format keeps surface sizes in 32 bits, sign-extended where they bound something.
constexpr uint64_t sign_extended(uint32_t surface_size) {
  return static_cast<uint64_t>(int64_t{static_cast<int32_t>(surface_size)});
}

bool header_passes(const unsigned char* record, const LayoutVersion& version,
                   CheckedHeader& header) {
  const auto size = KORVEL_STORED(record, MemoryLayout, size);
  if (size != version.size) {
    KORVEL_LOG(kName,
               "Size of metadata is mismatched {stored size %u, struct size: %u, version: %d }",
               size, version.size, static_cast<int32_t>(version.version));
    return false;
  }
  const auto alignment = KORVEL_STORED(record, MemoryLayout, alignment);
  if (!alignment_passes(kName, alignment)) return false;
  const auto total_size = KORVEL_STORED(record, MemoryLayout, total_size);
  const auto surface_size = static_cast<uint32_t>(total_size - version.size);
  if (!total_size_passes(kName, total_size, surface_size, alignment)) return false;
  header = {
      .total_size = total_size,
      .surface_size = sign_extended(surface_size),
      .linear_fallback = KORVEL_STORED(record, MemoryLayout, linear_fallback),
      .levels = KORVEL_STORED(record, MemoryLayout, levels),
  };
  return shape_passes(kName, KORVEL_STORED(record, MemoryLayout, samples), header.levels,
                      KORVEL_STORED(record, MemoryLayout, format));
}

}  // namespace
}  // namespace korvel

uint32_t validate_resource_memory_layout_metadata(const void* record, const uint8_t* device_uuid,
                                                  const uint8_t* driver_uuid) {
  const auto* bytes = static_cast<const unsigned char*>(record);
  const korvel::LayoutVersion* version = korvel::identity_passes(bytes, device_uuid, driver_uuid);
  if (version == nullptr) return KORVEL_FAILURE;
  korvel::CheckedHeader header;
  if (!korvel::header_passes(bytes, *version, header)) return KORVEL_FAILURE;
  return korvel::levels_pass<korvel::MemoryLayoutKind>(bytes, header) ? KORVEL_SUCCESS
                                                                      : KORVEL_FAILURE;
}
