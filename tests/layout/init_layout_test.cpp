// Blobs of one level, byte for byte.
#include "tests/layout/layout_records.h"

namespace layout_test {
namespace {

using harness::message;

// ---- One plane ------------------------------------------------------------------------------

struct Shape {
  uint32_t element_size;
  uint32_t width;
  uint32_t height;
  uint32_t pitch;
  uint64_t image_size;
  uint32_t flag_pitch;  // 0: no flag buffer
  uint64_t flag_size;
  uint64_t surface;  // total_size less 5512
};

struct Case {
  const char* what;
  int32_t width;
  int32_t height;
  int32_t depth;
  uint32_t format;
  uint32_t samples;
  uint32_t mode;
  uint64_t flags;
  uint32_t alignment;
  Shape family5;
  Shape family67;
};

constexpr uint64_t kUbwc = uint64_t{1} << 28;
constexpr uint64_t kExtra = uint64_t{1} << 56;
constexpr uint64_t kExtended = uint64_t{1} << 60;

// clang-format off
constexpr Case kCases[] = {
    // Tiles of 64 x 16; 512 x 64 is 8 pages.
    {"tiled", 100, 50, 1, 28, 1, 1, 0, 4096,
     {4, 128, 64, 512, 32768, 0, 0, 32768}, {4, 128, 64, 512, 32768, 0, 0, 32768}},
    // Flags for 16 x 4 texels: 64 / 4 = 16 rows of 128 / 16 = 8 -> 64 bytes; 1024 -> 4096.
    {"tiled, flags", 100, 50, 1, 28, 1, 1, kUbwc, 4096,
     {4, 128, 64, 512, 32768, 64, 4096, 36864}, {4, 128, 64, 512, 32768, 64, 4096, 36864}},
    // 1088 / 4 = 272 rows (a multiple of 16) of 120 -> 128 bytes: 34816 -> 36864.
    {"tiled, flags, large", 1920, 1080, 1, 28, 1, 1, kUbwc, 4096,
     {4, 1920, 1088, 7680, 8355840, 128, 36864, 8392704},
     {4, 1920, 1088, 7680, 8355840, 128, 36864, 8392704}},
    // 1104 / 4 = 276 -> 288 rows of 128 bytes: 36864, exactly 9 pages.
    {"tiled, flag rows up to 16", 1920, 1100, 1, 28, 1, 1, kUbwc, 4096,
     {4, 1920, 1104, 7680, 8478720, 128, 36864, 8515584},
     {4, 1920, 1104, 7680, 8478720, 128, 36864, 8515584}},
    // 512 x 50 = 25600, a multiple of 64, to pages.
    {"linear", 100, 50, 1, 28, 1, 0, 0, 64,
     {4, 128, 50, 512, 28672, 0, 0, 28672}, {4, 128, 50, 512, 28672, 0, 0, 28672}},
    // 2048 bytes a row are padded to 3072 (512 at most are not): 30720.
    {"linear, padded", 512, 10, 1, 28, 1, 0, 0, 64,
     {4, 768, 10, 3072, 32768, 0, 0, 32768}, {4, 768, 10, 3072, 32768, 0, 0, 32768}},
    // Linear surfaces get flag buffers too: 50 / 4 = 13 -> 16 rows.
    {"linear, flags", 100, 50, 1, 28, 1, 0, kUbwc, 64,
     {4, 128, 50, 512, 28672, 64, 4096, 32768}, {4, 128, 50, 512, 28672, 64, 4096, 32768}},
    // Any other mode is linear, with an alignment and so a surface of 0.
    {"mode 2", 100, 50, 1, 28, 1, 2, 0, 0,
     {4, 128, 50, 512, 28672, 0, 0, 0}, {4, 128, 50, 512, 28672, 0, 0, 0}},
    // 16 bytes: tiles of 16 wide (64 on family 5). Flags for 4 x 4: 16 rows of 28 or 32 -> 64.
    {"4 samples", 100, 50, 1, 28, 4, 1, kUbwc, 4096,
     {16, 128, 64, 2048, 131072, 64, 4096, 135168}, {16, 112, 64, 1792, 114688, 64, 4096, 118784}},
    // 32 bytes: tiles of 8 (64 on family 5). Flags for 4 x 2: 32 rows of 26 or 32 -> 64: 2048.
    {"8 samples", 100, 50, 1, 28, 8, 1, kUbwc, 4096,
     {32, 128, 64, 4096, 262144, 64, 4096, 266240}, {32, 104, 64, 3328, 212992, 64, 4096, 217088}},
    // 8 bytes: tiles of 32 (64 on 5). Flags for 8 x 4: 16 rows of 20 or 24 -> 64.
    {"8 bytes", 150, 50, 1, 10, 1, 1, kUbwc, 4096,
     {8, 192, 64, 1536, 98304, 64, 4096, 102400}, {8, 160, 64, 1280, 81920, 64, 4096, 86016}},
    // 8 bytes, 8 samples: flags for 2 x 2 on every family. 64 bytes: tiles of 8 (64).
    {"8 bytes, 8 samples", 100, 50, 1, 10, 8, 1, kUbwc, 4096,
     {64, 128, 64, 8192, 524288, 64, 4096, 528384}, {64, 104, 64, 6656, 425984, 64, 4096, 430080}},
    // The alignment is of all samples of an element: 16 -> 64; the padding is of one: 4 x 128.
    {"linear, 4 samples", 100, 50, 1, 28, 4, 0, 0, 64,
     {16, 128, 50, 2048, 102400, 0, 0, 102400}, {16, 128, 50, 2048, 102400, 0, 0, 102400}},
    // 16 x 8 = 128. 128 elements of 16 bytes are padded to 192; 192 x 128 bytes a row.
    {"linear, 16 bytes, 8 samples", 100, 50, 1, 2, 8, 0, 0, 128,
     {128, 192, 50, 24576, 1228800, 0, 0, 1228800}, {128, 192, 50, 24576, 1228800, 0, 0, 1228800}},
    // 3 bytes align as 4 do, in rows of 256 elements: 38400 -> 40960.
    {"linear, 3 bytes", 100, 50, 1, 508, 1, 0, 0, 64,
     {3, 256, 50, 768, 40960, 0, 0, 40960}, {3, 256, 50, 768, 40960, 0, 0, 40960}},
    {"tiled, 3 bytes", 100, 50, 1, 508, 1, 1, kUbwc, 4096,
     {3, 128, 64, 384, 24576, 0, 0, 24576}, {3, 128, 64, 384, 24576, 0, 0, 24576}},
    // 6 bytes align as 8 x 8 = 64; rows of 512 elements: 10 x 512 x 48.
    {"linear, 6 bytes, 8 samples", 100, 10, 1, 523, 8, 0, 0, 64,
     {48, 512, 10, 24576, 245760, 0, 0, 245760}, {48, 512, 10, 24576, 245760, 0, 0, 245760}},
    // 12 bytes align as 16 x 8 = 128; rows of 1024 elements: 5 x 1024 x 96.
    {"linear, 12 bytes, 8 samples", 100, 5, 1, 6, 8, 0, 0, 128,
     {96, 1024, 5, 98304, 491520, 0, 0, 491520}, {96, 1024, 5, 98304, 491520, 0, 0, 491520}},
    // 25 x 8 blocks, 64 wide by the pixel alignment; never compressed.
    {"blocks", 100, 30, 1, 71, 1, 1, kUbwc, 4096,
     {8, 64, 16, 512, 8192, 0, 0, 8192}, {8, 64, 16, 512, 8192, 0, 0, 8192}},
    {"linear blocks", 100, 30, 1, 71, 1, 0, kUbwc, 64,
     {8, 64, 8, 512, 4096, 0, 0, 4096}, {8, 64, 8, 512, 4096, 0, 0, 4096}},
    // 12 x 12 texels: 2 x 2 blocks; 257 blocks of 4 texels are 320, and no block row is padded.
    {"large blocks", 13, 13, 1, 186, 1, 1, 0, 4096,
     {16, 64, 16, 1024, 16384, 0, 0, 16384}, {16, 64, 16, 1024, 16384, 0, 0, 16384}},
    {"linear row of 257 blocks", 1025, 4, 1, 71, 1, 0, 0, 64,
     {8, 320, 1, 2560, 4096, 0, 0, 4096}, {8, 320, 1, 2560, 4096, 0, 0, 4096}},
    // The plane has 4 bytes, the format 8: 64 x 16 tiles, 8 bytes an element.
    {"depth and stencil", 100, 50, 1, 20, 1, 1, kUbwc, 4096,
     {8, 128, 64, 1024, 65536, 0, 0, 65536}, {8, 128, 64, 1024, 65536, 0, 0, 65536}},
    {"one byte", 1, 1, 1, 61, 1, 1, 0, 4096,
     {1, 128, 32, 128, 4096, 0, 0, 4096}, {1, 128, 32, 128, 4096, 0, 0, 4096}},
    {"one byte, linear", 1, 1, 1, 61, 1, 0, 0, 64,
     {1, 64, 1, 64, 4096, 0, 0, 4096}, {1, 64, 1, 64, 4096, 0, 0, 4096}},
    {"the last format", 1, 1, 1, 721, 1, 1, kUbwc, 4096,
     {4, 64, 16, 256, 4096, 0, 0, 4096}, {4, 64, 16, 256, 4096, 0, 0, 4096}},
    {"an unused id", 1, 1, 1, 119, 1, 1, 0, 4096,
     {1, 128, 32, 128, 4096, 0, 0, 4096}, {1, 128, 32, 128, 4096, 0, 0, 4096}},
    // 3 slices: 3 x 36864.
    {"slices", 100, 50, 3, 28, 1, 1, kUbwc, 4096,
     {4, 128, 64, 512, 32768, 64, 4096, 110592}, {4, 128, 64, 512, 32768, 64, 4096, 110592}},
    // Bits without a meaning, and the one that means nothing alone.
    {"other flags", 100, 50, 1, 28, 1, 1, ~(kUbwc | kExtra), 4096,
     {4, 128, 64, 512, 32768, 0, 0, 32768}, {4, 128, 64, 512, 32768, 0, 0, 32768}},
    // 5 x 2^30 bytes.
    {"beyond 4 GiB", 16384, 16384, 5, 28, 1, 1, 0, 4096,
     {4, 16384, 16384, 65536, 0x40000000, 0, 0, 0x140000000},
     {4, 16384, 16384, 65536, 0x40000000, 0, 0, 0x140000000}},
    {"the deepest", 100, 50, INT_MAX, 28, 1, 1, 0, 4096,
     {4, 128, 64, 512, 32768, 0, 0, 0x3FFFFFFF8000}, {4, 128, 64, 512, 32768, 0, 0, 0x3FFFFFFF8000}},
    // 2^20 x 4112 = 2^32 + 2^24: the slice wraps.
    {"a slice beyond 4 GiB", 65536, 4112, 1, 2, 1, 1, 0, 4096,
     {16, 65536, 4112, 0x100000, 0x1000000, 0, 0, 0x1000000},
     {16, 65536, 4112, 0x100000, 0x1000000, 0, 0, 0x1000000}},
    // 64 x (2^26 - 1) = 2^32 - 64; rounded to pages with 64 bits: 2^32.
    {"a slice of 4 GiB by its last rounding", 64, 0x3FFFFFF, 1, 61, 1, 0, 0, 64,
     {1, 64, 0x3FFFFFF, 64, 0x100000000, 0, 0, 0x100000000},
     {1, 64, 0x3FFFFFF, 64, 0x100000000, 0, 0, 0x100000000}},
    // 192 x 22369616 = 2^32 - 1024; rounded to tiles' pages with 32 bits: 0.
    {"a slice that its first rounding wraps", 64, 22369616, 1, 508, 1, 1, 0, 4096,
     {3, 64, 22369616, 192, 0, 0, 0, 0}, {3, 64, 22369616, 192, 0, 0, 0, 0}},
    // 2^15 x 4 x 2^15 = 2^32: 0. Flags: 8192 x 2048 bytes.
    {"a slice of exactly 4 GiB", 32768, 32768, 1, 28, 1, 1, kUbwc, 4096,
     {4, 32768, 32768, 131072, 0, 2048, 0x1000000, 0x1000000},
     {4, 32768, 32768, 131072, 0, 2048, 0x1000000, 0x1000000}},
};
// clang-format on

TEST(InitLayout, BlobsOfOnePlane) {
  for (const uint32_t family : kFamilies) {
    const harness::ChipData& chip = harness::full_chip(family);
    harness::Gpu gpu(chip.chip_id);
    for (const Case& c : kCases) {
      const Shape& shape = family == 5 ? c.family5 : c.family67;
      LayoutMetadata expected = canary<LayoutMetadata>();
      put_head(expected, chip, c.format, c.samples, c.alignment);
      MemoryLayout& record = expected.layout;
      // A slice is the flag buffer and then the image.
      const uint64_t slice = shape.flag_size + shape.image_size;
      put_level(record.level[0], static_cast<uint32_t>(c.depth), c.mode,
                static_cast<uint64_t>(c.depth) * slice, 1);
      put_image(record.level[0].plane[0], {shape.flag_size, shape.image_size, shape.pitch, slice,
                                           shape.element_size, shape.width, shape.height});
      if (shape.flag_pitch != 0) {
        put_flags(record.level[0].plane[0], {0, shape.flag_size, shape.flag_pitch, slice});
      }
      put_no_extra(record);
      record.total_size = 5512 + shape.surface;

      LayoutMetadata blob = canary<LayoutMetadata>();
      EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, c.width, c.height, c.depth, c.format,
                                               c.samples, c.mode, c.flags, 1),
                0u);
      expect_same_bytes(blob, expected, std::string(c.what) + " on " + std::to_string(family));
      EXPECT_EQ(gpu->korvel_get_aligned_gpu_buffer_size(&blob), shape.surface) << c.what;
    }
    EXPECT_TRUE(gpu.take_messages().empty());
  }
}

