// Every byte of an allocation is in exactly one part of its memory map, and that part names the
// buffers that the record says are there.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <tuple>

#include "tests/tools/picture/every_layout.h"

namespace picture_test {
namespace {

using tool::Band;
using tool::Buffer;
using tool::BufferSlice;

// Buffer, level, plane, slice.
using Owner = std::tuple<Buffer, uint32_t, uint32_t, uint64_t>;

void add_owner(std::set<Owner>& owners, uint64_t byte, Buffer buffer, uint32_t l, uint32_t p,
               uint64_t offset, uint64_t bytes, uint64_t slice_pitch, uint64_t slices) {
  if (byte < offset) return;
  const uint64_t slice = slice_pitch == 0 ? 0 : std::min((byte - offset) / slice_pitch, slices - 1);
  if (byte - offset - slice * slice_pitch < bytes) owners.insert({buffer, l, p, slice});
}

// By the record alone.
std::set<Owner> owners_of(const MemoryLayout& record, uint64_t byte) {
  std::set<Owner> owners;
  for (uint32_t l = 0; l < record.levels; ++l) {
    const LevelLayout& level = record.level[l];
    for (uint32_t p = 0; p < level.planes; ++p) {
      const PlaneLayout& plane = level.plane[p];
      add_owner(owners, byte, Buffer::image, l, p, plane.image_offset, plane.image_size,
                plane.image_slice_pitch, level.slices);
      // The flags of a linear chain of one plane have no place.
      if (plane.flag_valid == 0 || plane.flag_slice_pitch == 0) continue;
      add_owner(owners, byte, Buffer::flags, l, p, plane.flag_offset, plane.flag_size,
                plane.flag_slice_pitch, level.slices);
    }
  }
  if (record.extra_valid != 0) {
    add_owner(owners, byte, Buffer::extra, 0, 0, record.extra_offset, record.extra_size, 0, 1);
  }
  return owners;
}

bool has_many_slices(const Band& band) {
  return std::any_of(band.part.buffers.begin(), band.part.buffers.end(),
                     [](const BufferSlice& buffer) { return buffer.slices > 1; });
}

// Slices drawn as one are named by their plane and their numbers.
void expect_owner_among_many(const Band& band, const Owner& owner, const std::string& where) {
  const uint32_t p = std::get<2>(owner);
  const uint64_t slice = std::get<3>(owner);
  const bool named = std::any_of(
      band.part.buffers.begin(), band.part.buffers.end(), [&](const BufferSlice& named_buffer) {
        return named_buffer.plane == p && slice >= named_buffer.first_slice &&
               slice < named_buffer.first_slice + named_buffer.slices;
      });
  EXPECT_TRUE(named) << where << ": slice " << slice << " of plane " << p << " is not named";
}

void expect_owners(const Pictured& picture, const Band& band, uint64_t byte,
                   const std::string& request) {
  const std::string where = request + ", byte " + std::to_string(byte);
  const std::set<Owner> owners = owners_of(picture.blob.layout, byte);
  if (has_many_slices(band)) {
    for (const Owner& owner : owners) expect_owner_among_many(band, owner, where);
    return;
  }
  std::set<Owner> named;
  for (const BufferSlice& buffer : band.part.buffers) {
    named.insert({buffer.buffer, buffer.level, buffer.plane, buffer.first_slice});
  }
  EXPECT_TRUE(named == owners) << where << ": " << band.said.text << ": " << named.size()
                               << " buffers named, " << owners.size() << " there";
}

TEST(MemoryMap, HasEveryByteOnce) {
  std::mt19937_64 random(20240917);
  std::size_t parts = 0;
  std::size_t bytes_looked_at = 0;
  const std::size_t layouts =
      for_every_layout([&](const tool::SurfaceRequest& request, const Pictured& picture) {
        const std::string label = tool::request_label(request);
        const MemoryLayout& record = picture.blob.layout;
        uint64_t byte = 0;
        for (const Band& band : picture.scene.bands) {
          ASSERT_EQ(band.part.first_byte, byte) << label;
          ASSERT_GT(band.part.end_byte, byte) << label;
          byte = band.part.end_byte;
          ++parts;
          for (const uint64_t at :
               {band.part.first_byte, band.part.end_byte - 1,
                band.part.first_byte + random() % (band.part.end_byte - band.part.first_byte)}) {
            expect_owners(picture, band, at, label);
            ++bytes_looked_at;
          }
        }
        ASSERT_EQ(byte, record.total_size - record.size) << label;
        EXPECT_LE(picture.scene.bands.size(), 1500U) << label;
      });
  EXPECT_GE(layouts, kLeastLayouts);
  EXPECT_GE(parts, 10 * kLeastLayouts);
  EXPECT_EQ(bytes_looked_at, 3 * parts);
}

// The parts of a sheet cover it, each cell once.
TEST(Sheets, HaveEveryCellOnce) {
  std::size_t sheets = 0;
  for_every_layout([&](const tool::SurfaceRequest& request, const Pictured& picture) {
    for (const tool::Sheet& sheet : picture.scene.sheets) {
      ++sheets;
      // Areas below 2^64: sides have 32 bits.
      uint64_t cells = 0;
      for (const tool::SheetPart& part : sheet.parts) {
        cells += uint64_t{part.width} * part.height;
        ASSERT_LE(uint64_t{part.x} + part.width, sheet.width) << tool::request_label(request);
        ASSERT_LE(uint64_t{part.y} + part.height, sheet.height) << tool::request_label(request);
      }
      ASSERT_EQ(cells, uint64_t{sheet.width} * sheet.height) << tool::request_label(request);
      for (std::size_t i = 0; i < sheet.parts.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
          const tool::SheetPart& a = sheet.parts[i];
          const tool::SheetPart& b = sheet.parts[j];
          const bool beside = a.x >= b.x + b.width || b.x >= a.x + a.width;
          const bool below = a.y >= b.y + b.height || b.y >= a.y + a.height;
          ASSERT_TRUE(beside || below) << tool::request_label(request);
        }
      }
    }
  });
  EXPECT_GE(sheets, 2 * kLeastLayouts);
}

}  // namespace
}  // namespace picture_test
