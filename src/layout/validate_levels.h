// The rules of levels and planes, with their messages, in the order in which they are checked. Each
// stands once for both kinds of record. Products are 32-bit and wrap.
//
// The walk through a record's levels starts in layout/plain_levels.h. Where it meets words that are
// not plain, it comes here with the words as it has read them, and the rules go through these and
// all that is left. So no word is read twice. The rules are never inlined: few records come here,
// from several places.
#pragma once

#include <korvel_utils.h>

#include <cstdint>

#include "layout/stored_levels.h"
#include "platform/log.h"

namespace korvel {

// What a level is held against: the words of the level before it, which have passed.
struct LevelBefore {
  uint32_t tiled;
  uint32_t lrz_valid;
};

// What the header checks have established.
struct CheckedHeader {
  uint64_t total_size;    // bytes, the record's own size included
  uint64_t surface_size;  // bytes; what every buffer must end within
  uint32_t linear_fallback;
  uint32_t levels;  // 1 to 15
};

// Where a check is made.
struct LevelPlace {
  uint32_t level;
  uint32_t slices;              // of the level
  uint64_t surface_size_bytes;  // of the record
};

#define KORVEL_REFUSE(...)                     \
  do {                                         \
    KORVEL_LOG(Kind::kValidator, __VA_ARGS__); \
    return false;                              \
  } while (false)

// The messages call the height and the width that an image covers by the record's own names.
template <typename Kind>
inline constexpr const char kImageSizeMismatch[] =
    "Metadata level image size mismatch {level %u, plane %u, image size %llu, image pitch %u, image height %u, image slice pitch %llu}";
template <>
inline constexpr const char kImageSizeMismatch<SurfaceMetadataKind>[] =
    "Metadata level image size mismatch {level %u, plane %u, image size %llu, image pitch %u, actual height %u, image slice pitch %llu}";

template <typename Kind>
inline constexpr const char kImagePitchMismatch[] =
    "Metadata level image pitch mismatch {level %u, plane %u, image pitch %u, image width %u, image element size %u}";
template <>
inline constexpr const char kImagePitchMismatch<SurfaceMetadataKind>[] =
    "Metadata level image pitch mismatch {level %u, plane %u, image pitch %u, actual width %u, image element size %u}";

template <typename Kind>
[[gnu::noinline]] bool image_passes(const StoredImage& image, const LevelPlace& at,
                                    uint32_t plane) {
  const StoredBuffer& buffer = image.buffer;
  if (exceeds_surface(buffer, at.slices, at.surface_size_bytes)) {
    KORVEL_REFUSE(
        "Metadata level image buffer exceeds surface bounds {level %u, plane %u, image offset %llu, image slice pitch %llu, slices %u, image size %llu, surface size %llu}",
        at.level, plane, llu(buffer.offset), llu(buffer.slice_pitch), at.slices, llu(buffer.size),
        llu(at.surface_size_bytes));
  }
  const uint32_t covered_bytes = image.pitch * image.covered_height;
  if (buffer.size < covered_bytes || buffer.size > buffer.slice_pitch) {
    KORVEL_REFUSE(kImageSizeMismatch<Kind>, at.level, plane, llu(buffer.size), image.pitch,
                  image.covered_height, llu(buffer.slice_pitch));
  }
  if (image.pitch < image.element_size * image.covered_width) {
    KORVEL_REFUSE(kImagePitchMismatch<Kind>, at.level, plane, image.pitch, image.covered_width,
                  image.element_size);
  }
  if (image.width == 0 || image.height == 0 || image.covered_width == 0 ||
      image.covered_height == 0 || image.element_size == 0) {
    if constexpr (Kind::kHasActualSize) {
      KORVEL_REFUSE(
          "Metadata level image invalid dimensions {level %u, plane %u, image width %u, image height %u, actual width %u, actual height %u, image element size %u}",
          at.level, plane, image.width, image.height, image.covered_width, image.covered_height,
          image.element_size);
    } else {
      KORVEL_REFUSE(
          "Metadata level image invalid dimensions {level %u, plane %u, image width %u, image height %u, image element size %u}",
          at.level, plane, image.width, image.height, image.element_size);
    }
  }
  return true;
}

// Of a plane that says that it has one.
template <typename Kind>
[[gnu::noinline]] bool flag_buffer_passes(const StoredFlagBuffer& flag, const LevelPlace& at,
                                          uint32_t plane, uint32_t tiled) {
  if (flag.valid != 1) {
    KORVEL_REFUSE("Metadata level flagbuffer valid bit invalid {level %u, plane %u, valid %u}",
                  at.level, plane, flag.valid);
  }
  if (tiled == 0) {
    KORVEL_REFUSE("Metadata level flagbuffer enabled but tiling is disabled {level %u, plane %u}",
                  at.level, plane);
  }
  const StoredBuffer& buffer = flag.buffer;
  if (exceeds_surface(buffer, at.slices, at.surface_size_bytes)) {
    KORVEL_REFUSE(
        "Metadata level flagbuffer buffer exceeds surface bounds {level %u, plane %u, flag offset %llu, flag slice pitch %llu, slices %u, flag size %llu, surface size %llu}",
        at.level, plane, llu(buffer.offset), llu(buffer.slice_pitch), at.slices, llu(buffer.size),
        llu(at.surface_size_bytes));
  }
  if (flag.pitch == 0 || flag.pitch > buffer.slice_pitch) {
    KORVEL_REFUSE(
        "Metadata level flagbuffer pitch mismatch {level %u, plane %u, flag pitch %u, flag slice pitch %llu}",
        at.level, plane, flag.pitch, llu(buffer.slice_pitch));
  }
  if (buffer.slice_pitch < buffer.size) {
    KORVEL_REFUSE(
        "Metadata level flagbuffer slice pitch mismatch {level %u, plane %u, flag slice pitch %llu, flag size %llu}",
        at.level, plane, llu(buffer.slice_pitch), llu(buffer.size));
  }
  return true;
}

// A chain may go from tiled to linear once, where the record allows it, and has low-resolution
// depth on every level or on none.
template <typename Kind>
bool level_follows(const StoredLevel& level, uint32_t number, LevelBefore before,
                   uint32_t linear_fallback) {
  if (number == 0) return true;
  if (level.tiled != before.tiled) {
    if (before.tiled == 0) {
      KORVEL_REFUSE("Metadata level tiled bit transitioned from untiled to tiled %u", number);
    }
    if (linear_fallback == 0) {
      KORVEL_REFUSE("Metadata level has linear fallback but didnt enable bit in struct %u", number);
    }
  }
  if (level.lrz_valid != before.lrz_valid) {
    KORVEL_REFUSE("Metadata lrz buffer is present for some levels but not for others %u", number);
  }
  return true;
}

template <typename Kind>
bool lrz_passes(const StoredLrz& lrz, const LevelPlace& at) {
  const StoredBuffer& buffer = lrz.buffer;
  if (exceeds_surface(buffer, at.slices, at.surface_size_bytes)) {
    KORVEL_REFUSE(
        "Metadata level lrz buffer exceeds surface bounds {level %u, lrz offset %llu, lrz slice pitch %llu, slices %u, lrz size %llu, surface size %llu}",
        at.level, llu(buffer.offset), llu(buffer.slice_pitch), at.slices, llu(buffer.size),
        llu(at.surface_size_bytes));
  }
  const uint32_t covered_bytes = lrz.pitch * lrz.height;
  if (buffer.size < covered_bytes || buffer.size > buffer.slice_pitch) {
    KORVEL_REFUSE(
        "Metadata level lrz size mismatch {level %u, lrz size %llu, lrz pitch %u, lrz height %u, lrz slice pitch %llu}",
        at.level, llu(buffer.size), lrz.pitch, lrz.height, llu(buffer.slice_pitch));
  }
  if (lrz.pitch < lrz.width) {
    KORVEL_REFUSE("Metadata level lrz pitch mismatch {level %u, lrz pitch %u, lrz width %u}",
                  at.level, lrz.pitch, lrz.width);
  }
  if (lrz.width == 0 || lrz.height == 0) {
    KORVEL_REFUSE(
        "Metadata level lrz dimensions are invalid {level %u, lrz width %u, lrz height %u}",
        at.level, lrz.width, lrz.height);
  }
  return true;
}

template <typename Kind>
bool lrz_fast_clear_passes(const StoredBuffer& fast_clear, const LevelPlace& at) {
  if (exceeds_surface(fast_clear, 1, at.surface_size_bytes)) {
    KORVEL_REFUSE(
        "Metadata level lrz fc buffer exceeds surface bounds {level %u, lrz fc offset %llu, lrz fc size %llu, surface size %llu}",
        at.level, llu(fast_clear.offset), llu(fast_clear.size), llu(at.surface_size_bytes));
  }
  return true;
}

// A level but for its planes.
template <typename Kind>
[[gnu::noinline]] bool level_passes(const unsigned char* level_at, const StoredLevel& level,
                                    LevelBefore before, const CheckedHeader& header,
                                    const LevelPlace& at) {
  if (level.size == 0 || level.size > header.total_size) {
    KORVEL_REFUSE("Metadata level size is invalid value {level %u, size %llu, surface size %llu}",
                  at.level, llu(level.size), llu(header.total_size));
  }
  if (level.slices == 0 || level.slices > KORVEL_MAX_SLICES) {
    KORVEL_REFUSE("Metadata level slices is invalid value {level %u, slices %u}", at.level,
                  level.slices);
  }
  if (level.tiled > 1) {
    KORVEL_REFUSE("Metadata level tiled is invalid value {level %u, tiled %u}", at.level,
                  level.tiled);
  }
  if (level.planes == 0 || level.planes > KORVEL_MAX_PLANES) {
    KORVEL_REFUSE("Metadata level planes is invalid value {level %u, planes %u}", at.level,
                  level.planes);
  }
  if (level.lrz_valid > 1) {
    KORVEL_REFUSE("Metadata level lrz valid bit is invalid value {level %u, lrz valid %u}",
                  at.level, level.lrz_valid);
  }
  if (level.lrz_fc_valid > 1) {
    KORVEL_REFUSE("Metadata level lrz fc valid bit is invalid value {level %u, lrz fc valid %u}",
                  at.level, level.lrz_fc_valid);
  }
  if (level.lrz_valid != level.lrz_fc_valid) {
    KORVEL_REFUSE(
        "Metadata level lrz valid bits mismatch {level %u, lrz valid %u, lrz fc valid %u}",
        at.level, level.lrz_valid, level.lrz_fc_valid);
  }
  if (!level_follows<Kind>(level, at.level, before, header.linear_fallback)) return false;
  return level.lrz_valid == 0 ||
         (lrz_passes<Kind>(stored_lrz<Kind>(level_at), at) &&
          lrz_fast_clear_passes<Kind>(stored_lrz_fast_clear<Kind>(level_at), at));
}

#undef KORVEL_REFUSE

// A level without low-resolution depth whose own words have passed.
struct PlainLevel {
  const unsigned char* level_at;  // its place in the record
  uint32_t number;
  uint32_t slices;
  uint32_t tiled;
  uint32_t planes;
};

template <typename Kind>
bool plane_has_valid_flags(const unsigned char* plane_at, const LevelPlace& at, uint32_t plane,
                           uint32_t tiled) {
  using Plane = typename Kind::Plane;
  const auto valid = KORVEL_STORED(plane_at, Plane, flag_valid);
  return valid == 0 ||
         flag_buffer_passes<Kind>(stored_flag_buffer<Kind>(plane_at, valid), at, plane, tiled);
}

// The planes of a level from the first one given on.
template <typename Kind>
[[gnu::noinline]] bool planes_pass(const unsigned char* level_at, const LevelPlace& at,
                                   uint32_t tiled, uint32_t planes, uint32_t first) {
  for (uint32_t plane = first; plane < planes; ++plane) {
    const unsigned char* plane_at = stored_plane<Kind>(level_at, plane);
    if (!image_passes<Kind>(stored_image<Kind>(plane_at), at, plane)) return false;
    if (!plane_has_valid_flags<Kind>(plane_at, at, plane, tiled)) return false;
  }
  return true;
}

// The levels behind one that has passed.
template <typename Kind>
[[gnu::noinline]] bool levels_behind_pass(const unsigned char* level_at, uint32_t number,
                                          LevelBefore before, const CheckedHeader& header) {
  using Level = typename Kind::Level;
  while (++number < header.levels) {
    level_at += sizeof(Level);
    const StoredLevel level =
        stored_level_words<Kind>(level_at, KORVEL_STORED(level_at, Level, tiled));
    const LevelPlace at = {
        .level = number, .slices = level.slices, .surface_size_bytes = header.surface_size};
    if (!level_passes<Kind>(level_at, level, before, header, at)) return false;
    if (!planes_pass<Kind>(level_at, at, level.tiled, level.planes, 0)) return false;
    before = {.tiled = level.tiled, .lrz_valid = level.lrz_valid};
  }
  return true;
}

// From here to the end of the record: from a level's own words on, from a plane's image on.

template <typename Kind>
[[gnu::cold, gnu::noinline]] bool passes_from_level(const unsigned char* level_at, uint32_t number,
                                                    StoredLevel level, LevelBefore before,
                                                    const CheckedHeader& header) {
  const LevelPlace at = {
      .level = number, .slices = level.slices, .surface_size_bytes = header.surface_size};
  return level_passes<Kind>(level_at, level, before, header, at) &&
         planes_pass<Kind>(level_at, at, level.tiled, level.planes, 0) &&
         levels_behind_pass<Kind>(level_at, number,
                                  {.tiled = level.tiled, .lrz_valid = level.lrz_valid}, header);
}

template <typename Kind>
[[gnu::cold, gnu::noinline]] bool passes_from_image(PlainLevel level, uint32_t plane,
                                                    StoredImage image,
                                                    const CheckedHeader& header) {
  const LevelPlace at = {
      .level = level.number, .slices = level.slices, .surface_size_bytes = header.surface_size};
  const unsigned char* plane_at = stored_plane<Kind>(level.level_at, plane);
  return image_passes<Kind>(image, at, plane) &&
         plane_has_valid_flags<Kind>(plane_at, at, plane, level.tiled) &&
         planes_pass<Kind>(level.level_at, at, level.tiled, level.planes, plane + 1) &&
         levels_behind_pass<Kind>(level.level_at, level.number,
                                  {.tiled = level.tiled, .lrz_valid = 0}, header);
}

// A flag buffer that is not plain has a rule against it, which gives the message. Returns false.
template <typename Kind>
[[gnu::cold, gnu::noinline]] bool refuse_flag_buffer(PlainLevel level, uint32_t plane,
                                                     StoredFlagBuffer flag,
                                                     const CheckedHeader& header) {
  const LevelPlace at = {
      .level = level.number, .slices = level.slices, .surface_size_bytes = header.surface_size};
  flag_buffer_passes<Kind>(flag, at, plane, level.tiled);
  return false;
}

}  // namespace korvel
