#include <korvel_utils.h>

#include <cstddef>

#include "layout/plain_levels.h"
#include "layout/validate_record_header.h"

namespace korvel {
namespace {

constexpr const char* kName = SurfaceMetadataKind::kValidator;

// Who wrote the record, and that it is one.
bool identity_passes(const unsigned char* record, const uint8_t* device_uuid,
                     const uint8_t* driver_uuid) {
  const auto signature = KORVEL_STORED(record, SurfaceMetadata, signature);
  if (signature != KORVEL_SURFACE_SIGNATURE) {
    KORVEL_LOG(kName, "Metadata has bad signature %u", signature);
    return false;
  }
  const auto size = KORVEL_STORED(record, SurfaceMetadata, size);
  if (size != KORVEL_SURFACE_BYTES) {
    KORVEL_LOG(kName, "Size of metadata is mismatched {stored size %u, struct size %u}", size,
               uint32_t{KORVEL_SURFACE_BYTES});
    return false;
  }
  return device_uuid_passes(kName, read_uuid(record + offsetof(SurfaceMetadata, device_uuid)),
                            read_uuid(device_uuid)) &&
         driver_uuid_passes(kName, read_uuid(record + offsetof(SurfaceMetadata, driver_uuid)),
                            read_uuid(driver_uuid), kDriverKindWord);
}

bool header_passes(const unsigned char* record, CheckedHeader& header) {
  const auto guid = KORVEL_STORED(record, SurfaceMetadata, guid);
  if (guid == 0) {
    KORVEL_LOG(kName, "Metadata guid has invalid value %u", 0U);
    return false;
  }
  const auto alignment = KORVEL_STORED(record, SurfaceMetadata, alignment);
  if (!alignment_passes(kName, alignment)) return false;
  const auto total_size = KORVEL_STORED(record, SurfaceMetadata, total_size);
  const uint64_t surface_size = total_size - KORVEL_SURFACE_BYTES;
  if (!total_size_passes(kName, total_size, surface_size, alignment)) return false;
  header = {
      .total_size = total_size,
      .surface_size = surface_size,
      .linear_fallback = KORVEL_STORED(record, SurfaceMetadata, linear_fallback),
      .levels = KORVEL_STORED(record, SurfaceMetadata, levels),
  };
  return shape_passes(kName, KORVEL_STORED(record, SurfaceMetadata, samples), header.levels,
                      KORVEL_STORED(record, SurfaceMetadata, format));
}

}  // namespace
}  // namespace korvel

uint32_t validate_surface_metadata(const void* record, const uint8_t* device_uuid,
                                   const uint8_t* driver_uuid) {
  const auto* bytes = static_cast<const unsigned char*>(record);
  korvel::CheckedHeader header;
  const bool valid = korvel::identity_passes(bytes, device_uuid, driver_uuid) &&
                     korvel::header_passes(bytes, header) &&
                     korvel::levels_pass<korvel::SurfaceMetadataKind>(bytes, header);
  return valid ? KORVEL_SUCCESS : KORVEL_FAILURE;
}
