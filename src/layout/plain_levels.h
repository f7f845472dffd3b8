// The walk of both validators through the levels of a record, quick as long as it meets nothing but
// plain words. What is plain passes every rule of layout/validate_levels.h; what is not, valid or
// not, is for those rules to judge. The quick tests keep no number for a message and compare half
// as often, which saves a third of the rules' instructions on a full record on 64-bit Arm.
#pragma once

#include <korvel_utils.h>

#include <cstdint>

#include "layout/stored_levels.h"
#include "layout/validate_levels.h"

namespace korvel {

// In one comparison: 0 wraps to the largest number.
constexpr bool is_from_1_to(uint64_t number, uint64_t most) {
  return number - 1 < most;
}

// The words of a level without low-resolution depth, but for the slices.
constexpr bool level_is_plain(const StoredLevel& level, uint64_t total_size_bytes) {
  return is_from_1_to(level.size, total_size_bytes) &&
         (level.lrz_valid | level.lrz_fc_valid) == 0 &&
         is_from_1_to(level.planes, KORVEL_MAX_PLANES);
}

template <typename Kind>
constexpr bool image_is_plain(const StoredImage& image, uint32_t slices,
                              uint64_t surface_size_bytes) {
  const StoredBuffer& buffer = image.buffer;
  if (exceeds_surface(buffer, slices, surface_size_bytes)) return false;
  // Products above 0 have factors above 0.
  if (!is_from_1_to(uint32_t{image.pitch * image.covered_height}, buffer.size)) return false;
  if (buffer.size > buffer.slice_pitch) return false;
  if (!is_from_1_to(uint32_t{image.element_size * image.covered_width}, image.pitch)) return false;
  return !Kind::kHasActualSize || image.width * image.height != 0;
}

// Of a plane that says that it has one, on a level whose tiled word is 0 or 1. Here the quick test
// is all that the rules ask.
constexpr bool flag_buffer_is_plain(const StoredFlagBuffer& flag, uint32_t slices, uint32_t tiled,
                                    uint64_t surface_size_bytes) {
  if (flag.valid != tiled) return false;
  if (exceeds_surface(flag.buffer, slices, surface_size_bytes)) return false;
  if (!is_from_1_to(flag.pitch, flag.buffer.slice_pitch)) return false;
  return flag.buffer.size <= flag.buffer.slice_pitch;
}

// What the rules take over, copied word by word: gcc keeps a struct that is copied as a whole in
// memory on every path, and a full record takes a fifth more.
constexpr StoredLevel copied(const StoredLevel& from) {
  return {.size = from.size,
          .slices = from.slices,
          .tiled = from.tiled,
          .planes = from.planes,
          .lrz_valid = from.lrz_valid,
          .lrz_fc_valid = from.lrz_fc_valid};
}
constexpr StoredBuffer copied(const StoredBuffer& from) {
  return {.offset = from.offset, .slice_pitch = from.slice_pitch, .size = from.size};
}
constexpr StoredImage copied(const StoredImage& from) {
  return {.buffer = copied(from.buffer),
          .pitch = from.pitch,
          .element_size = from.element_size,
          .width = from.width,
          .height = from.height,
          .covered_width = from.covered_width,
          .covered_height = from.covered_height};
}
constexpr StoredFlagBuffer copied(const StoredFlagBuffer& from) {
  return {.buffer = copied(from.buffer), .valid = from.valid, .pitch = from.pitch};
}

// Looks at a plane. True where the walk ends there: `passes` is then what the rules say of all that
// was left of the record.
template <typename Kind>
inline bool ends_at_plane(const PlainLevel& level, uint32_t plane, uint64_t surface_size_bytes,
                          const CheckedHeader& header, bool& passes) {
  using Plane = typename Kind::Plane;
  const unsigned char* plane_at = stored_plane<Kind>(level.level_at, plane);
  const StoredImage image = stored_image<Kind>(plane_at);
  if (!image_is_plain<Kind>(image, level.slices, surface_size_bytes)) {
    passes = passes_from_image<Kind>(level, plane, copied(image), header);
    return true;
  }
  const auto flag_valid = KORVEL_STORED(plane_at, Plane, flag_valid);
  if (flag_valid == 0) return false;
  const StoredFlagBuffer flag = stored_flag_buffer<Kind>(plane_at, flag_valid);
  if (!flag_buffer_is_plain(flag, level.slices, level.tiled, surface_size_bytes)) {
    passes = refuse_flag_buffer<Kind>(level, plane, copied(flag), header);
    return true;
  }
  return false;
}

// The same of the planes of a level. Without a loop, which would cost a tenth more: each plane
// stands at a constant place.
template <typename Kind>
inline bool ends_at_planes(const PlainLevel& level, uint64_t surface_size_bytes,
                           const CheckedHeader& header, bool& passes) {
  if (ends_at_plane<Kind>(level, 0, surface_size_bytes, header, passes)) return true;
  if (level.planes == 1) return false;
  if (ends_at_plane<Kind>(level, 1, surface_size_bytes, header, passes)) return true;
  if (level.planes == 2) return false;
  return ends_at_plane<Kind>(level, 2, surface_size_bytes, header, passes);
}

// Every level of a record whose header has passed. No word is read twice.
template <typename Kind>
bool levels_pass(const unsigned char* record, const CheckedHeader& header) {
  using Level = typename Kind::Level;
  const uint64_t total_size = header.total_size;
  const uint64_t surface_size = header.surface_size;
  const uint32_t levels = header.levels;
  const unsigned char* level_at = stored_level<Kind>(record, 0);
  // All plain levels are tiled alike.
  const auto tiled = KORVEL_STORED(level_at, Level, tiled);
  const LevelBefore plain_before = {.tiled = tiled, .lrz_valid = 0};
  uint32_t level_tiled = tiled;
  for (uint32_t number = 0;;) {
    // Says nothing, but that the address is to be used as it is: else clang addresses from the
    // level's end on, at offsets that need an instruction each, and takes a quarter more.
    asm("" : "+r"(level_at));
    const StoredLevel level = stored_level_words<Kind>(level_at, level_tiled);
    if (level_tiled != tiled || tiled > 1 || !level_is_plain(level, total_size)) {
      return passes_from_level<Kind>(level_at, number, copied(level), plain_before, header);
    }
    bool passes = false;
    // A copy for levels of one slice, whose buffers need no products: a fifth less.
    if (level.slices == 1) {
      const PlainLevel plain = {level_at, number, 1, tiled, level.planes};
      if (ends_at_planes<Kind>(plain, surface_size, header, passes)) return passes;
    } else if (is_from_1_to(level.slices, KORVEL_MAX_SLICES)) {
      const PlainLevel plain = {level_at, number, level.slices, tiled, level.planes};
      if (ends_at_planes<Kind>(plain, surface_size, header, passes)) return passes;
    } else {
      return passes_from_level<Kind>(level_at, number, copied(level), plain_before, header);
    }
    if (++number == levels) return true;
    level_at += sizeof(Level);
    level_tiled = KORVEL_STORED(level_at, Level, tiled);
  }
}

}  // namespace korvel
