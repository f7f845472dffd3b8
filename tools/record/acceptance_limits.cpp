#include "tools/record/acceptance_limits.h"

#include <fmt/core.h>

#include <cstdint>

#include "tools/record/covered_size.h"

namespace tool {
namespace {

using Sentences = std::vector<std::string>;

// What every buffer is held against, in bytes.
uint64_t bound_bytes(const MemoryLayout& record) {
  const auto low_half = static_cast<uint32_t>(record.total_size - record.size);
  return static_cast<uint64_t>(int64_t{static_cast<int32_t>(low_half)});
}

uint64_t bound_bytes(const SurfaceMetadata& record) {
  return record.total_size - record.size;
}

template <typename Record>
void add_surface_limits(Sentences& sentences, const Record& record) {
  const uint64_t total_bytes = record.total_size;
  const uint32_t record_bytes = record.size;
  const uint64_t bound = bound_bytes(record);
  if (total_bytes < record_bytes) {
    sentences.push_back(
        fmt::format("total_size is {}, less than the {} bytes of the record itself: the surface "
                    "size wraps, and buffers are held against {} bytes, next to no bound",
                    total_bytes, record_bytes, bound));
    return;
  }
  const uint64_t surface_bytes = total_bytes - record_bytes;
  if (bound > surface_bytes) {
    sentences.push_back(
        fmt::format("the surface has {} bytes, of which the rules take the low 32 bits with their "
                    "sign: buffers are held against {} bytes, next to no bound",
                    surface_bytes, bound));
  } else if (bound < surface_bytes) {
    sentences.push_back(
        fmt::format("the surface has {} bytes, of which the rules take the low 32 bits: buffers "
                    "are held against the first {} bytes alone",
                    surface_bytes, bound));
  }
}

// Both factors are of 32 bits, so that 64 hold the product.
constexpr uint64_t product_bytes(uint32_t count, uint32_t bytes_of_one) {
  return uint64_t{count} * bytes_of_one;
}

template <typename Plane>
void add_plane_limits(Sentences& sentences, uint32_t l, uint32_t p, const Plane& plane) {
  const uint32_t rows = covered_rows(plane);
  const uint32_t pitch_bytes = plane.image_pitch;
  const uint64_t image_bytes = plane.image_size;
  const uint64_t rows_bytes = product_bytes(rows, pitch_bytes);
  if (rows_bytes > image_bytes) {
    sentences.push_back(
        fmt::format("level {}, plane {}: {} rows of {} bytes are {} bytes, more than the {} of the "
                    "image: their product wraps at 32 bits",
                    l, p, rows, pitch_bytes, rows_bytes, image_bytes));
  }
  const uint32_t width_el = covered_width_el(plane);
  const uint32_t element_bytes = plane.image_element_size;
  const uint64_t row_bytes = product_bytes(width_el, element_bytes);
  if (row_bytes > pitch_bytes) {
    sentences.push_back(
        fmt::format("level {}, plane {}: {} elements of {} bytes are {} bytes, more than the {} of "
                    "the image's pitch: their product wraps at 32 bits",
                    l, p, width_el, element_bytes, row_bytes, pitch_bytes));
  }
}

template <typename Level>
void add_level_limits(Sentences& sentences, uint32_t l, const Level& level) {
  for (uint32_t p = 0; p < level.planes; ++p) {
    add_plane_limits(sentences, l, p, level.plane[p]);
  }
  if (level.lrz_valid == 0) return;
  const uint32_t rows = level.lrz_height;
  const uint32_t pitch_bytes = level.lrz_pitch;
  const uint64_t lrz_bytes = level.lrz_size;
  const uint64_t rows_bytes = product_bytes(rows, pitch_bytes);
  if (rows_bytes > lrz_bytes) {
    sentences.push_back(
        fmt::format("level {}: {} LRZ rows of {} bytes are {} bytes, more than the {} of the LRZ "
                    "buffer: their product wraps at 32 bits",
                    l, rows, pitch_bytes, rows_bytes, lrz_bytes));
  }
}

// The rules compare a level's size with total_size, the record's own bytes included.
template <typename Record>
void add_level_size_limits(Sentences& sentences, const Record& record) {
  const uint64_t surface_bytes = record.total_size - record.size;
  for (uint32_t l = 0; l < record.levels; ++l) {
    const uint64_t level_bytes = record.level[l].size;
    if (level_bytes <= surface_bytes) continue;
    sentences.push_back(
        fmt::format("level {}: its size of {} bytes is more than the {} of the surface: it is "
                    "compared with total_size, which counts the record too",
                    l, level_bytes, surface_bytes));
  }
}

// Only layout records have one, from their second version on.
void add_extra_buffer_limits(Sentences& sentences, const MemoryLayout& record) {
  if (record.size < KORVEL_LAYOUT_BYTES_VERSION_2 || record.extra_valid == 0) return;
  const uint64_t surface_bytes = record.total_size - record.size;
  const uint64_t offset = record.extra_offset;
  if (offset > surface_bytes || record.extra_size > surface_bytes - offset) {
    sentences.push_back(
        fmt::format("the extra buffer of {} bytes at offset {} ends outside the {} bytes of the "
                    "surface: no rule looks at it",
                    record.extra_size, offset, surface_bytes));
  }
  // Accepted records have 1 to 2048 slices.
  const uint32_t slices = record.level[0].slices;
  if (record.extra_slice_pitch > record.extra_size / slices) {
    sentences.push_back(
        fmt::format("the extra buffer of {} bytes does not hold {} slices of {} bytes: no rule "
                    "looks at it",
                    record.extra_size, slices, record.extra_slice_pitch));
  }
}

void add_extra_buffer_limits(Sentences&, const SurfaceMetadata&) {}

template <typename Record>
Sentences limits_of(const Record& record) {
  Sentences sentences;
  add_surface_limits(sentences, record);
  // Of a surface whose size wraps, nothing lies inside; that is said.
  if (record.total_size >= record.size) {
    add_level_size_limits(sentences, record);
    add_extra_buffer_limits(sentences, record);
  }
  for (uint32_t l = 0; l < record.levels; ++l) add_level_limits(sentences, l, record.level[l]);
  return sentences;
}

}  // namespace

std::vector<std::string> limits_of_acceptance(const MemoryLayout& record) {
  return limits_of(record);
}

std::vector<std::string> limits_of_acceptance(const SurfaceMetadata& record) {
  return limits_of(record);
}

}  // namespace tool
