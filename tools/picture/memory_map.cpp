#include "tools/picture/memory_map.h"

#include <algorithm>
#include <optional>

namespace tool {
namespace {

// A range of bytes and what it is for. Ranges may overlap until they are partitioned.
struct Piece {
  Role role;
  uint64_t offset;
  uint64_t bytes;
  BufferSlice buffer;

  [[nodiscard]] uint64_t end() const {
    uint64_t sum = 0;
    return __builtin_add_overflow(offset, bytes, &sum) ? UINT64_MAX : sum;
  }
};

// Pieces that repeat with every slice.
struct Strand {
  std::vector<Piece> pieces;  // of slice 0
  uint64_t slice_pitch = 0;
  uint64_t slices = 0;
};

// Slices beyond these numbers are drawn as one.
constexpr uint64_t kMostPieces = 64;
constexpr uint64_t kMostSlices = 4;
constexpr uint64_t kFirstSlices = 2;  // that stay parts of their own where others are drawn as one

uint64_t first_byte(const Strand& strand) {
  const auto first =
      std::min_element(strand.pieces.begin(), strand.pieces.end(),
                       [](const Piece& a, const Piece& b) { return a.offset < b.offset; });
  return first->offset;
}

uint64_t end_byte(const Strand& strand) {
  const auto last =
      std::max_element(strand.pieces.begin(), strand.pieces.end(),
                       [](const Piece& a, const Piece& b) { return a.end() < b.end(); });
  return last->end();
}

// The rows of a linear image lie one after another, so that those below the payload are a range.
void add_image(std::vector<Piece>& pieces, const PlaneImage& image) {
  const PlaneLayout& layout = image.layout;
  const BufferSlice buffer = {Buffer::image, image.level, image.plane};
  uint64_t done = 0;
  const auto add = [&](Role role, uint64_t end) {
    if (end > done) pieces.push_back({role, layout.image_offset + done, end - done, buffer});
    done = std::max(done, end);
  };
  const uint64_t rows = rows_bytes(image);
  const uint64_t payload_rows = uint64_t{layout.image_pitch} * image.payload.height;
  add(Role::payload, image.tiled ? rows : std::min(payload_rows, rows));
  add(Role::padding_below, rows);
  add(Role::gap, layout.image_size);
}

void add_flags(std::vector<Piece>& pieces, const PlaneImage& image) {
  if (!image.has_flags || image.layout.flag_size == 0) return;
  pieces.push_back({Role::flags,
                    image.layout.flag_offset,
                    image.layout.flag_size,
                    {Buffer::flags, image.level, image.plane}});
}

// The images of a plane, and its flag buffers: one strand where they lie in the same slices.
void add_strands(std::vector<Strand>& strands, std::span<const PlaneImage> images, uint32_t plane) {
  Strand image_strand;
  Strand flag_strand;
  for (const PlaneImage& image : images) {
    if (image.plane != plane) continue;
    add_image(image_strand.pieces, image);
    add_flags(flag_strand.pieces, image);
    image_strand.slice_pitch = image.layout.image_slice_pitch;
    flag_strand.slice_pitch = image.layout.flag_slice_pitch;
    image_strand.slices = flag_strand.slices = image.slices;
  }
  Strand both = image_strand;
  both.pieces.insert(both.pieces.end(), flag_strand.pieces.begin(), flag_strand.pieces.end());
  if (both.pieces.empty()) return;
  const bool same_slices = image_strand.slice_pitch == flag_strand.slice_pitch &&
                           end_byte(both) - first_byte(both) <= both.slice_pitch;
  if (same_slices || flag_strand.pieces.empty()) {
    strands.push_back(std::move(both));
    return;
  }
  if (!image_strand.pieces.empty()) strands.push_back(std::move(image_strand));
  strands.push_back(std::move(flag_strand));
}

// How far slice `slice` is from slice 0; none beyond 64 bits.
std::optional<uint64_t> slice_distance(const Strand& strand, uint64_t slice) {
  uint64_t bytes = 0;
  if (__builtin_mul_overflow(strand.slice_pitch, slice, &bytes)) return std::nullopt;
  return bytes;
}

void add_slice(std::vector<Piece>& pieces, const Strand& strand, uint64_t slice) {
  const std::optional<uint64_t> distance = slice_distance(strand, slice);
  if (!distance) return;
  for (Piece piece : strand.pieces) {
    if (__builtin_add_overflow(piece.offset, *distance, &piece.offset)) continue;
    piece.buffer.first_slice = slice;
    pieces.push_back(piece);
  }
}

// Slices `first` to `end` - 1 as one piece.
void add_equal_slices(std::vector<Piece>& pieces, const Strand& strand, uint64_t first,
                      uint64_t end) {
  const std::optional<uint64_t> from = slice_distance(strand, first);
  Piece piece = {Role::slices, first_byte(strand),
                 slice_distance(strand, end - first).value_or(UINT64_MAX),
                 strand.pieces.front().buffer};
  if (!from || __builtin_add_overflow(piece.offset, *from, &piece.offset)) return;
  piece.buffer.first_slice = first;
  piece.buffer.slices = end - first;
  pieces.push_back(piece);
}

void add_slices(std::vector<Piece>& pieces, const Strand& strand) {
  const uint64_t slices = strand.slices;
  if (slices <= kMostSlices || slices * strand.pieces.size() <= kMostPieces) {
    for (uint64_t slice = 0; slice < slices; ++slice) add_slice(pieces, strand, slice);
    return;
  }
  for (uint64_t slice = 0; slice < kFirstSlices; ++slice) add_slice(pieces, strand, slice);
  add_equal_slices(pieces, strand, kFirstSlices, slices - 1);
  add_slice(pieces, strand, slices - 1);
}

void cut_at(std::vector<Piece>& pieces, uint64_t end) {
  for (Piece& piece : pieces) {
    piece.offset = std::min(piece.offset, end);
    piece.bytes = std::min(piece.bytes, end - piece.offset);
  }
  std::erase_if(pieces, [](const Piece& piece) { return piece.bytes == 0; });
}

std::vector<uint64_t> borders(const std::vector<Piece>& pieces, uint64_t end) {
  std::vector<uint64_t> bytes = {0, end};
  for (const Piece& piece : pieces) bytes.insert(bytes.end(), {piece.offset, piece.end()});
  std::sort(bytes.begin(), bytes.end());
  bytes.erase(std::unique(bytes.begin(), bytes.end()), bytes.end());
  return bytes;
}

MapPart part_between(const std::vector<Piece>& pieces, uint64_t first, uint64_t end) {
  MapPart part = {Role::gap, first, end, {}};
  for (const Piece& piece : pieces) {
    if (piece.offset > first || piece.end() < end) continue;
    part.role = part.buffers.empty() ? piece.role : Role::shared;
    part.buffers.push_back(piece.buffer);
  }
  return part;
}

}  // namespace

std::vector<MapPart> memory_map(std::span<const PlaneImage> images, const MemoryLayout& record,
                                uint64_t allocation_bytes) {
  std::vector<Strand> strands;
  for (uint32_t plane = 0; plane < KORVEL_MAX_PLANES; ++plane) add_strands(strands, images, plane);
  std::vector<Piece> pieces;
  for (const Strand& strand : strands) add_slices(pieces, strand);
  if (record.extra_valid != 0) {
    pieces.push_back({Role::extra, record.extra_offset, record.extra_size, {Buffer::extra}});
  }
  cut_at(pieces, allocation_bytes);
  const std::vector<uint64_t> bytes = borders(pieces, allocation_bytes);
  std::vector<MapPart> parts;
  for (std::size_t i = 0; i + 1 < bytes.size(); ++i) {
    parts.push_back(part_between(pieces, bytes[i], bytes[i + 1]));
  }
  return parts;
}

}  // namespace tool
