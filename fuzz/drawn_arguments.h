// Arguments of the library's entries out of a fuzzer's bytes. Every value can be drawn; those at
// which rules change take the fewest bytes and come most often.
#pragma once

#include <cstdint>

#include <korvel_utils.h>
#include "fuzz/input_bytes.h"

namespace fuzz {

inline constexpr uint32_t kFormatCount = 722;
inline constexpr uint32_t kFourCcFormat = 0x37425857;  // "WXB7"

inline uint32_t draw_format(InputBytes& input) {
  const uint32_t drawn = input.u16();
  if (drawn < 1024) return drawn;  // those from 722 on have no record
  if (drawn >= 0xFF00) return input.u32();
  if (drawn >= 0xFE00) return kFourCcFormat;
  return drawn % kFormatCount;
}

// A width or height.
inline int32_t draw_size(InputBytes& input) {
  const uint8_t drawn = input.u8();
  const uint32_t low = drawn & 31U;
  switch (drawn >> 5) {
    case 0: return static_cast<int32_t>(1 + low);
    case 1: return input.u8();
    case 2: return input.u16();
    case 3: return input.u16() * 16;
    case 4: return static_cast<int32_t>((1U << low) + static_cast<uint32_t>(input.i8()));
    case 5: return static_cast<int32_t>(input.u32());
    case 6: return -static_cast<int32_t>(low);
    default: return INT32_MAX - input.u8();
  }
}

inline int32_t draw_depth(InputBytes& input) {
  const uint8_t drawn = input.u8();
  if (drawn < 0xF0) return 1 + drawn % 8;
  if (drawn < 0xF8) return input.u16();
  return static_cast<int32_t>(input.u32());
}

inline uint32_t draw_samples(InputBytes& input) {
  const uint8_t drawn = input.u8();
  if (drawn < 0xE0) return 1U << (drawn % 4);
  if (drawn < 0xFC) return drawn % 17;
  return input.u32();
}

inline uint32_t draw_tiling_mode(InputBytes& input) {
  const uint8_t drawn = input.u8();
  return drawn < 0xF0 ? drawn % 2 : input.u32();
}

inline uint32_t draw_plane(InputBytes& input) {
  const uint8_t drawn = input.u8();
  return drawn < 0xF0 ? drawn % 4 : input.u32();
}

inline uint32_t draw_selector(InputBytes& input) {
  const uint8_t drawn = input.u8();
  return drawn < 0xF0 ? drawn % 3 : input.u32();
}

// The bytes up to which linear rows are not padded.
inline int32_t draw_threshold(InputBytes& input) {
  const uint8_t drawn = input.u8();
  switch (drawn % 8) {
    case 0: return 0;
    case 1: return -1;
    case 2: return INT32_MAX;
    case 3: return input.u16();
    case 4: return static_cast<int32_t>(input.u32());
    default: return 512;
  }
}

inline uint32_t draw_divisor(InputBytes& input) {
  const uint8_t drawn = input.u8();
  if (drawn < 0xC0) return 1U << (drawn % 8);
  if (drawn < 0xF0) return drawn % 32;  // 0 too
  return input.u32();
}

inline uint64_t draw_layout_flags(InputBytes& input) {
  const uint8_t drawn = input.u8();
  uint64_t flags = (drawn & 1) != 0 ? LAYOUT_FLAG_UBWC : 0;
  if ((drawn & 2) != 0) flags |= LAYOUT_FLAG_EXTRA;
  if ((drawn & 4) != 0) flags |= LAYOUT_FLAG_EXTENDED;
  if (drawn >= 0xF0) flags ^= input.u64();
  return flags;
}

// The planes, or the levels, of a layout.
inline uint32_t draw_count(InputBytes& input, uint32_t usual_most) {
  const uint8_t drawn = input.u8();
  return drawn < 0xF0 ? drawn % (usual_most + 1) : input.u32();
}

}  // namespace fuzz
