#include <korvel_utils.h>

#include "formats/format_traits.h"
#include "identify/gpu_identity.h"
#include "identify/uuid.h"
#include "layout/record_limits.h"
#include "layout/single_level_surface.h"
#include "layout/validate_memory_layout_input_params.h"
#include "platform/log.h"

namespace korvel {
namespace {

constexpr const char* kName = "korvel_init_memory_layout";

constexpr MetadataHeader kHeader = {
    .magic = KORVEL_HEADER_MAGIC,
    .header_version = KORVEL_HEADER_VERSION,
    .blob_size = KORVEL_BLOB_BYTES,
    .record_kind = KORVEL_HEADER_RECORD_KIND,
    .record_offset = offsetof(LayoutMetadata, layout),
    .record_size = sizeof(MemoryLayout),
};

void write_header(const ChipRow& chip, FormatId format, uint32_t samples, RecordHead head,
                  LayoutMetadata& metadata) {
  metadata.header = kHeader;
  MemoryLayout& record = metadata.layout;
  record.signature = KORVEL_LAYOUT_SIGNATURE;
  record.size = head.size;
  store_uuid(record.device_uuid, chip.device_uuid);
  store_uuid(record.driver_uuid, kDriverUuid);
  record.format = format;
  record.samples = samples;
  record.alignment = head.alignment;
  record.linear_fallback = 0;
  record.levels = head.levels;
}

}  // namespace
}  // namespace korvel

uint32_t korvel_init_memory_layout(void* blob, int32_t width, int32_t height, int32_t depth,
                                   uint32_t format, uint32_t samples, uint32_t tiling_mode,
                                   uint64_t flags, uint32_t planes) {
  const korvel::ChipRow& chip = korvel::identified_chip();
  if (korvel::validate_memory_layout_input_params(width, height, depth, format, samples,
                                                  tiling_mode) != KORVEL_SUCCESS ||
      !korvel::planes_fit(korvel::kName, planes)) {
    KORVEL_LOG(korvel::kName, "Memory Layout input parameter validation failed!");
    return KORVEL_FAILURE;
  }
  if (blob == nullptr) return KORVEL_FAILURE;

  auto& metadata = *static_cast<LayoutMetadata*>(blob);
  const korvel::RecordHead head = {
      .size = sizeof(MemoryLayout),
      .alignment = korvel::surface_alignment_bytes(chip, korvel::format_traits(format), samples,
                                                   tiling_mode),
      .levels = 1,
  };
  korvel::write_header(chip, format, samples, head, metadata);
  const korvel::Surface surface = korvel::described_surface(chip, {width, height}, depth, format,
                                                            samples, tiling_mode, flags, planes);
  korvel::lay_out_single_level_surface(surface, head, metadata.layout);
  return KORVEL_SUCCESS;
}