// ---- The whole blob by its offsets ------------------------------------------------------------

class Bytes {
 public:
  Bytes() : blob_(canary<LayoutMetadata>()) {}
  void u32(std::size_t offset, uint32_t value) { std::memcpy(at(offset), &value, 4); }
  void u64(std::size_t offset, uint64_t value) { std::memcpy(at(offset), &value, 8); }
  const LayoutMetadata& blob() const { return blob_; }

 private:
  unsigned char* at(std::size_t offset) {
    return reinterpret_cast<unsigned char*>(&blob_) + offset;
  }
  LayoutMetadata blob_;
};

TEST(InitLayout, EveryWordThatIsWritten) {
  // Tiled 28, 100 x 50 x 6, with flags and the extra buffer. T = 36864; 6 T = 221184; 6 x 8224 =
  // 49344; 270528 -> 67 pages.
  const harness::ChipData& chip = harness::full_chip(7);
  const harness::Gpu gpu(chip.chip_id);
  Bytes expected;
  expected.u32(0, 0x00FACADE);
  expected.u32(4, 1);
  expected.u32(8, 5536);
  expected.u32(12, 3);
  expected.u32(16, 24);
  expected.u32(20, 5512);
  constexpr std::size_t kRecord = 24;
  expected.u32(kRecord + 0, 0xDA7ACA5E);
  expected.u32(kRecord + 4, 5512);
  expected.u32(kRecord + 8, 0x5A52);
  expected.u32(kRecord + 12, 7);
  expected.u32(kRecord + 16, chip.model_code);
  expected.u32(kRecord + 20, chip.rev_id);
  expected.u32(kRecord + 24, 4);
  expected.u32(kRecord + 28, 1);
  expected.u32(kRecord + 32, 3);
  expected.u32(kRecord + 36, 0);
  expected.u64(kRecord + 40, 5512 + 67 * 4096);
  expected.u32(kRecord + 48, 4096);
  expected.u32(kRecord + 52, 28);
  expected.u32(kRecord + 56, 1);
  expected.u32(kRecord + 64, 0);
  expected.u32(kRecord + 68, 1);
  constexpr std::size_t kLevel = kRecord + 72;
  expected.u32(kLevel + 0, 6);
  expected.u32(kLevel + 4, 1);
  expected.u64(kLevel + 8, 221184);
  expected.u32(kLevel + 16, 1);
  constexpr std::size_t kPlane = kLevel + 24;
  expected.u64(kPlane + 0, 4096);
  expected.u64(kPlane + 8, 32768);
  expected.u32(kPlane + 16, 512);
  expected.u64(kPlane + 24, 36864);
  expected.u32(kPlane + 32, 4);
  expected.u32(kPlane + 36, 128);
  expected.u32(kPlane + 40, 64);
  expected.u32(kPlane + 48, 1);
  expected.u64(kPlane + 56, 0);
  expected.u64(kPlane + 64, 4096);
  expected.u32(kPlane + 72, 64);
  expected.u64(kPlane + 80, 36864);
  expected.u32(kLevel + 288, 0);
  expected.u32(kLevel + 336, 0);
  expected.u32(kRecord + 5472, 1);
  expected.u64(kRecord + 5480, 221184);
  expected.u64(kRecord + 5488, 49344);
  expected.u64(kRecord + 5496, 8224);
  expected.u32(kRecord + 5504, 0);

  LayoutMetadata blob = canary<LayoutMetadata>();
  EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 100, 50, 6, 28, 1, 1, kUbwc | kExtra, 1), 0u);
  expect_same_bytes(blob, expected.blob(), "the whole blob");
}

