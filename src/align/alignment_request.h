// What the alignment rules are asked about the planes of a surface.
#pragma once

#include <cstdint>

#include <korvel_utils.h>
#include "formats/format_traits.h"

namespace korvel {

// Wrapping 32-bit counts; elements and rows of elements.
struct Extent {
  uint32_t width;
  uint32_t height;
};

struct AlignmentRequest {
  FormatId format_id;
  const FormatTraits& format;  // of format_id
  uint32_t samples;
  uint32_t tiling_mode;
  uint32_t selector;             // of the way of padding pitches
  int32_t min_padded_row_bytes;  // rows of at most this many bytes are not padded
  uint32_t divisor;              // of the linear width's alignment in bytes
  Extent extra;                  // elements and rows added before the alignment
};

// For a function that is not inlined. A copy made where it is called leaves the original in
// registers everywhere else.
constexpr AlignmentRequest stored_copy(const AlignmentRequest& request) {
  return {request.format_id, request.format,
          request.samples,   request.tiling_mode,
          request.selector,  request.min_padded_row_bytes,
          request.divisor,   {request.extra.width, request.extra.height}};
}

// The one format whose linear heights take whole 64 rows. Asked about linear surfaces only.
constexpr bool takes_64_rows(const AlignmentRequest& request) {
  return request.format_id == kFormat64Rows;
}

constexpr bool is_tiled(const AlignmentRequest& request) {
  return request.tiling_mode == KORVEL_TILING_TILED;
}

// Bytes of an element, with all its samples when tiled.
constexpr uint32_t element_bytes(const AlignmentRequest& request, uint32_t plane) {
  const uint32_t bytes = plane_bytes(request.format, plane);
  return is_tiled(request) ? bytes * request.samples : bytes;
}

constexpr Extent with_extra(Extent size, const AlignmentRequest& request) {
  return {size.width + request.extra.width, size.height + request.extra.height};
}

// Linear rows of more bytes than the request's threshold are padded, compared as signed.
constexpr bool exceeds_padding_threshold(const AlignmentRequest& request, uint32_t width,
                                         uint32_t bytes) {
  return static_cast<int32_t>(width * bytes) > request.min_padded_row_bytes;
}

}  // namespace korvel
