#include "tools/comparison/buffer_overlaps.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <utility>

#include "tools/request/counted.h"

namespace tool {
namespace {

using Sentences = std::vector<std::string>;

// More say nothing new.
constexpr std::size_t kMostPairs = 8;

struct Buffer {
  std::string name;
  uint64_t offset;
  uint64_t bytes;  // of one slice
  uint64_t slice_pitch;
  uint32_t slices;
};

// One slice. Accepted records end inside 64 bits.
struct Stretch {
  uint64_t first;
  uint64_t end;
  std::size_t buffer;
  uint32_t slice;
};

template <typename Record>
void add_level_buffers(std::vector<Buffer>& buffers, const Record& record, uint32_t l) {
  const auto& level = record.level[l];
  for (uint32_t p = 0; p < level.planes; ++p) {
    const auto& plane = level.plane[p];
    const std::string place = fmt::format("level {}, plane {}", l, p);
    buffers.push_back({fmt::format("the image of {}", place), plane.image_offset, plane.image_size,
                       plane.image_slice_pitch, level.slices});
    if (plane.flag_valid == 0) continue;
    buffers.push_back({fmt::format("the flag buffer of {}", place), plane.flag_offset,
                       plane.flag_size, plane.flag_slice_pitch, level.slices});
  }
  if (level.lrz_valid == 0) return;
  buffers.push_back({fmt::format("the LRZ buffer of level {}", l), level.lrz_offset, level.lrz_size,
                     level.lrz_slice_pitch, level.slices});
  buffers.push_back({fmt::format("the fast-clear buffer of level {}", l), level.lrz_fc_offset,
                     level.lrz_fc_size, 0, 1});
}

void add_extra_buffer(std::vector<Buffer>& buffers, const MemoryLayout& record) {
  if (record.size < KORVEL_LAYOUT_BYTES_VERSION_2 || record.extra_valid == 0) return;
  uint64_t end = 0;
  if (__builtin_add_overflow(record.extra_offset, record.extra_size, &end)) return;  // said before
  buffers.push_back({"the extra buffer", record.extra_offset, record.extra_size, 0, 1});
}
void add_extra_buffer(std::vector<Buffer>&, const SurfaceMetadata&) {}

std::vector<Stretch> stretches_of(const std::vector<Buffer>& buffers) {
  std::vector<Stretch> stretches;
  for (std::size_t i = 0; i < buffers.size(); ++i) {
    const Buffer& buffer = buffers[i];
    if (buffer.bytes == 0) continue;
    for (uint32_t slice = 0; slice < buffer.slices; ++slice) {
      const uint64_t first = buffer.offset + slice * buffer.slice_pitch;
      stretches.push_back({first, first + buffer.bytes, i, slice});
    }
  }
  std::sort(stretches.begin(), stretches.end(), [](const Stretch& a, const Stretch& b) {
    return std::pair(a.first, a.buffer) < std::pair(b.first, b.buffer);
  });
  return stretches;
}

std::string slice_text(const Buffer& buffer, const Stretch& stretch) {
  const std::string slice = buffer.slices > 1 ? fmt::format(", slice {}", stretch.slice) : "";
  return fmt::format("{}{} (bytes {} to {})", buffer.name, slice, stretch.first, stretch.end - 1);
}

std::string overlap_sentence(const std::vector<Buffer>& buffers, const Stretch& a,
                             const Stretch& b) {
  const uint64_t shared = std::min(a.end, b.end) - b.first;
  return fmt::format("{} and {} share {}", slice_text(buffers[a.buffer], a),
                     slice_text(buffers[b.buffer], b), counted(shared, "byte"));
}

// The stretches that reach furthest so far: whoever starts inside one of them overlaps it. Of many
// that do, the furthest is named.
Sentences overlaps_of(const std::vector<Buffer>& buffers) {
  Sentences sentences;
  std::set<std::pair<std::size_t, std::size_t>> pairs;
  const Stretch* furthest = nullptr;
  const std::vector<Stretch> stretches = stretches_of(buffers);
  for (const Stretch& stretch : stretches) {
    if (furthest != nullptr && stretch.first < furthest->end) {
      const bool is_new = pairs.emplace(furthest->buffer, stretch.buffer).second;
      if (is_new && pairs.size() <= kMostPairs) {
        sentences.push_back(overlap_sentence(buffers, *furthest, stretch));
      }
    }
    if (furthest == nullptr || stretch.end > furthest->end) furthest = &stretch;
  }
  if (pairs.size() > kMostPairs) {
    sentences.push_back(
        fmt::format("{} of buffers more share bytes", counted(pairs.size() - kMostPairs, "pair")));
  }
  return sentences;
}

// The bytes of a surface whose size wraps hold no buffer; that is said elsewhere.
template <typename Record>
Sentences sentences_of(const Record& record) {
  if (record.total_size < record.size) return {};
  std::vector<Buffer> buffers;
  for (uint32_t l = 0; l < record.levels; ++l) add_level_buffers(buffers, record, l);
  add_extra_buffer(buffers, record);
  return overlaps_of(buffers);
}

}  // namespace

Sentences overlap_sentences(const MemoryLayout& record) {
  return sentences_of(record);
}

Sentences overlap_sentences(const SurfaceMetadata& record) {
  return sentences_of(record);
}

}  // namespace tool