TEST(InitLayout, NothingBehindTheBlobIsWritten) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  struct {
    LayoutMetadata blob;
    unsigned char behind[64];
  } space;
  std::memset(&space, 0x3C, sizeof space);
  EXPECT_EQ(gpu->korvel_init_memory_layout(&space.blob, 100, 50, 6, 103, 1, 1,
                                           kUbwc | kExtra | kExtended, 2),
            0u);
  EXPECT_THAT(space.behind, testing::Each(0x3C));
}

// ---- The extra buffer -------------------------------------------------------------------------

TEST(InitLayout, TheExtraBufferStandsBehindAllSlices) {
  for (const uint32_t family : kFamilies) {
    const harness::ChipData& chip = harness::full_chip(family);
    const harness::Gpu gpu(chip.chip_id);
    // 6 x 32768 = 196608; + 6 x 8224 = 245952 -> 61 pages.
    LayoutMetadata expected = canary<LayoutMetadata>();
    put_head(expected, chip, 28, 1, 4096);
    put_level(expected.layout.level[0], 6, 1, 196608, 1);
    put_image(expected.layout.level[0].plane[0], {0, 32768, 512, 32768, 4, 128, 64});
    put_extra(expected.layout, 196608, 49344, 0);
    expected.layout.total_size = 5512 + 249856;
    LayoutMetadata blob = canary<LayoutMetadata>();
    EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 100, 50, 6, 28, 1, 1, kExtra, 1), 0u);
    expect_same_bytes(blob, expected, "tiled");

    // Linear: 28672 + 8224 = 36896 -> 577 x 64.
    expected = canary<LayoutMetadata>();
    put_head(expected, chip, 28, 1, 64);
    put_level(expected.layout.level[0], 1, 0, 28672, 1);
    put_image(expected.layout.level[0].plane[0], {0, 28672, 512, 28672, 4, 128, 50});
    put_extra(expected.layout, 28672, 8224, 0);
    expected.layout.total_size = 5512 + 36928;
    blob = canary<LayoutMetadata>();
    EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 100, 50, 1, 28, 1, 0, kExtra, 1), 0u);
    expect_same_bytes(blob, expected, "linear");

    // Mode 2: the surface is 0 all the same.
    expected.layout.level[0].tiled = 2;
    expected.layout.alignment = 0;
    expected.layout.total_size = 5512;
    blob = canary<LayoutMetadata>();
    EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 100, 50, 1, 28, 1, 2, kExtra, 1), 0u);
    expect_same_bytes(blob, expected, "mode 2");
  }
}

