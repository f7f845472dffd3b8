#include "tests/records/fields.h"

#include <sstream>

namespace records {
namespace {

struct Part {
  const char* name;
  std::size_t offset_bytes;
  std::size_t size_bytes;
};

#define RECORDS_PART(type, field)                      \
  Part {                                               \
#field, offsetof(type, field), sizeof(type::field) \
  }

constexpr Part kPlaneParts[] = {
    RECORDS_PART(PlaneLayout, image_offset),      RECORDS_PART(PlaneLayout, image_size),
    RECORDS_PART(PlaneLayout, image_pitch),       RECORDS_PART(PlaneLayout, padding_20),
    RECORDS_PART(PlaneLayout, image_slice_pitch), RECORDS_PART(PlaneLayout, image_element_size),
    RECORDS_PART(PlaneLayout, image_width),       RECORDS_PART(PlaneLayout, image_height),
    RECORDS_PART(PlaneLayout, padding_44),        RECORDS_PART(PlaneLayout, flag_valid),
    RECORDS_PART(PlaneLayout, padding_52),        RECORDS_PART(PlaneLayout, flag_offset),
    RECORDS_PART(PlaneLayout, flag_size),         RECORDS_PART(PlaneLayout, flag_pitch),
    RECORDS_PART(PlaneLayout, padding_76),        RECORDS_PART(PlaneLayout, flag_slice_pitch)};

constexpr Part kLevelParts[] = {
    RECORDS_PART(LevelLayout, slices),        RECORDS_PART(LevelLayout, tiled),
    RECORDS_PART(LevelLayout, size),          RECORDS_PART(LevelLayout, planes),
    RECORDS_PART(LevelLayout, padding_20),    RECORDS_PART(LevelLayout, lrz_valid),
    RECORDS_PART(LevelLayout, padding_292),   RECORDS_PART(LevelLayout, lrz_offset),
    RECORDS_PART(LevelLayout, lrz_size),      RECORDS_PART(LevelLayout, lrz_pitch),
    RECORDS_PART(LevelLayout, padding_316),   RECORDS_PART(LevelLayout, lrz_slice_pitch),
    RECORDS_PART(LevelLayout, lrz_width),     RECORDS_PART(LevelLayout, lrz_height),
    RECORDS_PART(LevelLayout, lrz_fc_valid),  RECORDS_PART(LevelLayout, padding_340),
    RECORDS_PART(LevelLayout, lrz_fc_offset), RECORDS_PART(LevelLayout, lrz_fc_size)};

constexpr Part kRecordParts[] = {
    RECORDS_PART(MemoryLayout, signature),    RECORDS_PART(MemoryLayout, size),
    RECORDS_PART(MemoryLayout, total_size),   RECORDS_PART(MemoryLayout, alignment),
    RECORDS_PART(MemoryLayout, format),       RECORDS_PART(MemoryLayout, samples),
    RECORDS_PART(MemoryLayout, reserved_60),  RECORDS_PART(MemoryLayout, linear_fallback),
    RECORDS_PART(MemoryLayout, levels),       RECORDS_PART(MemoryLayout, extra_valid),
    RECORDS_PART(MemoryLayout, padding_5476), RECORDS_PART(MemoryLayout, extra_offset),
    RECORDS_PART(MemoryLayout, extra_size),   RECORDS_PART(MemoryLayout, extra_slice_pitch),
    RECORDS_PART(MemoryLayout, extended),     RECORDS_PART(MemoryLayout, padding_5508)};

constexpr Part kUuidParts[] = {
    {"word 0", 0, 4}, {"word 1", 4, 4}, {"word 2", 8, 4}, {"word 3", 12, 4}};

constexpr Part kHeaderParts[] = {
    RECORDS_PART(MetadataHeader, magic),         RECORDS_PART(MetadataHeader, header_version),
    RECORDS_PART(MetadataHeader, blob_size),     RECORDS_PART(MetadataHeader, record_kind),
    RECORDS_PART(MetadataHeader, record_offset), RECORDS_PART(MetadataHeader, record_size)};

#undef RECORDS_PART

// The parts of what stands `offset_bytes` into the whole.
template <std::size_t kParts>
void add(std::vector<Field>& fields, const Part (&parts)[kParts], std::size_t offset_bytes,
         const std::string& of_what) {
  for (const Part& part : parts) {
    fields.push_back({part.name + of_what, offset_bytes + part.offset_bytes, part.size_bytes});
  }
}

void add_record(std::vector<Field>& fields, std::size_t start) {
  add(fields, kRecordParts, start, "");
  add(fields, kUuidParts, start + offsetof(MemoryLayout, device_uuid), " of device_uuid");
  add(fields, kUuidParts, start + offsetof(MemoryLayout, driver_uuid), " of driver_uuid");
  for (std::size_t l = 0; l < KORVEL_MAX_LEVELS; ++l) {
    const std::size_t level = start + offsetof(MemoryLayout, level) + l * sizeof(LevelLayout);
    std::ostringstream of_level;
    of_level << " of level " << l;
    add(fields, kLevelParts, level, of_level.str());
    for (std::size_t p = 0; p < KORVEL_MAX_PLANES; ++p) {
      std::ostringstream of_plane;
      of_plane << of_level.str() << " plane " << p;
      add(fields, kPlaneParts, level + offsetof(LevelLayout, plane) + p * sizeof(PlaneLayout),
          of_plane.str());
    }
  }
}

}  // namespace

const std::vector<Field>& fields_of(const MemoryLayout*) {
  static const std::vector<Field> fields = [] {
    std::vector<Field> made;
    add_record(made, 0);
    return made;
  }();
  return fields;
}

const std::vector<Field>& fields_of(const LayoutMetadata*) {
  static const std::vector<Field> fields = [] {
    std::vector<Field> made;
    add(made, kHeaderParts, offsetof(LayoutMetadata, header), " of the header");
    add_record(made, offsetof(LayoutMetadata, layout));
    return made;
  }();
  return fields;
}

}  // namespace records
