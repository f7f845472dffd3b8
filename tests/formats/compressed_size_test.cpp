// The size of a block-compressed surface in blocks.

#include <gmock/gmock.h>

#include <climits>
#include <cstdio>
#include <string>

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
constexpr uint32_t kCanary = 0xCACACACA;

constexpr uint32_t kBc1 = 71;            // 4 x 4, 8 bytes
constexpr uint32_t kAstc12x12 = 185;     // 16 bytes
constexpr uint32_t kNotCompressed = 28;  // R8G8B8A8

struct BlockSize {
  uint32_t width = kCanary;
  uint32_t height = kCanary;
  uint32_t bpp = kCanary;

  friend bool operator==(const BlockSize&, const BlockSize&) = default;
  friend void PrintTo(const BlockSize& size, std::ostream* out) {
    *out << size.width << " x " << size.height << " of " << size.bpp;
  }
};

constexpr BlockSize kUntouched = {};
constexpr BlockSize kRefused = {1, 1, 1};

BlockSize size_in_blocks(const Gpu& gpu, int32_t width, int32_t height, uint32_t format) {
  BlockSize size;
  gpu->compute_compressedfmt_aligned_width_and_height(width, height, format, 0, 0, 0, &size.width,
                                                      &size.height, &size.bpp);
  return size;
}

const harness::ChipData& chip_with_pixel_alignment(bool listed) {
  return harness::chip_where("in or out of the pixel alignment column", [=](const auto& chip) {
    return chip.columns.pixel_alignment == listed;
  });
}