TEST(InitLayout, ExtendedCountsOnlyBesideExtraAndPadsFamilies6And7) {
  for (const uint32_t family : {6u, 7u}) {
    const harness::ChipData& chip =
        harness::chip_where("padded by n = 2", [family](const harness::ChipData& c) {
          return c.family_id == family && c.supported && harness::in_every_column(c.columns) &&
                 padding_n(c) == 2;
        });
    const harness::Gpu gpu(chip.chip_id);
    // 132 x 82 -> 192 x 96: 768 x 96 = 73728; + 8224 = 81952 -> 21 pages.
    LayoutMetadata expected = canary<LayoutMetadata>();
    put_head(expected, chip, 28, 1, 4096);
    put_level(expected.layout.level[0], 1, 1, 73728, 1);
    put_image(expected.layout.level[0].plane[0], {0, 73728, 768, 73728, 4, 192, 96});
    put_extra(expected.layout, 73728, 8224, 1);
    expected.layout.total_size = 5512 + 86016;
    LayoutMetadata blob = canary<LayoutMetadata>();
    EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 100, 50, 1, 28, 1, 1, kExtra | kExtended, 1),
              0u);
    expect_same_bytes(blob, expected, "both");

    expected = canary<LayoutMetadata>();
    put_head(expected, chip, 28, 1, 4096);
    put_level(expected.layout.level[0], 1, 1, 32768, 1);
    put_image(expected.layout.level[0].plane[0], {0, 32768, 512, 32768, 4, 128, 64});
    put_no_extra(expected.layout);
    expected.layout.total_size = 5512 + 32768;
    blob = canary<LayoutMetadata>();
    EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 100, 50, 1, 28, 1, 1, kExtended, 1), 0u);
    expect_same_bytes(blob, expected, "extended alone");
  }
  const harness::ChipData& chip = harness::full_chip(5);
  const harness::Gpu gpu(chip.chip_id);
  LayoutMetadata expected = canary<LayoutMetadata>();
  put_head(expected, chip, 28, 1, 4096);
  put_level(expected.layout.level[0], 1, 1, 32768, 1);
  put_image(expected.layout.level[0].plane[0], {0, 32768, 512, 32768, 4, 128, 64});
  put_extra(expected.layout, 32768, 8224, 1);
  expected.layout.total_size = 5512 + 45056;
  LayoutMetadata blob = canary<LayoutMetadata>();
  EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 100, 50, 1, 28, 1, 1, kExtra | kExtended, 1), 0u);
  expect_same_bytes(blob, expected, "family 5");
}

