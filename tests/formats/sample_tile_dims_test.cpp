// The tile that holds one multisampled block, for every format, family, flag and sample count.

#include "formats/sample_tile_dims.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "tests/formats/id_list.h"

namespace formats_test {
namespace {

struct Tile {
  uint32_t width;
  uint32_t height;
  friend bool operator==(const Tile&, const Tile&) = default;
};

constexpr Tile kNone = {0, 0};

const IdList kEightBytes =
    "9-22 70-72 79-81 102 108 109 522 525 528 543 551 555 560 565 596 599 600 603-605 607 608 656 "
    "681 682 685 686";
const IdList kSixteenBytes =
    "1-4 73-78 82-84 94-99 133-135 137-139 141-143 145-147 149-151 153-155 157-159 161-163 165-167 "
    "169-171 173-175 177-179 181-183 185-187 524 527 530 557 562 567-595 597 598 601 602 606 609 "
    "626-645";
const IdList kOddBytes = "5-8 508 510 513 516 521 523 526 529 549 556 558 561 563 566 623 624";
const IdList kVideo = "100-114 504-506 614-620 625 647 654-669 679 680 709-721";

// Each doubling of the samples or, from 4 bytes on, of the bytes goes one step to the right.
constexpr Tile kSteps[] = {{16, 4}, {8, 4}, {4, 4}, {4, 2}, {2, 2}};

Tile ordinary_tile(uint32_t id, uint32_t samples) {
  if (kOddBytes.has(id)) return kNone;
  uint32_t step = 0;
  switch (samples) {
    case 1: step = 0; break;
    case 2: step = 1; break;
    case 4: step = 2; break;
    case 8: step = 3; break;
    default: return kNone;
  }
  if (kEightBytes.has(id)) step += 1;
  if (kSixteenBytes.has(id)) step += 2;
  return step < 5 ? kSteps[step] : kNone;  // 16 bytes and 8 samples are too much
}

Tile family5_tile(uint32_t id, uint32_t samples) {
  static const IdList tall = "48-52 511 514 517";
  if (samples == 1 && tall.has(id)) return {16, 8};
  const Tile tile = ordinary_tile(id, samples);
  return tile == kNone ? Tile{1, 1} : tile;
}

struct VideoTile {
  IdList ids;
  uint32_t width;
  uint32_t half_width;
  uint32_t height;
};

const VideoTile kVideoTiles67[] = {
    {"107 614 617 618 662 663 668 680", 32, 32, 4},
    {"620 664 669", 16, 16, 4},
    {"625 657 665 679", 32, 32, 8},
    {"666", 16, 16, 8},
    {"654", 48, 24, 4},
    {"655", 48, 48, 4},
    {"656", 24, 24, 4},
    {"660", 64, 32, 4},
    {"661", 64, 64, 4},
    {"104", 32, 16, 4},
    {"103 106 506", 32, 16, 8},
};

const VideoTile kVideoTiles7[] = {
    {"710 713 715 718 720", 32, 32, 4},
    {"711 714 716 719 721", 16, 16, 4},
    {"658", 16, 16, 8},
    {"105 709 712 717", 32, 16, 4},
};

template <std::size_t N>
Tile listed_tile(const VideoTile (&tiles)[N], uint32_t id, bool half_width) {
  for (const VideoTile& tile : tiles) {
    if (tile.ids.has(id)) return {half_width ? tile.half_width : tile.width, tile.height};
  }
  return kNone;
}

Tile families67_tile(uint32_t family, uint32_t id, bool half_width, uint32_t samples) {
  static const IdList tall = "48-52 511 514 517 678";
  if (id == kFourCharacterCode) return kNone;
  if (kVideo.has(id)) {
    const Tile tile = listed_tile(kVideoTiles67, id, half_width);
    return tile == kNone && family == 7 ? listed_tile(kVideoTiles7, id, half_width) : tile;
  }
  if (samples == 1 && tall.has(id)) return {16, 8};
  return ordinary_tile(id, samples);
}

Tile expected_tile(uint32_t family, uint32_t id, bool half_width, uint32_t samples) {
  switch (family) {
    case 5: return family5_tile(id, samples);
    case 6:
    case 7: return families67_tile(family, id, half_width, samples);
    default: return {1, 1};
  }
}

// -1, the smallest negative number and -8 as well.
constexpr uint32_t kSampleCounts[] = {0, 1, 2,  3,          4,          5,          6,         7,
                                      8, 9, 16, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF8, 0xFFFFFFFF};

void expect_tiles_of(uint32_t family, uint32_t id) {
  for (const bool half_width : {false, true}) {
    for (const uint32_t samples : kSampleCounts) {
      const korvel::SampleTile tile =
          korvel::sample_tile_dims(family, korvel::format_traits(id), half_width, samples);
      const Tile expected = expected_tile(family, id, half_width, samples);
      if (Tile{tile.width, tile.height} == expected) continue;
      ADD_FAILURE() << "family " << family << " format " << id << " half " << half_width
                    << " samples " << samples << ": " << tile.width << " x " << tile.height
                    << ", must be " << expected.width << " x " << expected.height;
    }
  }
}

void expect_tiles_of_all_formats(uint32_t family) {
  for (uint32_t id = 0; id < kTableIds; ++id) expect_tiles_of(family, id);
  // Beyond the table every id acts as an unused one, the four-character code for itself.
  for (const uint32_t id : {722U, 800U, 1024U + 28U, 0x80000000U, 0xFFFFFFFFU}) {
    expect_tiles_of(family, id);
  }
  expect_tiles_of(family, kFourCharacterCode);
}

TEST(SampleTile, OfEveryFormatOnFamily5) {
  expect_tiles_of_all_formats(5);
}
TEST(SampleTile, OfEveryFormatOnFamily6) {
  expect_tiles_of_all_formats(6);
}
TEST(SampleTile, OfEveryFormatOnFamily7) {
  expect_tiles_of_all_formats(7);
}

TEST(SampleTile, IsOnePixelOnAnyOtherFamily) {
  for (const uint32_t family : {0U, 1U, 4U, 8U, 0xFFFFFFFFU}) expect_tiles_of_all_formats(family);
}

Tile tile(uint32_t family, uint32_t id, bool half_width, uint32_t samples) {
  const korvel::SampleTile t =
      korvel::sample_tile_dims(family, korvel::format_traits(id), half_width, samples);
  return {t.width, t.height};
}

TEST(SampleTile, Of16BytesAnd8SamplesExistsOnNoFamily) {
  EXPECT_EQ(tile(6, 2, false, 8), kNone);
  EXPECT_EQ(tile(7, 2, false, 8), kNone);
  EXPECT_EQ(tile(5, 2, false, 8), (Tile{1, 1}));
}

TEST(SampleTile, OfTheFourCharacterCodeIsUnknownWhateverTheSamples) {
  for (const uint32_t samples : kSampleCounts) {
    EXPECT_EQ(tile(6, kFourCharacterCode, false, samples), kNone);
    EXPECT_EQ(tile(7, kFourCharacterCode, true, samples), kNone);
  }
}

// Two bytes of sRGB are tall on the later families only.
TEST(SampleTile, OfFormat678DiffersBetweenTheFamilies) {
  EXPECT_EQ(tile(5, 678, false, 1), (Tile{16, 4}));
  EXPECT_EQ(tile(6, 678, false, 1), (Tile{16, 8}));
  EXPECT_EQ(tile(7, 678, false, 1), (Tile{16, 8}));
}

TEST(SampleTile, OfVideoFormatsDoesNotFollowTheSamplesOnTheLaterFamilies) {
  for (const uint32_t samples : kSampleCounts) {
    EXPECT_EQ(tile(6, 103, false, samples), (Tile{32, 8}));
    EXPECT_EQ(tile(6, 103, true, samples), (Tile{16, 8}));
    EXPECT_EQ(tile(6, 654, true, samples), (Tile{24, 4}));
    EXPECT_EQ(tile(6, 658, false, samples), kNone);
    EXPECT_EQ(tile(7, 658, false, samples), (Tile{16, 8}));
    EXPECT_EQ(tile(6, 105, false, samples), kNone);
    EXPECT_EQ(tile(7, 105, true, samples), (Tile{16, 4}));
    EXPECT_EQ(tile(7, 619, false, samples), kNone);
    EXPECT_EQ(tile(7, 659, false, samples), kNone);
  }
}

}  // namespace
}  // namespace formats_test