TEST(CompressedSize, PadsTheWidthToThePixelAlignment) {
  Gpu gpu(harness::full_chip(6).chip_id);
  EXPECT_EQ(size_in_blocks(gpu, 100, 30, kBc1), (BlockSize{64, 8, 8}));
  EXPECT_EQ(size_in_blocks(gpu, 13, 13, kAstc12x12), (BlockSize{64, 2, 16}));
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

TEST(CompressedSize, IsNotPaddedOnOtherChips) {
  Gpu gpu(harness::kUnknownChip);
  EXPECT_EQ(size_in_blocks(gpu, 100, 30, kBc1), (BlockSize{25, 8, 8}));
  EXPECT_EQ(size_in_blocks(gpu, 13, 13, kAstc12x12), (BlockSize{2, 2, 16}));
}

// Every compressed format by its block: 1000 x 77 texels, the width padded to 64 blocks and not.
struct BlockRow {
  IdList ids;
  uint32_t padded_width;
  uint32_t width;
  uint32_t height;
};

const BlockRow kBlockRows[] = {
    {"626 636", 384, 334, 26},                                                      // 3 x 3
    {"627 637", 256, 250, 26},                                                      // 4 x 3
    {"70-84 94-99 133-135 568 582 596-609 628 629 638 639 681 682", 256, 250, 20},  // 4 x 4
    {"137-139 569 583 630 640", 256, 200, 20},                                      // 5 x 4
    {"141-143 570 584 631 632 641 642", 256, 200, 16},                              // 5 x 5
    {"145-147 571 585 633 643", 192, 167, 16},                                      // 6 x 5
    {"149-151 572 586 634 635 644 645", 192, 167, 13},                              // 6 x 6
    {"153-155 573 587", 128, 125, 16},                                              // 8 x 5
    {"157-159 574 588", 128, 125, 13},                                              // 8 x 6
    {"161-163 575 589", 128, 125, 10},                                              // 8 x 8
    {"165-167 576 590", 128, 100, 16},                                              // 10 x 5
    {"169-171 577 591", 128, 100, 13},                                              // 10 x 6
    {"173-175 578 592", 128, 100, 10},                                              // 10 x 8
    {"177-179 579 593", 128, 100, 8},                                               // 10 x 10
    {"181-183 580 594", 128, 84, 8},                                                // 12 x 10
    {"185-187 581 595", 128, 84, 7},                                                // 12 x 12
};

// All other compressed formats have blocks of 16 bytes.
const IdList kBlocksOf8Bytes = "70-72 79-81 596 599 600 603-605 607 608 681 682";

const BlockRow* block_row(uint32_t format) {
  for (const BlockRow& row : kBlockRows) {
    if (row.ids.has(format)) return &row;
  }
  return nullptr;
}

TEST(CompressedSize, OfEveryCompressedFormat) {
  Gpu gpu(chip_with_pixel_alignment(true).chip_id);
  for (uint32_t format = 0; format <= 800; ++format) {
    const BlockRow* row = block_row(format);
    if (row == nullptr) continue;
    const uint32_t bpp = kBlocksOf8Bytes.has(format) ? 8 : 16;
    EXPECT_EQ(size_in_blocks(gpu, 1000, 77, format),
              (BlockSize{row->padded_width, row->height, bpp}))
        << "format " << format;
  }
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

TEST(CompressedSize, OfEveryCompressedFormatWithoutPadding) {
  Gpu gpu(chip_with_pixel_alignment(false).chip_id);
  for (uint32_t format = 0; format <= 800; ++format) {
    const BlockRow* row = block_row(format);
    if (row == nullptr) continue;
    const uint32_t bpp = kBlocksOf8Bytes.has(format) ? 8 : 16;
    EXPECT_EQ(size_in_blocks(gpu, 1000, 77, format), (BlockSize{row->width, row->height, bpp}))
        << "format " << format;
  }
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

TEST(CompressedSize, FollowsThePixelAlignmentColumn) {
  for (const harness::ChipData& chip : korvel::kChipData) {
    Gpu gpu(chip.chip_id);
    EXPECT_EQ(size_in_blocks(gpu, 100, 30, kBc1).width, chip.columns.pixel_alignment ? 64U : 25U);
  }
}

struct Extent {
  int32_t width;
  int32_t height;
  BlockSize size;
};

TEST(CompressedSize, ChangesAtWholeBlocksAndWholePaddings) {
  constexpr Extent kExtents[] = {
      {0, 0, {0, 0, 8}},      {0, 5, {0, 2, 8}},      {5, 0, {64, 0, 8}},
      {1, 1, {64, 1, 8}},     {4, 4, {64, 1, 8}},     {5, 5, {64, 2, 8}},
      {255, 7, {64, 2, 8}},   {256, 8, {64, 2, 8}},   {257, 9, {128, 3, 8}},
      {512, 12, {128, 3, 8}}, {513, 13, {192, 4, 8}}, {16384, 16384, {4096, 4096, 8}},
  };
  Gpu gpu(harness::full_chip(7).chip_id);
  for (const Extent& e : kExtents) {
    EXPECT_EQ(size_in_blocks(gpu, e.width, e.height, kBc1), e.size) << e.width << " x " << e.height;
  }
}

// width + block - 1 passes 2^31 and becomes negative; the division truncates towards 0.
TEST(CompressedSize, WrapsAt32BitsLikeSignedNumbers) {
  constexpr Extent kBc1Extents[] = {
      // 0x7FFFFFFC + 3 is the largest number: 536870911 blocks.
      {0x7FFFFFFC, 0x7FFFFFFC, {0x20000000, 0x1FFFFFFF, 8}},
      // 0x80000000 / 4 is -536870912, already a multiple of 64.
      {0x7FFFFFFD, 0x7FFFFFFD, {0xE0000000, 0xE0000000, 8}},
      // -2147483646 / 4 is -536870911 (not -536870912); rounded up to 64: -536870848.
      {INT_MAX, INT_MAX, {0xE0000040, 0xE0000001, 8}},
  };
  constexpr Extent kAstcExtents[] = {
      // 0x7FFFFFFF / 12 is 178956970, rounded up 178956992.
      {0x7FFFFFF4, 0x7FFFFFF4, {0x0AAAAAC0, 0x0AAAAAAA, 16}},
      // -2147483638 / 12 is -178956969, rounded up to 64 -178956928.
      {INT_MAX, INT_MAX, {0xF5555580, 0xF5555557, 16}},
  };
  Gpu gpu(harness::full_chip(5).chip_id);
  for (const Extent& e : kBc1Extents) {
    EXPECT_EQ(size_in_blocks(gpu, e.width, e.height, kBc1), e.size) << e.width;
  }
  for (const Extent& e : kAstcExtents) {
    EXPECT_EQ(size_in_blocks(gpu, e.width, e.height, kAstc12x12), e.size) << e.width;
  }
  EXPECT_THAT(gpu.take_messages(), IsEmpty());
}

TEST(CompressedSize, WrapsWithoutPaddingToo) {
  Gpu gpu(harness::kUnknownChip);
  EXPECT_EQ(size_in_blocks(gpu, INT_MAX, INT_MAX, kBc1), (BlockSize{0xE0000001, 0xE0000001, 8}));
  EXPECT_EQ(size_in_blocks(gpu, INT_MAX, 1, 626), (BlockSize{0xD5555556, 1, 16}));  // 3 x 3
}

TEST(CompressedSize, AsksForTheGpuOnceWhenTheArgumentsPass) {
  Gpu gpu(harness::full_chip(6).chip_id);
  size_in_blocks(gpu, 100, 30, kBc1);
  EXPECT_THAT(gpu.take_calls(), ElementsAre("hxl_library_open(0)", "hxl_device_open(1, 0)",
                                            "hxl_device_getinfo(device)",
                                            "hxl_device_close(device)", "hxl_library_close()"));
}

TEST(CompressedSize, IgnoresTheThreeArgumentsBehindTheFormat) {
  Gpu gpu(harness::full_chip(6).chip_id);
  for (const uint64_t ignored : {UINT64_C(0), UINT64_C(1), UINT64_C(0xFFFFFFFFFFFFFFFF)}) {
    BlockSize size;
    gpu->compute_compressedfmt_aligned_width_and_height(
        100, 30, kBc1, ignored, ~ignored, ignored << 33, &size.width, &size.height, &size.bpp);
    EXPECT_EQ(size, (BlockSize{64, 8, 8}));
  }
}

TEST(CompressedSize, OfANegativeSizeIs1EverywhereAndReported) {
  struct Case {
    int32_t width, height;
    const char* text;
  };
  constexpr Case kCases[] = {
      {-1, 5, "Invalid texel width or texel height: W = -1, H = 5"},
      {5, -1, "Invalid texel width or texel height: W = 5, H = -1"},
      {0, -1, "Invalid texel width or texel height: W = 0, H = -1"},
      {-7, -9, "Invalid texel width or texel height: W = -7, H = -9"},
      {INT_MIN, INT_MAX, "Invalid texel width or texel height: W = -2147483648, H = 2147483647"},
      {INT_MAX, INT_MIN, "Invalid texel width or texel height: W = 2147483647, H = -2147483648"},
  };
  Gpu gpu(harness::full_chip(6).chip_id);
  for (const Case& c : kCases) {
    // The sizes come first, whatever the format.
    for (const uint32_t format : {kBc1, kNotCompressed, 722U, kFourCharacterCode}) {
      EXPECT_EQ(size_in_blocks(gpu, c.width, c.height, format), kRefused);
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
  EXPECT_EQ(size_in_blocks(gpu, 100, 30, format), kUntouched) << format;
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
  size_in_blocks(gpu, 1, 1, 28);
  EXPECT_THAT(gpu.take_messages(), ElementsAre(message(kName, "Not a compressed format 0x1c")));
  size_in_blocks(gpu, 1, 1, kFourCharacterCode);
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
  uint32_t* width;
  uint32_t* height;
  uint32_t* bpp;

  explicit Pointers(int missing)
      : width((missing & 1) != 0 ? nullptr : &size.width),
        height((missing & 2) != 0 ? nullptr : &size.height),
        bpp((missing & 4) != 0 ? nullptr : &size.bpp) {}

  std::string text() const {
    char buffer[128];
    std::snprintf(buffer, sizeof buffer,
                  "Invalid input pointers, aligned_width=0x%x, aligned_height=0x%08x, bpp=0x%08x ",
                  low_half(width), low_half(height), low_half(bpp));
    return buffer;
  }
};

TEST(CompressedSize, NeedsAllThreePointersAndWritesThroughNoneWithoutThem) {
  Gpu gpu(harness::full_chip(6).chip_id);
  for (int missing = 1; missing < 8; ++missing) {
    SCOPED_TRACE(missing);
    Pointers p(missing);
    gpu->compute_compressedfmt_aligned_width_and_height(100, 30, kBc1, 0, 0, 0, p.width, p.height,
                                                        p.bpp);
    EXPECT_EQ(p.size, kUntouched);
    EXPECT_THAT(gpu.take_messages(), ElementsAre(message(kName, p.text())));
  }
  EXPECT_THAT(gpu.take_calls(), IsEmpty());
}

TEST(CompressedSize, PrintsNullPointersWithTheirWidths) {
  Gpu gpu(harness::full_chip(6).chip_id);
  gpu->compute_compressedfmt_aligned_width_and_height(100, 30, kBc1, 0, 0, 0, nullptr, nullptr,
                                                      nullptr);
  EXPECT_THAT(gpu.take_messages(),
              ElementsAre(message(kName,
                                  "Invalid input pointers, aligned_width=0x0, "
                                  "aligned_height=0x00000000, bpp=0x00000000 ")));
}

TEST(CompressedSize, LooksAtTheFormatBeforeThePointers) {
  Gpu gpu(harness::full_chip(6).chip_id);
  gpu->compute_compressedfmt_aligned_width_and_height(100, 30, kNotCompressed, 0, 0, 0, nullptr,
                                                      nullptr, nullptr);
  EXPECT_THAT(gpu.take_messages(), ElementsAre(message(kName, "Not a compressed format 0x1c")));
}

}  // namespace
}  // namespace formats_test