// ---- Several planes ---------------------------------------------------------------------------

TEST(InitLayout, TwoPlanesWithFlagBuffers) {
  // 103, 1030 x 100. Plane 0 in 128 x 32, plane 1 in 64 x 32 tiles; both with one byte an element.
  //   plane 0: 1152 x 128 = 147456 bytes; plane 1: 1088 x 128 = 139264.
  // Flags, 16 rows each on families 6 and 7: for 32 x 8 texels 36 -> 64 bytes, 1024 in all; for
  // 16 x 8 68 -> 128, 2048. On family 5 for 16 x 4 both: 32 rows of 72 and of 68 -> 128, 4096.
  for (const uint32_t family : kFamilies) {
    const harness::ChipData& chip = harness::full_chip(family);
    const harness::Gpu gpu(chip.chip_id);
    for (const uint32_t depth : {1u, 3u}) {
      LayoutMetadata expected = canary<LayoutMetadata>();
      put_head(expected, chip, 103, 1, 4096);
      LevelLayout& level = expected.layout.level[0];
      put_level(level, depth, 1, depth * 294912, 2);
      put_image(level.plane[0], {4096, 147456, 1152, 151552, 1, 1152, 128});
      put_flags(level.plane[0], {0, 4096, family == 5 ? 128u : 64u, 151552});
      // Behind one slice of plane 0, whatever the depth.
      put_image(level.plane[1], {155648, 139264, 1088, 143360, 1, 1088, 128});
      put_flags(level.plane[1], {151552, 4096, 128, 143360});
      put_no_extra(expected.layout);
      expected.layout.total_size = 5512 + depth * 294912;
      LayoutMetadata blob = canary<LayoutMetadata>();
      EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 1030, 100, static_cast<int32_t>(depth), 103,
                                               1, 1, kUbwc, 2),
                0u);
      expect_same_bytes(blob, expected, "family " + std::to_string(family));
    }
  }
}

