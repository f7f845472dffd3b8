// Levels and planes of a stored record as the checks see them. The two kinds of record describe the
// same things in different places: both are read into the same words here, and what else differs is
// a fact of the kind.
#pragma once

#include <korvel_utils.h>

#include <cstddef>
#include <cstdint>

#include "layout/stored_word.h"

namespace korvel {

// A record whose images are as large as their allocations.
struct MemoryLayoutKind {
  using Level = LevelLayout;
  using Plane = PlaneLayout;
  static constexpr std::size_t kLevels = offsetof(MemoryLayout, level);
  static constexpr std::size_t kPlanes = offsetof(LevelLayout, plane);
  static constexpr bool kHasActualSize = false;
  static constexpr const char* kValidator = "validate_resource_memory_layout_metadata";
};

// A record with the actual size of each image beside that of its allocation.
struct SurfaceMetadataKind {
  using Level = SurfaceLevel;
  using Plane = SurfacePlane;
  static constexpr std::size_t kLevels = offsetof(SurfaceMetadata, level);
  static constexpr std::size_t kPlanes = offsetof(SurfaceLevel, plane);
  static constexpr bool kHasActualSize = true;
  static constexpr const char* kValidator = "validate_surface_metadata";
};

// What the header checks have established.
struct CheckedHeader {
  uint64_t total_size;    // bytes, the record's own size included
  uint64_t surface_size;  // bytes; what every buffer must end within
  uint32_t linear_fallback;
  uint32_t levels;  // 1 to 15
};

// A buffer of every slice; all in bytes.
struct StoredBuffer {
  uint64_t offset;
  uint64_t slice_pitch;
  uint64_t size;  // of one slice
};

struct StoredImage {
  StoredBuffer buffer;
  uint32_t pitch;           // bytes
  uint32_t element_size;    // bytes
  uint32_t width;           // elements, allocated
  uint32_t height;          // rows, allocated
  uint32_t covered_width;   // elements that a row holds: the actual ones where the record has them
  uint32_t covered_height;  // rows that the image holds
};

struct StoredFlagBuffer {
  StoredBuffer buffer;
  uint32_t pitch;  // bytes
};

struct StoredLrz {
  StoredBuffer buffer;
  uint32_t pitch;   // bytes
  uint32_t width;   // elements
  uint32_t height;  // rows
};

// Where a level of a record and a plane of a level stand.
template <typename Kind>
const unsigned char* stored_level(const unsigned char* record, uint32_t level) {
  return record + Kind::kLevels + level * sizeof(typename Kind::Level);
}

template <typename Kind>
const unsigned char* stored_plane(const unsigned char* level_at, uint32_t plane) {
  return level_at + Kind::kPlanes + plane * sizeof(typename Kind::Plane);
}

template <typename Kind>
inline StoredImage stored_image(const unsigned char* plane_at) {
  using Plane = typename Kind::Plane;
  const auto width = KORVEL_STORED(plane_at, Plane, image_width);
  const auto height = KORVEL_STORED(plane_at, Plane, image_height);
  StoredImage image = {
      .buffer = {.offset = KORVEL_STORED(plane_at, Plane, image_offset),
                 .slice_pitch = KORVEL_STORED(plane_at, Plane, image_slice_pitch),
                 .size = KORVEL_STORED(plane_at, Plane, image_size)},
      .pitch = KORVEL_STORED(plane_at, Plane, image_pitch),
      .element_size = KORVEL_STORED(plane_at, Plane, image_element_size),
      .width = width,
      .height = height,
      .covered_width = width,
      .covered_height = height,
  };
  if constexpr (Kind::kHasActualSize) {
    image.covered_width = KORVEL_STORED(plane_at, Plane, actual_width);
    image.covered_height = KORVEL_STORED(plane_at, Plane, actual_height);
  }
  return image;
}

template <typename Kind>
inline StoredFlagBuffer stored_flag_buffer(const unsigned char* plane_at) {
  using Plane = typename Kind::Plane;
  return {
      .buffer = {.offset = KORVEL_STORED(plane_at, Plane, flag_offset),
                 .slice_pitch = KORVEL_STORED(plane_at, Plane, flag_slice_pitch),
                 .size = KORVEL_STORED(plane_at, Plane, flag_size)},
      .pitch = KORVEL_STORED(plane_at, Plane, flag_pitch),
  };
}

template <typename Kind>
inline StoredLrz stored_lrz(const unsigned char* level_at) {
  using Level = typename Kind::Level;
  return {
      .buffer = {.offset = KORVEL_STORED(level_at, Level, lrz_offset),
                 .slice_pitch = KORVEL_STORED(level_at, Level, lrz_slice_pitch),
                 .size = KORVEL_STORED(level_at, Level, lrz_size)},
      .pitch = KORVEL_STORED(level_at, Level, lrz_pitch),
      .width = KORVEL_STORED(level_at, Level, lrz_width),
      .height = KORVEL_STORED(level_at, Level, lrz_height),
  };
}

// The fast-clear buffer serves all slices.
template <typename Kind>
inline StoredBuffer stored_lrz_fast_clear(const unsigned char* level_at) {
  using Level = typename Kind::Level;
  return {.offset = KORVEL_STORED(level_at, Level, lrz_fc_offset),
          .slice_pitch = 0,
          .size = KORVEL_STORED(level_at, Level, lrz_fc_size)};
}

// `slices` is 1 or more. An end that does not fit 64 bits lies outside every surface.
inline bool exceeds_surface(const StoredBuffer& buffer, uint32_t slices,
                            uint64_t surface_size_bytes) {
  uint64_t end = buffer.offset + buffer.size;
  if (end < buffer.offset) return true;
  uint64_t others;
  if (__builtin_mul_overflow(uint64_t{slices - 1}, buffer.slice_pitch, &others)) return true;
  end += others;
  if (end < others) return true;
  return end > surface_size_bytes;
}

}  // namespace korvel
