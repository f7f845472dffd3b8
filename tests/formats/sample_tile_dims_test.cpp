// The tile that holds one multisampled block, for every format, family, flag and sample count.

#include "formats/sample_tile_dims.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "tests/formats/id_list.h"
#include "tests/harness/numbers.h"

namespace formats_test {
namespace {

struct Tile {
  uint32_t width_px;
  uint32_t height_px;

  friend bool operator==(const Tile&, const Tile&) = default;
  friend std::vector<harness::NamedNumber> numbers_of(const Tile& tile) {
    return {{"width_px", tile.width_px}, {"height_px", tile.height_px}};
  }
};

constexpr Tile kNone = {0, 0};
constexpr Tile kOnePixel = {1, 1};

struct Request {
  uint32_t family;
  uint32_t format;
  bool half_width = false;
  uint32_t samples = 1;
};

std::string describe(const Request& r) {
  std::ostringstream text;
  text << "family " << r.family << ", format " << r.format
       << (r.half_width ? ", half width, " : ", ") << r.samples << " samples";
  return text.str();
}

Tile tile_of(const Request& r) {
  const korvel::Extent<korvel::Elements> tile =
      korvel::sample_tile_dims(r.family, korvel::format_traits(r.format), r.half_width, r.samples);
  return {tile.width, tile.height};
}

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
  return tile == kNone ? kOnePixel : tile;
}

struct VideoTile {
  IdList ids;
  Tile whole;
  Tile half;  // where the half-width flag is set
};

const VideoTile kVideoTiles67[] = {
    {.ids = "107 614 617 618 662 663 668 680", .whole = {32, 4}, .half = {32, 4}},
    {.ids = "620 664 669", .whole = {16, 4}, .half = {16, 4}},
    {.ids = "625 657 665 679", .whole = {32, 8}, .half = {32, 8}},
    {.ids = "666", .whole = {16, 8}, .half = {16, 8}},
    {.ids = "654", .whole = {48, 4}, .half = {24, 4}},
    {.ids = "655", .whole = {48, 4}, .half = {48, 4}},
    {.ids = "656", .whole = {24, 4}, .half = {24, 4}},
    {.ids = "660", .whole = {64, 4}, .half = {32, 4}},
    {.ids = "661", .whole = {64, 4}, .half = {64, 4}},
    {.ids = "104", .whole = {32, 4}, .half = {16, 4}},
    {.ids = "103 106 506", .whole = {32, 8}, .half = {16, 8}},
};

// What family 7 has beyond those.
const VideoTile kVideoTiles7[] = {
    {.ids = "710 713 715 718 720", .whole = {32, 4}, .half = {32, 4}},
    {.ids = "711 714 716 719 721", .whole = {16, 4}, .half = {16, 4}},
    {.ids = "658", .whole = {16, 8}, .half = {16, 8}},
    {.ids = "105 709 712 717", .whole = {32, 4}, .half = {16, 4}},
};

template <std::size_t N>
Tile listed_tile(const VideoTile (&tiles)[N], uint32_t id, bool half_width) {
  for (const VideoTile& tile : tiles) {
    if (tile.ids.has(id)) return half_width ? tile.half : tile.whole;
  }
  return kNone;
}

Tile families67_tile(const Request& r) {
  static const IdList tall = "48-52 511 514 517 678";
  if (r.format == kFourCharacterCode) return kNone;
  if (kVideo.has(r.format)) {
    const Tile tile = listed_tile(kVideoTiles67, r.format, r.half_width);
    return tile == kNone && r.family == 7 ? listed_tile(kVideoTiles7, r.format, r.half_width)
                                          : tile;
  }
  if (r.samples == 1 && tall.has(r.format)) return {16, 8};
  return ordinary_tile(r.format, r.samples);
}

Tile expected_tile(const Request& r) {
  switch (r.family) {
    case 5: return family5_tile(r.format, r.samples);
    case 6:
    case 7: return families67_tile(r);
    default: return kOnePixel;
  }
}

// -1, the smallest negative number and -8 as well.
constexpr uint32_t kSampleCounts[] = {0, 1, 2,  3,          4,          5,          6,         7,
                                      8, 9, 16, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF8, 0xFFFFFFFF};

void expect_tiles_of(uint32_t family, uint32_t id) {
  for (const bool half_width : {false, true}) {
    for (const uint32_t samples : kSampleCounts) {
      const Request r{.family = family, .format = id, .half_width = half_width, .samples = samples};
      EXPECT_NUMBERS(tile_of(r), expected_tile(r)) << describe(r);
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

TEST(SampleTile, OfEveryFormatIsTheListedOneOnFamily5) {
  expect_tiles_of_all_formats(5);
}
TEST(SampleTile, OfEveryFormatIsTheListedOneOnFamily6) {
  expect_tiles_of_all_formats(6);
}
TEST(SampleTile, OfEveryFormatIsTheListedOneOnFamily7) {
  expect_tiles_of_all_formats(7);
}

TEST(SampleTile, IsOnePixelOnAnyOtherFamily) {
  for (const uint32_t family : {0U, 1U, 4U, 8U, 0xFFFFFFFFU}) expect_tiles_of_all_formats(family);
}

constexpr uint32_t kBytes16 = 2;  // a format of 16 bytes a pixel

TEST(SampleTile, Of16BytesAnd8SamplesExistsOnNoFamily) {
  EXPECT_NUMBERS(tile_of({.family = 5, .format = kBytes16, .samples = 8}), kOnePixel);
  for (const uint32_t family : {6U, 7U}) {
    EXPECT_NUMBERS(tile_of({.family = family, .format = kBytes16, .samples = 8}), kNone);
  }
}

TEST(SampleTile, OfTheFourCharacterCodeIsUnknownWhateverTheSamples) {
  for (const uint32_t family : {6U, 7U}) {
    for (const uint32_t samples : kSampleCounts) {
      const Request r{.family = family, .format = kFourCharacterCode, .samples = samples};
      EXPECT_NUMBERS(tile_of(r), kNone) << describe(r);
    }
  }
}

// Two bytes of sRGB.
TEST(SampleTile, OfFormat678IsTallOnTheLaterFamiliesOnly) {
  EXPECT_NUMBERS(tile_of({.family = 5, .format = 678}), (Tile{16, 4}));
  for (const uint32_t family : {6U, 7U}) {
    EXPECT_NUMBERS(tile_of({.family = family, .format = 678}), (Tile{16, 8})) << family;
  }
}

TEST(SampleTile, OfVideoFormatsDoesNotFollowTheSamplesOnTheLaterFamilies) {
  struct Row {
    Request request;
    Tile tile;
  };
  constexpr Row kRows[] = {
      {.request = {.family = 6, .format = 103}, .tile = {32, 8}},
      {.request = {.family = 6, .format = 103, .half_width = true}, .tile = {16, 8}},
      {.request = {.family = 6, .format = 654, .half_width = true}, .tile = {24, 4}},
      // Known to family 7 only.
      {.request = {.family = 6, .format = 658}, .tile = kNone},
      {.request = {.family = 7, .format = 658}, .tile = {16, 8}},
      {.request = {.family = 6, .format = 105}, .tile = kNone},
      {.request = {.family = 7, .format = 105, .half_width = true}, .tile = {16, 4}},
      // And to neither.
      {.request = {.family = 7, .format = 619}, .tile = kNone},
      {.request = {.family = 7, .format = 659}, .tile = kNone},
  };
  for (const Row& row : kRows) {
    for (const uint32_t samples : kSampleCounts) {
      Request r = row.request;
      r.samples = samples;
      EXPECT_NUMBERS(tile_of(r), row.tile) << describe(r);
    }
  }
}

}  // namespace
}  // namespace formats_test
