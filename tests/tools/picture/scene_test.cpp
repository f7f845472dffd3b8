// Sheets and memory maps worked out by hand, on a chip of family 6 whose alignments are 4096 bytes,
// 64 bytes for linear rows and rows of flags.
#include <gtest/gtest.h>

#include <ostream>

#include "tests/tools/picture/pictured.h"

namespace tool {

// As failures print them.
std::ostream& operator<<(std::ostream& out, Role role) {
  return out << words_of(role).name;
}

}  // namespace tool

namespace picture_test {
namespace {

using tool::Role;

struct Range {
  Role role;
  uint64_t first_byte;
  uint64_t end_byte;
  friend bool operator==(const Range&, const Range&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Range& range) {
    return out << range.role << " " << range.first_byte << " to " << range.end_byte;
  }
};

std::vector<Range> ranges(const Pictured& picture) {
  std::vector<Range> list;
  for (const tool::Band& band : picture.scene.bands) {
    list.push_back({band.part.role, band.part.first_byte, band.part.end_byte});
  }
  return list;
}

struct Rectangle {
  Role role;
  uint32_t x;
  uint32_t y;
  uint32_t width;
  uint32_t height;
  friend bool operator==(const Rectangle&, const Rectangle&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Rectangle& part) {
    return out << part.role << " at " << part.x << ", " << part.y << ": " << part.width << " x "
               << part.height;
  }
};

std::vector<Rectangle> rectangles(const tool::Sheet& sheet) {
  std::vector<Rectangle> list;
  for (const tool::SheetPart& part : sheet.parts) {
    list.push_back({part.role, part.x, part.y, part.width, part.height});
  }
  return list;
}

using Ranges = std::vector<Range>;
using Rectangles = std::vector<Rectangle>;

// 1918 elements of 4 bytes go up to whole steps of 64: 1920, a pitch of 7680, which is no multiple
// of 2048 and not padded. 1080 rows of it are 8294400 = 2025 x 4096 bytes.
TEST(PictureScene, OfALinearImage) {
  const Pictured picture = pictured(request_of(28, {1918, 1080, 1}, 0, KORVEL_TILING_LINEAR));
  EXPECT_EQ(ranges(picture), (Ranges{{Role::payload, 0, 8294400}}));
  ASSERT_EQ(picture.scene.sheets.size(), 1U);
  EXPECT_EQ(
      rectangles(picture.scene.sheets[0]),
      (Rectangles{{Role::payload, 0, 0, 1918, 1080}, {Role::padding_right, 1918, 0, 2, 1080}}));
  EXPECT_EQ(picture.scene.sheets[0].tile_width, 0U);
  EXPECT_EQ(picture.scene.totals[0].text, "GPU allocation: 8294400 bytes (0x7E9000)");
  // 1918 x 1080 x 4 = 8285760.
  EXPECT_EQ(picture.scene.totals[1].text,
            "8285760 bytes of it, 99.9 %, hold elements that were asked for");
}

// The height of format 670 takes whole steps of 64 rows: 4 rows follow the 60 that are asked for, and
// then what is left up to whole 4096 bytes. The pitch is the record's.
TEST(PictureScene, OfRowsBelowALinearImage) {
  const Pictured picture = pictured(request_of(670, {100, 60, 1}, 0, KORVEL_TILING_LINEAR));
  const PlaneLayout& plane = picture.blob.layout.level[0].plane[0];
  ASSERT_EQ(plane.image_height, 64U);
  const uint64_t rows = uint64_t{plane.image_pitch} * 64;
  const uint64_t whole = (rows + 4095) / 4096 * 4096;
  Ranges expected = {{Role::payload, 0, uint64_t{plane.image_pitch} * 60},
                     {Role::padding_below, uint64_t{plane.image_pitch} * 60, rows}};
  if (whole > rows) expected.push_back({Role::gap, rows, whole});
  EXPECT_EQ(ranges(picture), expected);
}

// Tiles of 64 x 16: 1920 x 1088, a pitch of 7680, 8355840 bytes. A byte of flags for 16 x 4: 120 x
// 272, with a pitch of 128 in 272 rows 34816, up to whole 4096 bytes 36864 = 288 rows.
TEST(PictureScene, OfATiledImageWithFlags) {
  const Pictured picture = pictured(request_of(28, {1900, 1080, 1}, LAYOUT_FLAG_UBWC));
  EXPECT_EQ(ranges(picture),
            (Ranges{{Role::flags, 0, 36864}, {Role::payload, 36864, 36864 + 8355840}}));
  ASSERT_EQ(picture.scene.sheets.size(), 2U);
  EXPECT_EQ(rectangles(picture.scene.sheets[0]),
            (Rectangles{{Role::payload, 0, 0, 1900, 1080},
                        {Role::padding_right, 1900, 0, 20, 1080},
                        {Role::padding_below, 0, 1080, 1920, 8}}));
  EXPECT_EQ(picture.scene.sheets[0].tile_width, 64U);
  EXPECT_EQ(picture.scene.sheets[0].tile_height, 16U);
  EXPECT_EQ(rectangles(picture.scene.sheets[1]),
            (Rectangles{{Role::flags, 0, 0, 120, 272},
                        {Role::padding_right, 120, 0, 8, 272},
                        {Role::padding_below, 0, 272, 128, 16}}));
}

// Both planes take 1920 x 1080 of 1 byte. Tiles of 128 x 32 and, of the 2 bytes of chroma, 64 x 32:
// 1920 x 1088, 2088960 bytes. Flags for 32 x 8: 60 x 136, in rows of 64 and steps of 16 rows 9216,
// up to 12288. Of chroma for 16 x 8: 120 x 136, in rows of 128 18432, up to 20480.
TEST(PictureScene, OfTwoPlanes) {
  const Pictured picture = pictured(request_of(103, {1920, 1080, 1}, LAYOUT_FLAG_UBWC));
  EXPECT_EQ(ranges(picture), (Ranges{{Role::flags, 0, 12288},
                                     {Role::payload, 12288, 2101248},
                                     {Role::flags, 2101248, 2121728},
                                     {Role::payload, 2121728, 4210688}}));
  ASSERT_EQ(picture.scene.sheets.size(), 4U);
  EXPECT_EQ(picture.scene.sheets[1].tile_width, 64U);
  EXPECT_EQ(
      rectangles(picture.scene.sheets[1]),
      (Rectangles{{Role::payload, 0, 0, 1920, 1080}, {Role::padding_below, 0, 1080, 1920, 8}}));
  EXPECT_EQ(rectangles(picture.scene.sheets[2]),
            (Rectangles{{Role::flags, 0, 0, 60, 136},
                        {Role::padding_right, 60, 0, 4, 136},
                        {Role::padding_below, 0, 136, 64, 56}}));
}

// Flags stand in front: of level 0 128 x 512 bytes, then 64 x 256, 64 x 128 and, from level 3 on,
// the least of 64 x 64. Images of 4 bytes an element: whole tiles of 64 x 16 from level 6 on.
TEST(PictureScene, OfAChainOfTwelveLevels) {
  tool::SurfaceRequest request = request_of(28, {2048, 2048, 1}, LAYOUT_FLAG_UBWC);
  request.levels = 12;
  const Pictured picture = pictured(request);
  constexpr uint64_t kFlags[] = {65536, 16384, 8192, 4096, 4096, 4096,
                                 4096,  4096,  4096, 4096, 4096, 4096};
  constexpr uint64_t kImages[] = {2048 * 2048 * 4,
                                  1024 * 1024 * 4,
                                  512 * 512 * 4,
                                  256 * 256 * 4,
                                  128 * 128 * 4,
                                  64 * 64 * 4,
                                  64 * 32 * 4,
                                  4096,
                                  4096,
                                  4096,
                                  4096,
                                  4096};
  Ranges expected;
  uint64_t byte = 0;
  for (const uint64_t bytes : kFlags) {
    expected.push_back({Role::flags, byte, byte + bytes});
    byte += bytes;
  }
  for (const uint64_t bytes : kImages) {
    expected.push_back({Role::payload, byte, byte + bytes});
    byte += bytes;
  }
  EXPECT_EQ(ranges(picture), expected);
  // 12 images, and flag buffers that look different: those of the levels 0 to 6. A tile of flags
  // holds 16 x 4 elements, so that levels 7 to 11, all 64 x 16 elements, use 4 x 4 bytes of 64 x
  // 64.
  ASSERT_EQ(picture.scene.sheets.size(), 12U + 8U);
  EXPECT_EQ(rectangles(picture.scene.sheets[8]), (Rectangles{{Role::payload, 0, 0, 8, 8},
                                                             {Role::padding_right, 8, 0, 56, 8},
                                                             {Role::padding_below, 0, 8, 64, 8}}));
  const tool::Sheet& last = picture.scene.sheets.back();
  EXPECT_EQ(rectangles(last), (Rectangles{{Role::flags, 0, 0, 4, 4},
                                          {Role::padding_right, 4, 0, 60, 4},
                                          {Role::padding_below, 0, 4, 64, 60}}));
  EXPECT_EQ(last.captions.back().text, "and 4 levels more alike");
}

// Tiles make 200 x 120 to 256 x 128, 131072 bytes; flags for 16 x 32 tiles: 64 x 32 bytes, up to
// 4096. Six of these, the extra buffer of 6 x 8224, and what is left of the last 4096 bytes.
TEST(PictureScene, OfAnArray) {
  const Pictured picture =
      pictured(request_of(28, {200, 120, 6}, LAYOUT_FLAG_UBWC | LAYOUT_FLAG_EXTRA));
  constexpr uint64_t kSlice = 4096 + 131072;
  Ranges expected;
  for (uint64_t slice = 0; slice < 6; ++slice) {
    expected.push_back({Role::flags, slice * kSlice, slice * kSlice + 4096});
    expected.push_back({Role::payload, slice * kSlice + 4096, (slice + 1) * kSlice});
  }
  expected.push_back({Role::extra, 811008, 860352});
  expected.push_back({Role::gap, 860352, 864256});
  EXPECT_EQ(ranges(picture), expected);
  EXPECT_EQ(picture.scene.sheets[0].slices, 6U);
}

// A plane starts one slice behind the one before it. A slice of either plane is 4096 bytes of flags
// and 32768 of image: slice 1 of plane 0 lies where slice 0 of plane 1 does, and at the end are
// left as many bytes as there are shared.
TEST(PictureScene, OfSlicesOfTwoPlanes) {
  const Pictured picture = pictured(request_of(103, {200, 120, 3}, LAYOUT_FLAG_UBWC));
  constexpr uint64_t kSlice = 4096 + 32768;
  EXPECT_EQ(ranges(picture), (Ranges{{Role::flags, 0, 4096},
                                     {Role::payload, 4096, kSlice},
                                     {Role::shared, kSlice, kSlice + 4096},
                                     {Role::shared, kSlice + 4096, 2 * kSlice},
                                     {Role::shared, 2 * kSlice, 2 * kSlice + 4096},
                                     {Role::shared, 2 * kSlice + 4096, 3 * kSlice},
                                     {Role::flags, 3 * kSlice, 3 * kSlice + 4096},
                                     {Role::payload, 3 * kSlice + 4096, 4 * kSlice},
                                     {Role::gap, 4 * kSlice, 6 * kSlice}}));
  const std::string& title = picture.scene.bands[2].said.text;
  EXPECT_NE(title.find("plane 0, slice 1: flag buffer"), std::string::npos) << title;
  EXPECT_NE(title.find("plane 1, slice 0: flag buffer"), std::string::npos) << title;
}

// 2048 slices of 64 x 64 x 4 bytes: the first two, the last, and the rest as one.
TEST(PictureScene, OfManySlices) {
  const Pictured picture = pictured(request_of(28, {64, 64, 2048}));
  constexpr uint64_t kSlice = 16384;
  EXPECT_EQ(ranges(picture), (Ranges{{Role::payload, 0, kSlice},
                                     {Role::payload, kSlice, 2 * kSlice},
                                     {Role::slices, 2 * kSlice, 2047 * kSlice},
                                     {Role::payload, 2047 * kSlice, 2048 * kSlice}}));
  const std::string& title = picture.scene.bands[2].said.text;
  EXPECT_NE(title.find("slices 2 to 2046"), std::string::npos) << title;
  EXPECT_NE(title.find("2045 slices"), std::string::npos) << title;
}

// 16384 x 16384 elements of 16 bytes are 2^32 bytes, which wrap to 0.
TEST(PictureScene, OfAnAllocationWithoutBytes) {
  tool::SurfaceRequest request = request_of(28, {16384, 16384, 1});
  request.samples = 4;
  const Pictured picture = pictured(request);
  EXPECT_TRUE(picture.scene.bands.empty());
  EXPECT_EQ(picture.scene.allocation_bytes, 0U);
  EXPECT_EQ(picture.scene.totals.size(), 1U);
}

// What hovering says goes by the steps of the explanation.
TEST(PictureScene, SaysHowNumbersComeAbout) {
  const Pictured picture = pictured(request_of(28, {1918, 1080, 1}, 0, KORVEL_TILING_LINEAR));
  const tool::Sheet& sheet = picture.scene.sheets[0];
  EXPECT_NE(sheet.parts[1].said.text.find("padding to the right: 2 elements = 8 bytes in each row"),
            std::string::npos)
      << sheet.parts[1].said.text;
  EXPECT_NE(sheet.parts[1].said.explanation.find("width: 1918 -> 1920 elements"), std::string::npos)
      << sheet.parts[1].said.explanation;
  EXPECT_EQ(sheet.captions[1].text, "pitch 7680 bytes");
  EXPECT_NE(sheet.captions[1].explanation.find("pitch: 1920 elements -> 7680 bytes"),
            std::string::npos)
      << sheet.captions[1].explanation;
}

}  // namespace
}  // namespace picture_test
