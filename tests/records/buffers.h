// The buffers of a level and of a plane, and how they are put into either kind of record. The
// fields have the same names in both; they differ in the sizes of an image.
#pragma once

#include <cstdint>

#include <korvel_utils.h>

namespace records {

struct Image {
  uint64_t offset_bytes = 0;
  uint64_t size_bytes = 0;  // of one slice
  uint32_t pitch_bytes = 0;
  uint64_t slice_pitch_bytes = 0;
  uint32_t element_bytes = 0;
  uint32_t width_el = 0;  // allocated
  uint32_t height_rows = 0;
  uint32_t actual_width_el = 0;  // of the image itself; surface records alone have the two
  uint32_t actual_height_rows = 0;
};

struct FlagBuffer {
  uint64_t offset_bytes = 0;
  uint64_t size_bytes = 0;  // of one slice
  uint32_t pitch_bytes = 0;
  uint64_t slice_pitch_bytes = 0;
};

// Low-resolution depth and its fast-clear buffer.
struct DepthBuffers {
  uint64_t offset_bytes = 0;
  uint64_t size_bytes = 0;  // of one slice
  uint32_t pitch_bytes = 0;
  uint64_t slice_pitch_bytes = 0;
  uint32_t width_el = 0;
  uint32_t height_rows = 0;
  uint64_t fast_clear_offset_bytes = 0;
  uint64_t fast_clear_size_bytes = 0;  // of all slices
};

inline void put_actual_size(PlaneLayout&, const Image&) {}  // it has none
inline void put_actual_size(SurfacePlane& plane, const Image& image) {
  plane.actual_width = image.actual_width_el;
  plane.actual_height = image.actual_height_rows;
}

template <typename Plane>
void put_image(Plane& plane, const Image& image) {
  plane.image_offset = image.offset_bytes;
  plane.image_size = image.size_bytes;
  plane.image_pitch = image.pitch_bytes;
  plane.image_slice_pitch = image.slice_pitch_bytes;
  plane.image_element_size = image.element_bytes;
  plane.image_width = image.width_el;
  plane.image_height = image.height_rows;
  put_actual_size(plane, image);
}

// All words of a flag buffer but the one that says whether it exists.
template <typename Plane>
void put_flag_words(Plane& plane, const FlagBuffer& flags) {
  plane.flag_offset = flags.offset_bytes;
  plane.flag_size = flags.size_bytes;
  plane.flag_pitch = flags.pitch_bytes;
  plane.flag_slice_pitch = flags.slice_pitch_bytes;
}

// All words of depth buffers but the two that say whether they exist.
template <typename Level>
void put_depth_words(Level& level, const DepthBuffers& depth) {
  level.lrz_offset = depth.offset_bytes;
  level.lrz_size = depth.size_bytes;
  level.lrz_pitch = depth.pitch_bytes;
  level.lrz_slice_pitch = depth.slice_pitch_bytes;
  level.lrz_width = depth.width_el;
  level.lrz_height = depth.height_rows;
  level.lrz_fc_offset = depth.fast_clear_offset_bytes;
  level.lrz_fc_size = depth.fast_clear_size_bytes;
}

}  // namespace records
