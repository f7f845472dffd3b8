// Inputs of the validators' targets: a valid record, and edits of its words. A few bytes reach the
// deepest check, because all that is not edited stays valid.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "fuzz/input_bytes.h"
#include "fuzz/record_kind.h"
#include "fuzz/record_shape.h"

namespace fuzz {

// Where an edit goes, in bytes from the record's start: any multiple of 4. The levels and planes of
// the first byte's choice need two bytes in all, the rest of the record three.
template <typename Kind>
std::size_t draw_place(InputBytes& input, uint32_t levels) {
  using Record = typename Kind::Record;
  using Level = typename Kind::Level;
  using Plane = typename Kind::Plane;
  const uint32_t drawn = input.u8();
  const std::size_t level = offsetof(Record, level) + (drawn >> 2) % levels * sizeof(Level);
  switch (drawn % 4) {
    case 0: return 4 * (input.u8() % (offsetof(Record, level) / 4));
    case 1: return level + 4 * (input.u8() % (sizeof(Level) / 4));
    case 2: {
      const uint32_t word = input.u8();
      const std::size_t plane = (word >> 5) % KORVEL_MAX_PLANES * sizeof(Plane);
      return level + offsetof(Level, plane) + plane + 4 * (word % 32 % (sizeof(Plane) / 4));
    }
    default: return 4 * (input.u16() % (sizeof(Record) / 4));
  }
}

inline uint64_t draw_value(InputBytes& input, uint8_t operation, uint64_t old,
                           uint64_t surface_bytes) {
  switch (operation % 8) {
    case 0: return input.u8();
    case 1: return input.u32();
    case 2: return input.u64();
    case 3: return old + static_cast<uint64_t>(int64_t{input.i8()});
    case 4: return old ^ (uint64_t{1} << (input.u8() % 64));
    case 5: return uint64_t{1} << (input.u8() % 64);
    // Around the end of the surface, and as far from it as the old value is.
    case 6: return surface_bytes + static_cast<uint64_t>(int64_t{input.i8()});
    default: return surface_bytes - old + static_cast<uint64_t>(int64_t{input.i8()});
  }
}

// Replaces a word of 4 bytes or, as the operation says, of 8.
inline void edit(InputBytes& input, std::span<uint8_t> record, std::size_t place,
                 uint64_t surface_bytes) {
  const uint8_t operation = input.u8();
  const std::size_t wanted = (operation & 0x80) != 0 ? sizeof(uint64_t) : sizeof(uint32_t);
  const std::size_t bytes = std::min(wanted, record.size() - place);
  uint64_t word = 0;
  std::memcpy(&word, record.data() + place, bytes);
  word = draw_value(input, operation, word, surface_bytes);
  std::memcpy(record.data() + place, &word, bytes);
}

template <typename Kind>
typename Kind::Record draw_edited_record(InputBytes& input) {
  const records::Shape shape = draw_shape(input);
  typename Kind::Record record = records::valid_record<Kind>(shape);
  const std::span<uint8_t> bytes(reinterpret_cast<uint8_t*>(&record), sizeof record);
  while (!input.ended()) {
    const std::size_t place = draw_place<Kind>(input, shape.levels);
    edit(input, bytes, place, shape.surface_bytes);
  }
  return record;
}

}  // namespace fuzz
