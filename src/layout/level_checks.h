// The checks of levels and planes, shared by both validators.
//
// Both stored records describe the same things in different places. Each check sees a level or a
// plane through one view; what differs between the records is a fact of its kind (RecordKind).
#pragma once

#include <cstddef>
#include <cstdint>

#include <korvel_utils.h>
#include "layout/stored_word.h"
#include "platform/log.h"

namespace korvel {

struct MemoryLayoutKind {
  using Level = LevelLayout;
  using Plane = PlaneLayout;
  static constexpr const char* kValidator = "validate_resource_memory_layout_metadata";
  static constexpr std::size_t kLevels = offsetof(MemoryLayout, level);
  static constexpr bool kHasActualSize = false;  // the image is as large as its allocation
};

struct SurfaceMetadataKind {
  using Level = SurfaceLevel;
  using Plane = SurfacePlane;
  static constexpr const char* kValidator = "validate_surface_metadata";
  static constexpr std::size_t kLevels = offsetof(SurfaceMetadata, level);
  static constexpr bool kHasActualSize = true;
};

// What the header checks have established.
struct CheckedHeader {
  uint64_t total_size;    // bytes, the record's own size included
  uint64_t surface_size;  // bytes; what every buffer must end within
  uint32_t linear_fallback;
  uint32_t levels;  // 1 to 15
};

// What the levels so far have in common.
struct LevelState {
  uint32_t tiled;
  uint32_t lrz_valid;
};

// A buffer of one slice of every array layer.
struct Buffer {
  uint64_t offset;       // bytes
  uint64_t slice_pitch;  // bytes
  uint64_t size;         // bytes of one slice
};

// `slices` is 1 or more. An end that does not fit 64 bits lies outside every surface. One return a
// step keeps each overflow a flag of the processor.
[[gnu::always_inline]] inline bool exceeds_surface(const Buffer& buffer, uint32_t slices,
                                                   uint64_t surface_size) {
  uint64_t end;
  if (__builtin_add_overflow(buffer.offset, buffer.size, &end)) return true;
  if (slices != 1) {
    uint64_t others;
    if (__builtin_mul_overflow(uint64_t{slices - 1}, buffer.slice_pitch, &others)) return true;
    if (__builtin_add_overflow(end, others, &end)) return true;
  }
  return end > surface_size;
}

#define KORVEL_REFUSE(...)                     \
  do {                                         \
    KORVEL_LOG(Kind::kValidator, __VA_ARGS__); \
    return false;                              \
  } while (false)

#define KORVEL_WORD(bytes, record, field) \
  stored_word<decltype(record::field)>(bytes, offsetof(record, field))

template <typename Kind>
bool image_passes(const unsigned char* plane, uint32_t l, uint32_t p, uint32_t slices,
                  const CheckedHeader& header) {
  using Plane = typename Kind::Plane;
  const Buffer image = {KORVEL_WORD(plane, Plane, image_offset),
                        KORVEL_WORD(plane, Plane, image_slice_pitch),
                        KORVEL_WORD(plane, Plane, image_size)};
  const auto pitch = KORVEL_WORD(plane, Plane, image_pitch);
  const auto element_size = KORVEL_WORD(plane, Plane, image_element_size);
  const auto width = KORVEL_WORD(plane, Plane, image_width);
  const auto height = KORVEL_WORD(plane, Plane, image_height);

  if (exceeds_surface(image, slices, header.surface_size)) {
    KORVEL_REFUSE(
        "Metadata level image buffer exceeds surface bounds {level %u, plane %u, image offset "
        "%llu, "
        "image slice pitch %llu, slices %u, image size %llu, surface size %llu}",
        l, p, llu(image.offset), llu(image.slice_pitch), slices, llu(image.size),
        llu(header.surface_size));
  }
  if constexpr (Kind::kHasActualSize) {
    const auto actual_width = KORVEL_WORD(plane, Plane, actual_width);
    const auto actual_height = KORVEL_WORD(plane, Plane, actual_height);
    if (image.size < pitch * actual_height || image.size > image.slice_pitch) {
      KORVEL_REFUSE(
          "Metadata level image size mismatch {level %u, plane %u, image size %llu, image pitch "
          "%u, "
          "actual height %u, image slice pitch %llu}",
          l, p, llu(image.size), pitch, actual_height, llu(image.slice_pitch));
    }
    if (pitch < element_size * actual_width) {
      KORVEL_REFUSE(
          "Metadata level image pitch mismatch {level %u, plane %u, image pitch %u, actual width "
          "%u, "
          "image element size %u}",
          l, p, pitch, actual_width, element_size);
    }
    if (width == 0 || height == 0 || actual_width == 0 || actual_height == 0 || element_size == 0) {
      KORVEL_REFUSE(
          "Metadata level image invalid dimensions {level %u, plane %u, image width %u, image "
          "height "
          "%u, actual width %u, actual height %u, image element size %u}",
          l, p, width, height, actual_width, actual_height, element_size);
    }
  } else {
    if (image.size < pitch * height || image.size > image.slice_pitch) {
      KORVEL_REFUSE(
          "Metadata level image size mismatch {level %u, plane %u, image size %llu, image pitch "
          "%u, "
          "image height %u, image slice pitch %llu}",
          l, p, llu(image.size), pitch, height, llu(image.slice_pitch));
    }
    if (pitch < element_size * width) {
      KORVEL_REFUSE(
          "Metadata level image pitch mismatch {level %u, plane %u, image pitch %u, image width "
          "%u, "
          "image element size %u}",
          l, p, pitch, width, element_size);
    }
    if (width == 0 || height == 0 || element_size == 0) {
      KORVEL_REFUSE(
          "Metadata level image invalid dimensions {level %u, plane %u, image width %u, image "
          "height "
          "%u, image element size %u}",
          l, p, width, height, element_size);
    }
  }
  return true;
}

template <typename Kind>
bool flag_buffer_passes(const unsigned char* plane, uint32_t l, uint32_t p, uint32_t slices,
                        uint32_t tiled, const CheckedHeader& header) {
  using Plane = typename Kind::Plane;
  const auto valid = KORVEL_WORD(plane, Plane, flag_valid);
  if (valid == 0) return true;
  if (valid != 1) {
    KORVEL_REFUSE("Metadata level flagbuffer valid bit invalid {level %u, plane %u, valid %u}", l,
                  p, valid);
  }
  if (tiled == 0) {
    KORVEL_REFUSE("Metadata level flagbuffer enabled but tiling is disabled {level %u, plane %u}",
                  l, p);
  }
  const Buffer flag = {KORVEL_WORD(plane, Plane, flag_offset),
                       KORVEL_WORD(plane, Plane, flag_slice_pitch),
                       KORVEL_WORD(plane, Plane, flag_size)};
  const auto pitch = KORVEL_WORD(plane, Plane, flag_pitch);
  if (exceeds_surface(flag, slices, header.surface_size)) {
    KORVEL_REFUSE(
        "Metadata level flagbuffer buffer exceeds surface bounds {level %u, plane %u, flag offset "
        "%llu, flag slice pitch %llu, slices %u, flag size %llu, surface size %llu}",
        l, p, llu(flag.offset), llu(flag.slice_pitch), slices, llu(flag.size),
        llu(header.surface_size));
  }
  if (pitch == 0 || pitch > flag.slice_pitch) {
    KORVEL_REFUSE(
        "Metadata level flagbuffer pitch mismatch {level %u, plane %u, flag pitch %u, flag slice "
        "pitch %llu}",
        l, p, pitch, llu(flag.slice_pitch));
  }
  if (flag.slice_pitch < flag.size) {
    KORVEL_REFUSE(
        "Metadata level flagbuffer slice pitch mismatch {level %u, plane %u, flag slice pitch "
        "%llu, "
        "flag size %llu}",
        l, p, llu(flag.slice_pitch), llu(flag.size));
  }
  return true;
}

// A chain may go from tiled to linear once, where the record allows it, and has low-resolution
// depth on every level or on none.
template <typename Kind>
bool level_follows(uint32_t l, LevelState level, const CheckedHeader& header, LevelState& chain) {
  if (l == 0) {
    chain = level;
    return true;
  }
  if (level.tiled != chain.tiled) {
    if (chain.tiled == 0) {
      KORVEL_REFUSE("Metadata level tiled bit transitioned from untiled to tiled %u", l);
    }
    chain.tiled = 0;
    if (header.linear_fallback == 0) {
      KORVEL_REFUSE("Metadata level has linear fallback but didnt enable bit in struct %u", l);
    }
  }
  if (level.lrz_valid != chain.lrz_valid) {
    KORVEL_REFUSE("Metadata lrz buffer is present for some levels but not for others %u", l);
  }
  return true;
}

template <typename Kind>
bool lrz_buffer_passes(const unsigned char* level, uint32_t l, uint32_t slices,
                       const CheckedHeader& header) {
  using Level = typename Kind::Level;
  const Buffer lrz = {KORVEL_WORD(level, Level, lrz_offset),
                      KORVEL_WORD(level, Level, lrz_slice_pitch),
                      KORVEL_WORD(level, Level, lrz_size)};
  const auto pitch = KORVEL_WORD(level, Level, lrz_pitch);
  const auto width = KORVEL_WORD(level, Level, lrz_width);
  const auto height = KORVEL_WORD(level, Level, lrz_height);
  if (exceeds_surface(lrz, slices, header.surface_size)) {
    KORVEL_REFUSE(
        "Metadata level lrz buffer exceeds surface bounds {level %u, lrz offset %llu, lrz slice "
        "pitch "
        "%llu, slices %u, lrz size %llu, surface size %llu}",
        l, llu(lrz.offset), llu(lrz.slice_pitch), slices, llu(lrz.size), llu(header.surface_size));
  }
  if (lrz.size < pitch * height || lrz.size > lrz.slice_pitch) {
    KORVEL_REFUSE(
        "Metadata level lrz size mismatch {level %u, lrz size %llu, lrz pitch %u, lrz height %u, "
        "lrz "
        "slice pitch %llu}",
        l, llu(lrz.size), pitch, height, llu(lrz.slice_pitch));
  }
  if (pitch < width) {
    KORVEL_REFUSE("Metadata level lrz pitch mismatch {level %u, lrz pitch %u, lrz width %u}", l,
                  pitch, width);
  }
  if (width == 0 || height == 0) {
    KORVEL_REFUSE(
        "Metadata level lrz dimensions are invalid {level %u, lrz width %u, lrz height %u}", l,
        width, height);
  }
  return true;
}

// The fast-clear buffer serves all slices.
template <typename Kind>
bool lrz_fc_buffer_passes(const unsigned char* level, uint32_t l, const CheckedHeader& header) {
  using Level = typename Kind::Level;
  const Buffer fast_clear = {KORVEL_WORD(level, Level, lrz_fc_offset), 0,
                             KORVEL_WORD(level, Level, lrz_fc_size)};
  if (exceeds_surface(fast_clear, 1, header.surface_size)) {
    KORVEL_REFUSE(
        "Metadata level lrz fc buffer exceeds surface bounds {level %u, lrz fc offset %llu, lrz fc "
        "size %llu, surface size %llu}",
        l, llu(fast_clear.offset), llu(fast_clear.size), llu(header.surface_size));
  }
  return true;
}

template <typename Kind>
bool level_passes(const unsigned char* level, uint32_t l, const CheckedHeader& header,
                  LevelState& chain) {
  using Level = typename Kind::Level;
  const auto size = KORVEL_WORD(level, Level, size);
  if (size == 0 || size > header.total_size) {
    KORVEL_REFUSE("Metadata level size is invalid value {level %u, size %llu, surface size %llu}",
                  l, llu(size), llu(header.total_size));
  }
  const auto slices = KORVEL_WORD(level, Level, slices);
  if (slices == 0 || slices > KORVEL_MAX_SLICES) {
    KORVEL_REFUSE("Metadata level slices is invalid value {level %u, slices %u}", l, slices);
  }
  const auto tiled = KORVEL_WORD(level, Level, tiled);
  if (tiled > 1) {
    KORVEL_REFUSE("Metadata level tiled is invalid value {level %u, tiled %u}", l, tiled);
  }
  const auto planes = KORVEL_WORD(level, Level, planes);
  if (planes == 0 || planes > KORVEL_MAX_PLANES) {
    KORVEL_REFUSE("Metadata level planes is invalid value {level %u, planes %u}", l, planes);
  }
  const auto lrz_valid = KORVEL_WORD(level, Level, lrz_valid);
  if (lrz_valid > 1) {
    KORVEL_REFUSE("Metadata level lrz valid bit is invalid value {level %u, lrz valid %u}", l,
                  lrz_valid);
  }
  const auto lrz_fc_valid = KORVEL_WORD(level, Level, lrz_fc_valid);
  if (lrz_fc_valid > 1) {
    KORVEL_REFUSE("Metadata level lrz fc valid bit is invalid value {level %u, lrz fc valid %u}", l,
                  lrz_fc_valid);
  }
  if (lrz_valid != lrz_fc_valid) {
    KORVEL_REFUSE(
        "Metadata level lrz valid bits mismatch {level %u, lrz valid %u, lrz fc valid %u}", l,
        lrz_valid, lrz_fc_valid);
  }
  if (!level_follows<Kind>(l, {tiled, lrz_valid}, header, chain)) return false;
  if (lrz_valid == 1 && (!lrz_buffer_passes<Kind>(level, l, slices, header) ||
                         !lrz_fc_buffer_passes<Kind>(level, l, header))) {
    return false;
  }
  for (uint32_t p = 0; p < planes; ++p) {
    const unsigned char* plane = level + offsetof(Level, plane) + p * sizeof(typename Kind::Plane);
    if (!image_passes<Kind>(plane, l, p, slices, header)) return false;
    if (!flag_buffer_passes<Kind>(plane, l, p, slices, tiled, header)) return false;
  }
  return true;
}

// The size that a plane's rows must cover.
struct CoveredSize {
  uint32_t width;      // elements
  uint32_t height;     // rows
  uint32_t allocated;  // elements, wrapping; 0 where a side of the allocation is 0
};

template <typename Kind>
[[gnu::always_inline]] inline CoveredSize covered_size(const unsigned char* plane) {
  using Plane = typename Kind::Plane;
  const auto width = KORVEL_WORD(plane, Plane, image_width);
  const auto height = KORVEL_WORD(plane, Plane, image_height);
  if constexpr (Kind::kHasActualSize) {
    return {KORVEL_WORD(plane, Plane, actual_width), KORVEL_WORD(plane, Plane, actual_height),
            width * height};
  } else {
    return {width, height, 1};  // the covered size is the allocation
  }
}

// From 1 up to `most`, in one comparison: 0 wraps to the largest number.
constexpr bool is_counted(uint64_t count, uint64_t most) {
  return count - 1 < most;
}

// A first look that nearly every valid plane passes, in half the comparisons: true only for a plane
// that passes each check above. The others, valid or not, are looked at check by check. `slices`
// and `tiled` are constants where the caller knows them.
template <typename Kind>
[[gnu::always_inline]] inline bool plane_is_plain(const unsigned char* plane, uint32_t slices,
                                                  uint32_t tiled, uint64_t surface_size) {
  using Plane = typename Kind::Plane;
  const Buffer image = {KORVEL_WORD(plane, Plane, image_offset),
                        KORVEL_WORD(plane, Plane, image_slice_pitch),
                        KORVEL_WORD(plane, Plane, image_size)};
  const auto pitch = KORVEL_WORD(plane, Plane, image_pitch);
  const CoveredSize covered = covered_size<Kind>(plane);
  if (exceeds_surface(image, slices, surface_size)) return false;
  if (!is_counted(uint32_t{pitch * covered.height}, image.size)) return false;
  if (image.size > image.slice_pitch) return false;
  const auto element_size = KORVEL_WORD(plane, Plane, image_element_size);
  if (!is_counted(uint32_t{element_size * covered.width}, pitch)) return false;
  if (covered.allocated == 0) return false;

  const auto flag_valid = KORVEL_WORD(plane, Plane, flag_valid);
  if (flag_valid != tiled) return flag_valid == 0;
  if (tiled == 0) return true;
  const Buffer flag = {KORVEL_WORD(plane, Plane, flag_offset),
                       KORVEL_WORD(plane, Plane, flag_slice_pitch),
                       KORVEL_WORD(plane, Plane, flag_size)};
  if (exceeds_surface(flag, slices, surface_size)) return false;
  if (!is_counted(KORVEL_WORD(plane, Plane, flag_pitch), flag.slice_pitch)) return false;
  if (flag.size > flag.slice_pitch) return false;
  return true;  // plain, with flags
}

template <typename Kind>
[[gnu::always_inline]] inline bool planes_are_plain(const unsigned char* level, uint32_t slices,
                                                    uint32_t tiled, uint64_t surface_size) {
  using Level = typename Kind::Level;
  const auto is_plain = [=](uint32_t p) __attribute__((always_inline)) {
    const unsigned char* plane = level + offsetof(Level, plane) + p * sizeof(typename Kind::Plane);
    return plane_is_plain<Kind>(plane, slices, tiled, surface_size);
  };
  switch (KORVEL_WORD(level, Level, planes)) {
    case 3:
      if (!is_plain(2)) return false;
      [[fallthrough]];
    case 2:
      if (!is_plain(1)) return false;
      [[fallthrough]];
    case 1: return is_plain(0);
    default: return false;
  }
}

// Levels of several slices, apart because they need a multiplication for each buffer.
template <typename Kind>
[[gnu::noinline]] bool planes_of_slices_are_plain(const unsigned char* level, uint32_t tiled,
                                                  uint64_t surface_size) {
  using Level = typename Kind::Level;
  const auto slices = KORVEL_WORD(level, Level, slices);
  return is_counted(slices, KORVEL_MAX_SLICES) &&
         planes_are_plain<Kind>(level, slices, tiled, surface_size);
}

// The same for a level without low-resolution depth, tiled as `tiled` says.
template <typename Kind>
[[gnu::always_inline]] inline bool level_is_plain(const unsigned char* level, uint32_t tiled,
                                                  const CheckedHeader& header) {
  using Level = typename Kind::Level;
  if (!is_counted(KORVEL_WORD(level, Level, size), header.total_size)) return false;
  if (KORVEL_WORD(level, Level, tiled) != tiled) return false;
  if ((KORVEL_WORD(level, Level, lrz_valid) | KORVEL_WORD(level, Level, lrz_fc_valid)) != 0) {
    return false;
  }
  if (KORVEL_WORD(level, Level, slices) != 1) {
    return planes_of_slices_are_plain<Kind>(level, tiled, header.surface_size);
  }
  return planes_are_plain<Kind>(level, 1, tiled, header.surface_size);
}

// How many levels from the first one on are plain and tiled alike.
template <typename Kind>
[[gnu::always_inline]] inline uint32_t plain_levels(const unsigned char* level, uint32_t tiled,
                                                    const CheckedHeader& header) {
  uint32_t l = 0;
  while (l < header.levels && level_is_plain<Kind>(level, tiled, header)) {
    ++l;
    level += sizeof(typename Kind::Level);
  }
  return l;
}

// Every level of a record whose header has passed.
template <typename Kind>
bool levels_pass(const unsigned char* record, const CheckedHeader& header) {
  using Level = typename Kind::Level;
  const unsigned char* const levels = record + Kind::kLevels;
  const uint32_t plain = KORVEL_WORD(levels, Level, tiled) == 1
                             ? plain_levels<Kind>(levels, 1, header)
                             : plain_levels<Kind>(levels, 0, header);
  if (plain == header.levels) return true;
  LevelState chain = {KORVEL_WORD(levels, Level, tiled), 0};  // of the plain levels
  for (uint32_t l = plain; l < header.levels; ++l) {
    if (!level_passes<Kind>(levels + l * sizeof(Level), l, header, chain)) return false;
  }
  return true;
}

}  // namespace korvel