TEST(InitLayout, ThreeLinearPlanes) {
  // 128 x 50 = 6400 -> 8192 each.
  for (const uint32_t family : kFamilies) {
    const harness::ChipData& chip = harness::full_chip(family);
    const harness::Gpu gpu(chip.chip_id);
    LayoutMetadata expected = canary<LayoutMetadata>();
    put_head(expected, chip, 615, 1, 64);
    LevelLayout& level = expected.layout.level[0];
    put_level(level, 2, 0, 49152, 3);
    put_image(level.plane[0], {0, 8192, 128, 8192, 1, 128, 50});
    put_image(level.plane[1], {8192, 8192, 128, 8192, 1, 128, 50});
    put_image(level.plane[2], {16384, 8192, 128, 8192, 1, 128, 50});
    put_no_extra(expected.layout);
    expected.layout.total_size = 5512 + 49152;
    LayoutMetadata blob = canary<LayoutMetadata>();
    EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 100, 50, 2, 615, 1, 0, kUbwc, 3), 0u);
    expect_same_bytes(blob, expected, "family " + std::to_string(family));
  }
}

TEST(InitLayout, DepthAndStencilAsPlanes) {
  // Tiles of 64 x 16 and 128 x 32; the format's 8 bytes an element in both: 1024 x 64.
  for (const uint32_t family : kFamilies) {
    const harness::ChipData& chip = harness::full_chip(family);
    const harness::Gpu gpu(chip.chip_id);
    LayoutMetadata expected = canary<LayoutMetadata>();
    put_head(expected, chip, 20, 1, 4096);
    LevelLayout& level = expected.layout.level[0];
    put_level(level, 1, 1, 131072, 2);
    put_image(level.plane[0], {0, 65536, 1024, 65536, 8, 128, 64});
    put_image(level.plane[1], {65536, 65536, 1024, 65536, 8, 128, 64});
    put_no_extra(expected.layout);
    expected.layout.total_size = 5512 + 131072;
    LayoutMetadata blob = canary<LayoutMetadata>();
    EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 100, 50, 1, 20, 1, 1, 0, 2), 0u);
    expect_same_bytes(blob, expected, "family " + std::to_string(family));
  }
}

TEST(InitLayout, NoPlanesTakeNoBytes) {
  const harness::ChipData& chip = harness::full_chip(6);
  const harness::Gpu gpu(chip.chip_id);
  LayoutMetadata expected = canary<LayoutMetadata>();
  put_head(expected, chip, 28, 1, 4096);
  put_level(expected.layout.level[0], 2, 1, 0, 0);
  put_no_extra(expected.layout);
  expected.layout.total_size = 5512;
  LayoutMetadata blob = canary<LayoutMetadata>();
  EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 100, 50, 2, 28, 1, 1, kUbwc, 0), 0u);
  expect_same_bytes(blob, expected, "none");

  put_extra(expected.layout, 0, 16448, 0);
  expected.layout.total_size = 5512 + 20480;
  blob = canary<LayoutMetadata>();
  EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 100, 50, 2, 28, 1, 1, kExtra, 0), 0u);
  expect_same_bytes(blob, expected, "the extra buffer alone");
}

