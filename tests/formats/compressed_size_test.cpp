// The size of a block-compressed surface in blocks.

#include <gmock/gmock.h>

#include <climits>
#include <cstdio>
#include <string>

#include "tests/formats/format_calls.h"
#include "tests/formats/id_list.h"
#include "tests/harness/chips.h"
#include "tests/harness/gpu.h"

namespace formats_test {
namespace {

using harness::Gpu;
using harness::message;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kName[] = "compute_compressedfmt_aligned_width_and_height";

constexpr BlockSize kUntouched = {};
constexpr BlockSize kRefused = {.width_blocks = 1, .height_blocks = 1, .block_bytes = 1};

const harness::ChipData& chip_with_pixel_alignment(bool listed) {
  return harness::chip_where("in or out of the pixel alignment column", [=](const auto& chip) {
    return chip.columns.pixel_alignment == listed;
  });
}

constexpr BlockSizeRequest k100x30OfBc1 = {
    .width_texels = 100, .height_texels = 30, .format = kBc1};
constexpr BlockSizeRequest k13x13OfAstc = {
    .width_texels = 13, .height_texels = 13, .format = kAstc12x12};

TEST(CompressedSize, PadsTheWidthToThePixelAlignmentOf64) {
  Gpu gpu(harness::full_chip(6).chip_id);
  // 100 / 4 = 25 -> 64; 30 / 4 = 7.5 -> 8
  EXPECT_NUMBERS(size_in_blocks(gpu, k100x30OfBc1),
                 (BlockSize{.width_blocks = 64, .height_blocks = 8, .block_bytes = 8}));
  // 13 / 12 is above 1: 2 -> 64; 2
  EXPECT_NUMBERS(size_in_blocks(gpu, k13x13OfAstc),
                 (BlockSize{.width_blocks = 64, .height_blocks = 2, .block_bytes = 16}));
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

TEST(CompressedSize, IsNotPaddedOnOtherChips) {
  Gpu gpu(harness::kUnknownChip);
  EXPECT_NUMBERS(size_in_blocks(gpu, k100x30OfBc1),
                 (BlockSize{.width_blocks = 25, .height_blocks = 8, .block_bytes = 8}));
  EXPECT_NUMBERS(size_in_blocks(gpu, k13x13OfAstc),
                 (BlockSize{.width_blocks = 2, .height_blocks = 2, .block_bytes = 16}));
}

// Every compressed format by its block: what 1000 x 77 texels become. A number of blocks that is
// not whole goes up to the next one, and the padded width up to the next multiple of 64.
struct BlockRow {
  IdList ids;
  uint32_t padded_width_blocks;
  uint32_t width_blocks;
  uint32_t height_blocks;
};

// Comments: the block; 1000 by its width and 77 by its height.
const BlockRow kBlockRows[] = {
    // 3 x 3: 333.3, 25.7
    {.ids = "626 636", .padded_width_blocks = 384, .width_blocks = 334, .height_blocks = 26},
    // 4 x 3: 250, 25.7
    {.ids = "627 637", .padded_width_blocks = 256, .width_blocks = 250, .height_blocks = 26},
    // 4 x 4: 250, 19.3
    {.ids = "70-84 94-99 133-135 568 582 596-609 628 629 638 639 681 682",
     .padded_width_blocks = 256,
     .width_blocks = 250,
     .height_blocks = 20},
    // 5 x 4: 200, 19.3
    {.ids = "137-139 569 583 630 640",
     .padded_width_blocks = 256,
     .width_blocks = 200,
     .height_blocks = 20},
    // 5 x 5: 200, 15.4
    {.ids = "141-143 570 584 631 632 641 642",
     .padded_width_blocks = 256,
     .width_blocks = 200,
     .height_blocks = 16},
    // 6 x 5: 166.7, 15.4
    {.ids = "145-147 571 585 633 643",
     .padded_width_blocks = 192,
     .width_blocks = 167,
     .height_blocks = 16},
    // 6 x 6: 166.7, 12.8
    {.ids = "149-151 572 586 634 635 644 645",
     .padded_width_blocks = 192,
     .width_blocks = 167,
     .height_blocks = 13},
    // 8 x 5: 125, 15.4
    {.ids = "153-155 573 587",
     .padded_width_blocks = 128,
     .width_blocks = 125,
     .height_blocks = 16},
    // 8 x 6: 125, 12.8
    {.ids = "157-159 574 588",
     .padded_width_blocks = 128,
     .width_blocks = 125,
     .height_blocks = 13},
    // 8 x 8: 125, 9.6
    {.ids = "161-163 575 589",
     .padded_width_blocks = 128,
     .width_blocks = 125,
     .height_blocks = 10},
    // 10 x 5: 100, 15.4
    {.ids = "165-167 576 590",
     .padded_width_blocks = 128,
     .width_blocks = 100,
     .height_blocks = 16},
    // 10 x 6: 100, 12.8
    {.ids = "169-171 577 591",
     .padded_width_blocks = 128,
     .width_blocks = 100,
     .height_blocks = 13},
    // 10 x 8: 100, 9.6
    {.ids = "173-175 578 592",
     .padded_width_blocks = 128,
     .width_blocks = 100,
     .height_blocks = 10},
    // 10 x 10: 100, 7.7
    {.ids = "177-179 579 593", .padded_width_blocks = 128, .width_blocks = 100, .height_blocks = 8},
    // 12 x 10: 83.3, 7.7
    {.ids = "181-183 580 594", .padded_width_blocks = 128, .width_blocks = 84, .height_blocks = 8},
    // 12 x 12: 83.3, 6.4
    {.ids = "185-187 581 595", .padded_width_blocks = 128, .width_blocks = 84, .height_blocks = 7},
};

// All other compressed formats have blocks of 16 bytes.
const IdList kBlocksOf8Bytes = "70-72 79-81 596 599 600 603-605 607 608 681 682";

const BlockRow* block_row(uint32_t format) {
  for (const BlockRow& row : kBlockRows) {
    if (row.ids.has(format)) return &row;
  }
  return nullptr;
}

void expect_size_of_every_format(uint32_t chip_id, uint32_t BlockRow::*width_blocks) {
  Gpu gpu(chip_id);
  for (uint32_t format = 0; format <= 800; ++format) {
    const BlockRow* row = block_row(format);
    if (row == nullptr) continue;
    const BlockSizeRequest r{.width_texels = 1000, .height_texels = 77, .format = format};
    EXPECT_NUMBERS(size_in_blocks(gpu, r),
                   (BlockSize{.width_blocks = row->*width_blocks,
                              .height_blocks = row->height_blocks,
                              .block_bytes = kBlocksOf8Bytes.has(format) ? 8u : 16u}))
        << describe(r);
  }
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

TEST(CompressedSize, OfEveryCompressedFormatIsInItsBlocks) {
  expect_size_of_every_format(chip_with_pixel_alignment(true).chip_id,
                              &BlockRow::padded_width_blocks);
}

TEST(CompressedSize, OfEveryCompressedFormatWithoutPaddingIsInItsBlocks) {
  expect_size_of_every_format(chip_with_pixel_alignment(false).chip_id, &BlockRow::width_blocks);
}

TEST(CompressedSize, FollowsThePixelAlignmentColumn) {
  for (const harness::ChipData& chip : korvel::kChipData) {
    Gpu gpu(chip.chip_id);
    // 25, padded to 64 or to 1.
    EXPECT_NUMBER(size_in_blocks(gpu, k100x30OfBc1).width_blocks,
                  chip.columns.pixel_alignment ? 64 : 25)
        << "chip " << chip.chip_id;
  }
}

struct SizeRow {
  int32_t width_texels;
  int32_t height_texels;
  uint32_t width_blocks;
  uint32_t height_blocks;
};

struct BlockFormat {
  uint32_t format;
  uint32_t block_bytes;
};

void expect_sizes(const Gpu& gpu, const BlockFormat& blocks, const std::vector<SizeRow>& rows) {
  for (const SizeRow& row : rows) {
    const BlockSizeRequest r{.width_texels = row.width_texels,
                             .height_texels = row.height_texels,
                             .format = blocks.format};
    EXPECT_NUMBERS(size_in_blocks(gpu, r), (BlockSize{.width_blocks = row.width_blocks,
                                                      .height_blocks = row.height_blocks,
                                                      .block_bytes = blocks.block_bytes}))
        << describe(r);
  }
}

constexpr BlockFormat kBlocks4x4 = {.format = kBc1, .block_bytes = 8};
constexpr BlockFormat kBlocks12x12 = {.format = kAstc12x12, .block_bytes = 16};

TEST(CompressedSize, ChangesAtWholeBlocksAndWholePaddings) {
  const Gpu gpu(harness::full_chip(7).chip_id);
  // 64 blocks are 256 texels.
  expect_sizes(
      gpu, kBlocks4x4,
      {
          {.width_texels = 0, .height_texels = 0, .width_blocks = 0, .height_blocks = 0},
          {.width_texels = 0, .height_texels = 5, .width_blocks = 0, .height_blocks = 2},
          {.width_texels = 5, .height_texels = 0, .width_blocks = 64, .height_blocks = 0},
          {.width_texels = 1, .height_texels = 1, .width_blocks = 64, .height_blocks = 1},
          {.width_texels = 4, .height_texels = 4, .width_blocks = 64, .height_blocks = 1},
          {.width_texels = 5, .height_texels = 5, .width_blocks = 64, .height_blocks = 2},
          {.width_texels = 255, .height_texels = 7, .width_blocks = 64, .height_blocks = 2},
          {.width_texels = 256, .height_texels = 8, .width_blocks = 64, .height_blocks = 2},
          {.width_texels = 257, .height_texels = 9, .width_blocks = 128, .height_blocks = 3},
          {.width_texels = 512, .height_texels = 12, .width_blocks = 128, .height_blocks = 3},
          {.width_texels = 513, .height_texels = 13, .width_blocks = 192, .height_blocks = 4},
          // 16384 / 4 is 4096, a multiple of 64.
          {.width_texels = 16384,
           .height_texels = 16384,
           .width_blocks = 4096,
           .height_blocks = 4096},
      });
}

SizeRow square(int32_t texels, uint32_t width_blocks, uint32_t height_blocks) {
  return {.width_texels = texels,
          .height_texels = texels,
          .width_blocks = width_blocks,
          .height_blocks = height_blocks};
}

// width + block - 1 passes 2^31 and becomes negative; the division truncates towards 0.
TEST(CompressedSize, WrapsAt32BitsLikeSignedNumbers) {
  Gpu gpu(harness::full_chip(5).chip_id);
  expect_sizes(gpu, kBlocks4x4,
               {
                   // 0x7FFFFFFC + 3 is the largest number: / 4 = 0x1FFFFFFF blocks; up to a
                   // multiple of 64: 0x20000000.
                   square(0x7FFFFFFC, 0x20000000, 0x1FFFFFFF),
                   // 0x80000000 / 4 is -536870912 = 0xE0000000, already a multiple of 64.
                   square(0x7FFFFFFD, 0xE0000000, 0xE0000000),
                   // -2147483646 / 4 is -536870911 = 0xE0000001 (not -536870912); up to a multiple
                   // of 64: -536870848 = 0xE0000040.
                   square(INT_MAX, 0xE0000040, 0xE0000001),
               });
  expect_sizes(gpu, kBlocks12x12,
               {
                   // 0x7FFFFFFF / 12 is 178956970; up to a multiple of 64: 178956992.
                   square(0x7FFFFFF4, 178956992, 178956970),
                   // -2147483638 / 12 is -178956969 = 0xF5555557; up to a multiple of 64:
                   // -178956928 = 0xF5555580.
                   square(INT_MAX, 0xF5555580, 0xF5555557),
               });
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

TEST(CompressedSize, WrapsWithoutPaddingToo) {
  const Gpu gpu(harness::kUnknownChip);
  // -2147483646 / 4 = -536870911 = 0xE0000001, as above.
  expect_sizes(gpu, kBlocks4x4, {square(INT_MAX, 0xE0000001, 0xE0000001)});
  // 0x7FFFFFFF + 2 = -2147483647; / 3 = -715827882 = 0xD5555556. (1 + 2) / 3 = 1.
  expect_sizes(gpu, {.format = kBlocks3x3, .block_bytes = 16},
               {{.width_texels = INT_MAX,
                 .height_texels = 1,
                 .width_blocks = 0xD5555556,
                 .height_blocks = 1}});
}

TEST(CompressedSize, AsksForTheGpuOnceWhenTheArgumentsPass) {
  Gpu gpu(harness::full_chip(6).chip_id);
  size_in_blocks(gpu, k100x30OfBc1);
  EXPECT_THAT(gpu.take_calls(), ElementsAre("hxl_library_open(0)", "hxl_device_open(1, 0)",
                                            "hxl_device_getinfo(device)",
                                            "hxl_device_close(device)", "hxl_library_close()"));
}

TEST(CompressedSize, IgnoresTheThreeArgumentsBehindTheFormat) {
  Gpu gpu(harness::full_chip(6).chip_id);
  for (const uint64_t ignored : {UINT64_C(0), UINT64_C(1), UINT64_C(0xFFFFFFFFFFFFFFFF)}) {
    BlockSizeRequest r = k100x30OfBc1;
    r.unread_1 = ignored;
    r.unread_2 = ~ignored;
    r.unread_3 = ignored << 33;
    // 25 -> 64; 8, as above.
    EXPECT_NUMBERS(size_in_blocks(gpu, r),
                   (BlockSize{.width_blocks = 64, .height_blocks = 8, .block_bytes = 8}))
        << ignored;
  }
}

TEST(CompressedSize, OfANegativeSizeIs1EverywhereAndReported) {
  struct Case {
    int32_t width_texels;
    int32_t height_texels;
    const char* text;
  };
  constexpr Case kCases[] = {
      {.width_texels = -1,
       .height_texels = 5,
       .text = "Invalid texel width or texel height: W = -1, H = 5"},
      {.width_texels = 5,
       .height_texels = -1,
       .text = "Invalid texel width or texel height: W = 5, H = -1"},
      {.width_texels = 0,
       .height_texels = -1,
       .text = "Invalid texel width or texel height: W = 0, H = -1"},
      {.width_texels = -7,
       .height_texels = -9,
       .text = "Invalid texel width or texel height: W = -7, H = -9"},
      {.width_texels = INT_MIN,
       .height_texels = INT_MAX,
       .text = "Invalid texel width or texel height: W = -2147483648, H = 2147483647"},
      {.width_texels = INT_MAX,
       .height_texels = INT_MIN,
       .text = "Invalid texel width or texel height: W = 2147483647, H = -2147483648"},
  };
  Gpu gpu(harness::full_chip(6).chip_id);
  for (const Case& c : kCases) {
    // The sizes come first, whatever the format.
    for (const uint32_t format : {kBc1, kRgba8, 722U, kFourCharacterCode}) {
      const BlockSizeRequest r{
          .width_texels = c.width_texels, .height_texels = c.height_texels, .format = format};
      EXPECT_NUMBERS(size_in_blocks(gpu, r), kRefused) << describe(r);
      EXPECT_THAT(gpu.take_messages(), ElementsAre(message(kName, c.text)));
    }
  }
  EXPECT_THAT(gpu.take_calls(), IsEmpty());
}

std::string not_compressed_text(uint32_t format) {
  char text[64];
  std::snprintf(text, sizeof text, "Not a compressed format 0x%x", format);
  return text;
}

void expect_not_compressed(Gpu& gpu, uint32_t format) {
  EXPECT_NUMBERS(size_in_blocks(gpu, {.format = format}), kUntouched) << "format " << format;
  EXPECT_THAT(gpu.take_messages(), ElementsAre(message(kName, not_compressed_text(format))));
}

TEST(CompressedSize, OfAnyOtherFormatIsReportedAndNothingIsWritten) {
  Gpu gpu(harness::full_chip(6).chip_id);
  for (uint32_t format = 0; format <= 800; ++format) {
    if (block_row(format) == nullptr) expect_not_compressed(gpu, format);
  }
  for (const uint32_t format : {kFourCharacterCode, 1024U + kBc1, 65536U + kBc1, 0x80000000U + kBc1,
                                0x7FFFFFFFU, 0xFFFFFFFFU}) {
    expect_not_compressed(gpu, format);
  }
  EXPECT_THAT(gpu.take_calls(), IsEmpty());
}

TEST(CompressedSize, PrintsTheFormatInHexadecimal) {
  Gpu gpu(harness::full_chip(6).chip_id);
  size_in_blocks(gpu, {.format = kRgba8});
  EXPECT_THAT(gpu.take_messages(), ElementsAre(message(kName, "Not a compressed format 0x1c")));
  size_in_blocks(gpu, {.format = kFourCharacterCode});
  EXPECT_THAT(gpu.take_messages(),
              ElementsAre(message(kName, "Not a compressed format 0x37425857")));
}

// Texels of three share an element of these, but they are no blocks.
TEST(CompressedSize, PackedYuvIsNotCompressed) {
  Gpu gpu(harness::full_chip(6).chip_id);
  for (const uint32_t format : {654U, 655U, 656U, 107U, 68U}) expect_not_compressed(gpu, format);
}

uint32_t low_half(const uint32_t* pointer) {
  return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pointer));
}

// A bit of `missing` for each of the three pointers.
struct Pointers {
  BlockSize size;
  BlockSizeOutputs outputs;

  explicit Pointers(int missing)
      : outputs{.width_blocks = (missing & 1) != 0 ? nullptr : &size.width_blocks,
                .height_blocks = (missing & 2) != 0 ? nullptr : &size.height_blocks,
                .block_bytes = (missing & 4) != 0 ? nullptr : &size.block_bytes} {}

  std::string text() const {
    char buffer[128];
    std::snprintf(buffer, sizeof buffer,
                  "Invalid input pointers, aligned_width=0x%x, aligned_height=0x%08x, bpp=0x%08x ",
                  low_half(outputs.width_blocks), low_half(outputs.height_blocks),
                  low_half(outputs.block_bytes));
    return buffer;
  }
};

TEST(CompressedSize, NeedsAllThreePointersAndWritesThroughNoneWithoutThem) {
  Gpu gpu(harness::full_chip(6).chip_id);
  for (int missing = 1; missing < 8; ++missing) {
    SCOPED_TRACE(missing);
    Pointers p(missing);
    store_size_in_blocks(gpu.library(), k100x30OfBc1, p.outputs);
    EXPECT_NUMBERS(p.size, kUntouched);
    EXPECT_THAT(gpu.take_messages(), ElementsAre(message(kName, p.text())));
  }
  EXPECT_THAT(gpu.take_calls(), IsEmpty());
}

constexpr BlockSizeOutputs kNoOutputs = {
    .width_blocks = nullptr, .height_blocks = nullptr, .block_bytes = nullptr};

TEST(CompressedSize, PrintsNullPointersWithTheirWidths) {
  constexpr char kText[] =
      "Invalid input pointers, aligned_width=0x0, aligned_height=0x00000000, bpp=0x00000000 ";
  Gpu gpu(harness::full_chip(6).chip_id);
  store_size_in_blocks(gpu.library(), k100x30OfBc1, kNoOutputs);
  EXPECT_THAT(gpu.take_messages(), ElementsAre(message(kName, kText)));
}

TEST(CompressedSize, LooksAtTheFormatBeforeThePointers) {
  Gpu gpu(harness::full_chip(6).chip_id);
  store_size_in_blocks(gpu.library(), {.format = kRgba8}, kNoOutputs);
  EXPECT_THAT(gpu.take_messages(), ElementsAre(message(kName, "Not a compressed format 0x1c")));
}

}  // namespace
}  // namespace formats_test
