// The rules of levels and planes, with their messages, in the order in which they are checked. Each
// stands once for both kinds of record. Products are 32-bit and wrap.
#pragma once

#include <korvel_utils.h>

#include <cstdint>

#include "layout/stored_levels.h"
#include "platform/log.h"

namespace korvel {

// What a level is held against: the tiling of the level before, the depth buffer of level 0.
struct LevelState {
  uint32_t tiled;
  uint32_t lrz_valid;
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
bool image_passes(const StoredImage& image, const LevelPlace& at, uint32_t plane) {
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

template <typename Kind>
bool flag_buffer_passes(const unsigned char* plane_at, const LevelPlace& at, uint32_t plane,
                        uint32_t tiled) {
  using Plane = typename Kind::Plane;
  const auto valid = KORVEL_STORED(plane_at, Plane, flag_valid);
  if (valid == 0) return true;
  if (valid != 1) {
    KORVEL_REFUSE("Metadata level flagbuffer valid bit invalid {level %u, plane %u, valid %u}",
                  at.level, plane, valid);
  }
  if (tiled == 0) {
    KORVEL_REFUSE("Metadata level flagbuffer enabled but tiling is disabled {level %u, plane %u}",
                  at.level, plane);
  }
  const StoredFlagBuffer flag = stored_flag_buffer<Kind>(plane_at);
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
bool level_follows(uint32_t level, LevelState state, uint32_t linear_fallback, LevelState& chain) {
  if (level == 0) {
    chain = state;
    return true;
  }
  if (state.tiled != chain.tiled) {
    if (chain.tiled == 0) {
      KORVEL_REFUSE("Metadata level tiled bit transitioned from untiled to tiled %u", level);
    }
    chain.tiled = 0;
    if (linear_fallback == 0) {
      KORVEL_REFUSE("Metadata level has linear fallback but didnt enable bit in struct %u", level);
    }
  }
  if (state.lrz_valid != chain.lrz_valid) {
    KORVEL_REFUSE("Metadata lrz buffer is present for some levels but not for others %u", level);
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

template <typename Kind>
bool level_passes(const unsigned char* level_at, uint32_t level, const CheckedHeader& header,
                  LevelState& chain) {
  using Level = typename Kind::Level;
  const auto size = KORVEL_STORED(level_at, Level, size);
  if (size == 0 || size > header.total_size) {
    KORVEL_REFUSE("Metadata level size is invalid value {level %u, size %llu, surface size %llu}",
                  level, llu(size), llu(header.total_size));
  }
  const auto slices = KORVEL_STORED(level_at, Level, slices);
  if (slices == 0 || slices > KORVEL_MAX_SLICES) {
    KORVEL_REFUSE("Metadata level slices is invalid value {level %u, slices %u}", level, slices);
  }
  const auto tiled = KORVEL_STORED(level_at, Level, tiled);
  if (tiled > 1) {
    KORVEL_REFUSE("Metadata level tiled is invalid value {level %u, tiled %u}", level, tiled);
  }
  const auto planes = KORVEL_STORED(level_at, Level, planes);
  if (planes == 0 || planes > KORVEL_MAX_PLANES) {
    KORVEL_REFUSE("Metadata level planes is invalid value {level %u, planes %u}", level, planes);
  }
  const auto lrz_valid = KORVEL_STORED(level_at, Level, lrz_valid);
  if (lrz_valid > 1) {
    KORVEL_REFUSE("Metadata level lrz valid bit is invalid value {level %u, lrz valid %u}", level,
                  lrz_valid);
  }
  const auto lrz_fc_valid = KORVEL_STORED(level_at, Level, lrz_fc_valid);
  if (lrz_fc_valid > 1) {
    KORVEL_REFUSE("Metadata level lrz fc valid bit is invalid value {level %u, lrz fc valid %u}",
                  level, lrz_fc_valid);
  }
  if (lrz_valid != lrz_fc_valid) {
    KORVEL_REFUSE(
        "Metadata level lrz valid bits mismatch {level %u, lrz valid %u, lrz fc valid %u}", level,
        lrz_valid, lrz_fc_valid);
  }
  if (!level_follows<Kind>(level, {tiled, lrz_valid}, header.linear_fallback, chain)) return false;

  const LevelPlace at = {
      .level = level, .slices = slices, .surface_size_bytes = header.surface_size};
  if (lrz_valid == 1) {
    if (!lrz_passes<Kind>(stored_lrz<Kind>(level_at), at)) return false;
    if (!lrz_fast_clear_passes<Kind>(stored_lrz_fast_clear<Kind>(level_at), at)) return false;
  }
  for (uint32_t plane = 0; plane < planes; ++plane) {
    const unsigned char* plane_at = stored_plane<Kind>(level_at, plane);
    if (!image_passes<Kind>(stored_image<Kind>(plane_at), at, plane)) return false;
    if (!flag_buffer_passes<Kind>(plane_at, at, plane, tiled)) return false;
  }
  return true;
}

#undef KORVEL_REFUSE

}  // namespace korvel
