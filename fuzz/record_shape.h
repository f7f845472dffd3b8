// The shapes of valid records that inputs draw.
#pragma once

#include <cstdint>

#include "fuzz/input_bytes.h"
#include "fuzz/record_kind.h"
#include "tests/records/valid_record.h"

namespace fuzz {

// Of the machine that validates.
inline records::Shape draw_shape(InputBytes& input) {
  constexpr uint64_t kSurfaceBytes[] = {0x100000, 0x7FFFF000, uint64_t{1} << 32, uint64_t{1} << 40};
  const uint32_t size = input.u8();
  const uint32_t counts = input.u8();
  return {.levels = 1 + size % KORVEL_MAX_LEVELS,
          .first_linear_level = counts >> 4,
          .slices = 1 + counts % 4,
          .planes = 1 + (counts >> 2) % KORVEL_MAX_PLANES,
          .lrz = (size & 0x10) != 0,
          .surface_bytes = kSurfaceBytes[size >= 0xC0 ? size % 4 : 0],
          .uuids = usual_uuids()};
}

}  // namespace fuzz
