// The fields of stored records: where each stands and what its value means.
#pragma once

#include <cstdint>
#include <span>

#include <korvel_utils.h>

namespace tool {

enum class Meaning : uint8_t {
  number,
  signature,    // one fixed value
  fixed,        // one fixed value, decimal
  fixed_size,   // the same of a size in bytes
  identifier,   // any value but 0
  bytes,        // a size
  offset,       // bytes from the start of the surface
  place,        // bytes from the start of the blob
  elements,     //
  rows,         //
  yes_no,       // 1 or 0
  tiling,       // 1 tiled, 0 linear
  format,       //
  samples,      //
  alignment,    //
  levels,       //
  planes,       //
  slices,       //
  layout_size,  // bytes of a MemoryLayout, which tell its version
  total_size,   // bytes of record and surface
  device_uuid,  //
  driver_uuid,  //
  unused,       // padding, reserved or never read
};

struct StoredField {
  uint32_t offset;  // bytes from the start of its structure
  uint32_t size;    // bytes
  const char* name;
  Meaning meaning;
  uint32_t expected = 0;  // of a fixed value
};

using FieldList = std::span<const StoredField>;

// The number of a field of 4 or 8 bytes. Of a longer one, that of its first 8.
uint64_t field_number(const StoredField& field, const unsigned char* bytes);

// One kind of record: its structures in parts that are used or not.
struct RecordFields {
  FieldList head;        // in front of the levels
  FieldList level_head;  // of a level, in front of its planes
  FieldList image;       // of a plane
  FieldList flag_valid;
  FieldList flag_buffer;  // used when flag_valid says so
  FieldList lrz_valid;
  FieldList lrz_buffer;  // used when lrz_valid says so
  FieldList lrz_fc_valid;
  FieldList lrz_fc_buffer;  // used when lrz_fc_valid says so
  FieldList level_tail;
  FieldList tail;        // behind the levels
  uint32_t levels_word;  // offsets of the words that count and tell
  uint32_t planes_word;
  uint32_t flag_valid_word;
  uint32_t lrz_valid_word;
  uint32_t lrz_fc_valid_word;
  uint32_t size_word;
  uint32_t only_size;  // bytes of every record; 0 when there are several, told by the size word
  uint32_t levels_offset;
  uint32_t level_bytes;
  uint32_t planes_offset;
  uint32_t plane_bytes;
};

extern const FieldList kBlobHeaderFields;
extern const RecordFields kLayoutFields;
extern const RecordFields kSurfaceFields;

}  // namespace tool