TEST(InitLayout, PlanesThatAFormatLacks) {
  // Tiled on families 6 and 7 they are laid out by the format itself; linear they keep their width
  // on every family. An element has the format's bytes in any case.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    LayoutMetadata blob{};
    if (family != 5) {
      EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 100, 50, 1, 28, 1, 1, 0, 2), 0u);
      EXPECT_EQ(blob.layout.level[0].plane[1].image_width, 128u);
      EXPECT_EQ(blob.layout.level[0].plane[1].image_offset, 32768u);
      EXPECT_EQ(blob.layout.total_size, 5512u + 65536);
    }
    EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 512, 10, 1, 28, 1, 0, 0, 2), 0u);
    EXPECT_EQ(blob.layout.level[0].plane[0].image_width, 768u);
    EXPECT_EQ(blob.layout.level[0].plane[1].image_width, 512u);  // rows of 0 bytes
    EXPECT_EQ(blob.layout.level[0].plane[1].image_pitch, 2048u);
  }
}

TEST(InitLayoutDeathTest, Family5FaultsForATiledPlaneThatTheFormatLacks) {
  const uint32_t chip = harness::full_chip(5).chip_id;
  for (const uint32_t format : {28u, 103u}) {
    EXPECT_DIVISION_FAULT({
      const harness::Gpu gpu(chip);
      LayoutMetadata blob{};
      gpu->korvel_init_memory_layout(&blob, 64, 64, 1, format, 1, 1, 0, 3);
    });
  }
}

// ---- Flag buffers by chip and format ------------------------------------------------------------

TEST(InitLayout, FlagBuffersOnlyWhereTheChipCompressesTheFormat) {
  const auto flags_on = [](const harness::ChipData& chip, uint32_t format) {
    const harness::Gpu gpu(chip.chip_id);
    LayoutMetadata blob{};
    EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 64, 64, 1, format, 1, 1, kUbwc, 1), 0u);
    return blob.layout.level[0].plane[0].flag_valid;
  };
  for (const harness::ChipData& chip : korvel::kChipData) {
    const bool some = !chip.ubwc.never;
    EXPECT_EQ(flags_on(chip, 28), some ? 1u : 0u) << chip.chip_id;
    EXPECT_EQ(flags_on(chip, 40), some && !chip.ubwc.depth_excluded ? 1u : 0u) << chip.chip_id;
    EXPECT_EQ(flags_on(chip, 104), some && (chip.ubwc.yuv_a || chip.ubwc.yuv_b) ? 1u : 0u)
        << chip.chip_id;
    EXPECT_EQ(flags_on(chip, 683), some && chip.ubwc.yuv_b ? 1u : 0u) << chip.chip_id;
    EXPECT_EQ(flags_on(chip, 61), 0u) << chip.chip_id;
  }
}

struct TileRow {
  uint32_t format;
  uint32_t plane;
  uint32_t samples;
  uint32_t width6, height6;  // texels that a byte of flags stands for; 0: not worked out here
  uint32_t width7, height7;
};

// The tiles that families 6 and 7 give to the planes of every compressible video format, and to
// ordinary formats by samples and bytes.
constexpr TileRow kTiles[] = {
    {28, 0, 1, 16, 4, 16, 4},  {28, 0, 2, 8, 4, 8, 4},    {28, 0, 4, 4, 4, 4, 4},
    {28, 0, 8, 4, 2, 4, 2},    {10, 0, 1, 8, 4, 8, 4},    {10, 0, 2, 4, 4, 4, 4},
    {10, 0, 4, 4, 2, 4, 2},    {10, 0, 8, 2, 2, 2, 2},    {103, 0, 1, 32, 8, 32, 8},
    {103, 1, 1, 16, 8, 16, 8}, {506, 0, 1, 32, 8, 32, 8}, {506, 1, 1, 16, 8, 16, 8},
    {103, 0, 8, 32, 8, 32, 8},  // the samples do not matter to these
    {104, 0, 1, 32, 4, 32, 4}, {104, 1, 1, 16, 4, 16, 4}, {107, 0, 1, 32, 4, 32, 4},
    {614, 0, 1, 32, 4, 32, 4}, {620, 0, 1, 16, 4, 16, 4}, {654, 0, 1, 48, 4, 48, 4},
    {654, 1, 1, 24, 4, 24, 4}, {655, 0, 1, 48, 4, 48, 4}, {656, 0, 1, 24, 4, 24, 4},
    {657, 0, 1, 32, 8, 32, 8}, {660, 0, 1, 64, 4, 64, 4}, {660, 1, 1, 32, 4, 32, 4},
    {661, 0, 1, 64, 4, 64, 4}, {662, 0, 1, 32, 4, 32, 4}, {663, 0, 1, 32, 4, 32, 4},
    {664, 0, 1, 16, 4, 16, 4}, {658, 0, 1, 0, 0, 16, 8},  {709, 0, 1, 0, 0, 32, 4},
    {709, 1, 1, 0, 0, 16, 4},  {710, 0, 1, 0, 0, 32, 4},  {711, 0, 1, 0, 0, 16, 4},
    {610, 0, 1, 16, 4, 16, 4},  // 2 bytes, none of the 16 x 8 ones
};

