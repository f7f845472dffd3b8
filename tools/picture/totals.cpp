#include "tools/picture/totals.h"

#include <fmt/core.h>

#include "tools/picture/field_words.h"
#include "tools/request/counted.h"

namespace tool {
namespace {

// Of all slices. As a number of any size: of a sum that wraps nothing is drawn.
double all_payload_bytes(std::span<const PlaneImage> images) {
  double bytes = 0;
  for (const PlaneImage& image : images) {
    bytes += static_cast<double>(payload_bytes(image)) * image.slices;
  }
  return bytes;
}

}  // namespace

std::vector<Said> totals(const PictureSource& source, std::span<const PlaneImage> images) {
  const MemoryLayout& record = source.blob.layout;
  const uint64_t allocation_bytes = record.total_size - record.size;
  const double payload = all_payload_bytes(images);
  std::vector<Said> sentences;
  sentences.push_back({fmt::format("GPU allocation: {} (0x{:X})", counted(allocation_bytes, "byte"),
                                   allocation_bytes),
                       field_words(source.explanation, "gpu_buffer_size")});
  // Bytes that wrapped hold less than was asked for, and so do slices that lie in each other.
  if (allocation_bytes == 0 || payload > static_cast<double>(allocation_bytes)) return sentences;
  sentences.push_back(
      {fmt::format("{:.0f} bytes of it, {:.1f} %, hold elements that were asked for", payload,
                   100 * payload / static_cast<double>(allocation_bytes)),
       "The elements of the size that was asked for, of all planes, levels and slices, times the "
       "bytes of an element. What is left is padding, alignment, flag buffers and the extra "
       "buffer."});
  return sentences;
}

}  // namespace tool
