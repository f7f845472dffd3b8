// The fields of a resource record and of its blob by name and place.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <korvel_utils.h>

namespace records {

struct Field {
  std::string name;
  std::size_t offset_bytes;
  std::size_t size_bytes;
};

using Fields = std::vector<Field>;

#define RECORDS_FIELD(type, field)                     \
  Field {                                              \
#field, offsetof(type, field), sizeof(type::field) \
  }

// Adds the fields of a part that stands `offset_bytes` into the whole.
inline void add_part(Fields& whole, const Fields& part, std::size_t offset_bytes,
                     const std::string& of_what) {
  for (const Field& field : part) {
    whole.push_back({field.name + of_what, offset_bytes + field.offset_bytes, field.size_bytes});
  }
}

inline Fields fields_of(const PlaneLayout*) {
  using P = PlaneLayout;
  return {RECORDS_FIELD(P, image_offset),      RECORDS_FIELD(P, image_size),
          RECORDS_FIELD(P, image_pitch),       RECORDS_FIELD(P, padding_20),
          RECORDS_FIELD(P, image_slice_pitch), RECORDS_FIELD(P, image_element_size),
          RECORDS_FIELD(P, image_width),       RECORDS_FIELD(P, image_height),
          RECORDS_FIELD(P, padding_44),        RECORDS_FIELD(P, flag_valid),
          RECORDS_FIELD(P, padding_52),        RECORDS_FIELD(P, flag_offset),
          RECORDS_FIELD(P, flag_size),         RECORDS_FIELD(P, flag_pitch),
          RECORDS_FIELD(P, padding_76),        RECORDS_FIELD(P, flag_slice_pitch)};
}

inline Fields fields_of(const LevelLayout*) {
  using L = LevelLayout;
  Fields fields = {RECORDS_FIELD(L, slices),        RECORDS_FIELD(L, tiled),
                   RECORDS_FIELD(L, size),          RECORDS_FIELD(L, planes),
                   RECORDS_FIELD(L, padding_20),    RECORDS_FIELD(L, lrz_valid),
                   RECORDS_FIELD(L, padding_292),   RECORDS_FIELD(L, lrz_offset),
                   RECORDS_FIELD(L, lrz_size),      RECORDS_FIELD(L, lrz_pitch),
                   RECORDS_FIELD(L, padding_316),   RECORDS_FIELD(L, lrz_slice_pitch),
                   RECORDS_FIELD(L, lrz_width),     RECORDS_FIELD(L, lrz_height),
                   RECORDS_FIELD(L, lrz_fc_valid),  RECORDS_FIELD(L, padding_340),
                   RECORDS_FIELD(L, lrz_fc_offset), RECORDS_FIELD(L, lrz_fc_size)};
  for (std::size_t p = 0; p < KORVEL_MAX_PLANES; ++p) {
    add_part(fields, fields_of(static_cast<const PlaneLayout*>(nullptr)),
             offsetof(L, plane) + p * sizeof(PlaneLayout), " of plane " + std::to_string(p));
  }
  return fields;
}

inline Fields fields_of(const MemoryLayout*) {
  using R = MemoryLayout;
  Fields fields = {RECORDS_FIELD(R, signature),    RECORDS_FIELD(R, size),
                   RECORDS_FIELD(R, total_size),   RECORDS_FIELD(R, alignment),
                   RECORDS_FIELD(R, format),       RECORDS_FIELD(R, samples),
                   RECORDS_FIELD(R, reserved_60),  RECORDS_FIELD(R, linear_fallback),
                   RECORDS_FIELD(R, levels),       RECORDS_FIELD(R, extra_valid),
                   RECORDS_FIELD(R, padding_5476), RECORDS_FIELD(R, extra_offset),
                   RECORDS_FIELD(R, extra_size),   RECORDS_FIELD(R, extra_slice_pitch),
                   RECORDS_FIELD(R, extended),     RECORDS_FIELD(R, padding_5508)};
  for (std::size_t word = 0; word < KORVEL_UUID_BYTES / 4; ++word) {
    const std::string number = " word " + std::to_string(word);
    fields.push_back({"device_uuid" + number, offsetof(R, device_uuid) + 4 * word, 4});
    fields.push_back({"driver_uuid" + number, offsetof(R, driver_uuid) + 4 * word, 4});
  }
  for (std::size_t l = 0; l < KORVEL_MAX_LEVELS; ++l) {
    add_part(fields, fields_of(static_cast<const LevelLayout*>(nullptr)),
             offsetof(R, level) + l * sizeof(LevelLayout), " of level " + std::to_string(l));
  }
  return fields;
}

inline Fields fields_of(const LayoutMetadata*) {
  using H = MetadataHeader;
  Fields fields;
  add_part(fields,
           {RECORDS_FIELD(H, magic), RECORDS_FIELD(H, header_version), RECORDS_FIELD(H, blob_size),
            RECORDS_FIELD(H, record_kind), RECORDS_FIELD(H, record_offset),
            RECORDS_FIELD(H, record_size)},
           offsetof(LayoutMetadata, header), " of the header");
  add_part(fields, fields_of(static_cast<const MemoryLayout*>(nullptr)),
           offsetof(LayoutMetadata, layout), "");
  return fields;
}

#undef RECORDS_FIELD

}  // namespace records