TEST(InitLayout, FlagBufferSizesFollowTheSampleTile) {
  for (const uint32_t family : {6u, 7u}) {
    const harness::ChipData& chip =
        harness::chip_where("compressing everything", [family](const harness::ChipData& c) {
          return c.family_id == family && c.supported && harness::in_every_column(c.columns) &&
                 !c.ubwc.never && !c.ubwc.depth_excluded && c.ubwc.yuv16;
        });
    const harness::Gpu gpu(chip.chip_id);
    for (const TileRow& row : kTiles) {
      const uint32_t tw = family == 6 ? row.width6 : row.width7;
      const uint32_t th = family == 6 ? row.height6 : row.height7;
      if (tw == 0) continue;
      LayoutMetadata blob{};
      // 12288 x 6144 texels are whole tiles of every kind, in both directions.
      EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 12288, 6144, 1, row.format, row.samples, 1,
                                               kUbwc, row.plane + 1),
                0u);
      const PlaneLayout& plane = blob.layout.level[0].plane[row.plane];
      const std::string what = std::to_string(row.format) + " on " + std::to_string(family);
      ASSERT_EQ(plane.image_width, 12288u) << what;
      ASSERT_EQ(plane.image_height, 6144u) << what;
      EXPECT_EQ(plane.flag_valid, 1u) << what;
      EXPECT_EQ(plane.flag_pitch, 12288 / tw) << what;  // a multiple of 64 for all of them
      EXPECT_EQ(plane.flag_size, uint64_t{6144 / th} * (12288 / tw)) << what;  // whole pages
    }
  }
}

TEST(InitLayout, SampleTilesOfFamily5GoByBytesAndSamplesAlone) {
  struct Row {
    uint32_t format;
    uint32_t samples;
    uint32_t tile_width;
    uint32_t tile_height;
  };
  constexpr Row kRows[] = {
      {28, 1, 16, 4},  {28, 2, 8, 4},   {28, 4, 4, 4},  {28, 8, 4, 2},   {10, 1, 8, 4},
      {10, 8, 2, 2},   {103, 1, 16, 4}, {103, 8, 4, 2}, {104, 1, 16, 4}, {107, 2, 8, 4},
      {619, 1, 16, 4},  // which no tile is known for on the other families
      {658, 1, 16, 4}, {659, 1, 16, 4}, {656, 1, 8, 4}, {661, 1, 16, 4}, {709, 1, 16, 4},
  };
  const harness::ChipData& chip =
      harness::chip_where("of family 5 and compressing everything", [](const harness::ChipData& c) {
        return c.family_id == 5 && c.supported && c.columns.base_alignment &&
               c.columns.linear_alignment && c.columns.tiled_alignment && !c.ubwc.never &&
               c.ubwc.yuv16;
      });
  const harness::Gpu gpu(chip.chip_id);
  for (const Row& row : kRows) {
    LayoutMetadata blob{};
    EXPECT_EQ(
        gpu->korvel_init_memory_layout(&blob, 12288, 6144, 1, row.format, row.samples, 1, kUbwc, 1),
        0u);
    const PlaneLayout& plane = blob.layout.level[0].plane[0];
    EXPECT_EQ(plane.flag_pitch, 12288 / row.tile_width) << row.format;
    EXPECT_EQ(plane.flag_size, uint64_t{6144 / row.tile_height} * (12288 / row.tile_width))
        << row.format;
  }
}

TEST(InitLayoutDeathTest, FlagBuffersOfFormatsWithoutASampleTileFault) {
  struct Row {
    uint32_t family;
    uint32_t format;
  };
  for (const Row& row : {Row{6, 619}, Row{7, 619}, Row{6, 659}, Row{7, 659}, Row{6, 658},
                         Row{6, 709}, Row{6, 710}, Row{6, 711}}) {
    const uint32_t chip =
        harness::chip_where("compressing the format", [&row](const harness::ChipData& c) {
          return c.family_id == row.family && c.supported && !c.ubwc.never && c.ubwc.yuv16;
        }).chip_id;
    EXPECT_DIVISION_FAULT({
      const harness::Gpu gpu(chip);
      LayoutMetadata blob{};
      gpu->korvel_init_memory_layout(&blob, 64, 64, 1, row.format, 1, 1, kUbwc, 1);
    });
    // Without flag buffers they are laid out like any other.
    const harness::Gpu gpu(chip);
    LayoutMetadata blob{};
    EXPECT_EQ(gpu->korvel_init_memory_layout(&blob, 64, 64, 1, row.format, 1, 1, 0, 1), 0u);
  }
}

}  // namespace
}  // namespace layout_test
