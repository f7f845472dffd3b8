// Blobs of one level, byte for byte.
#include <gmock/gmock.h>

#include <climits>

#include "tests/harness/faults.h"
#include "tests/layout/chosen_chips.h"
#include "tests/layout/expected_layouts.h"

namespace layout_test {
namespace {

// ---- One plane ------------------------------------------------------------------------------

struct Sizes {
  uint32_t element_bytes = 0;
  uint32_t width_el = 0;
  uint32_t rows = 0;
  uint32_t pitch_bytes = 0;
  uint64_t image_bytes = 0;
  uint32_t flag_pitch_bytes = 0;  // 0: no flag buffer
  uint64_t flag_bytes = 0;
  uint64_t surface_bytes = 0;
};

struct Case {
  const char* what;
  Request request = {};
  uint32_t alignment_bytes = 4096;
  Sizes expected;
  std::optional<Sizes> on_family5 = std::nullopt;  // where it differs
};

// clang-format off
constexpr Case kCases[] = {
    // Tiles of 64 x 16; 512 x 64 is 8 pages.
    {.what = "tiled",
     .expected = {.element_bytes = 4, .width_el = 128, .rows = 64,
                  .pitch_bytes = 128 * 4, .image_bytes = 512 * 64,
                  .surface_bytes = 32768}},
    // Flags for 16 x 4 texels: 64 / 4 = 16 rows of 128 / 16 = 8 -> 64 bytes; 1024 -> 4096.
    {.what = "tiled, flags", .request = {.flags = kUbwc},
     .expected = {.element_bytes = 4, .width_el = 128, .rows = 64,
                  .pitch_bytes = 128 * 4, .image_bytes = 512 * 64,
                  .flag_pitch_bytes = 64, .flag_bytes = 4096,
                  .surface_bytes = 4096 + 32768}},
    // 1088 / 4 = 272 rows (a multiple of 16) of 120 -> 128 bytes: 34816 -> 36864.
    {.what = "tiled, flags, large",
     .request = {.width_px = 1920, .height_px = 1080, .flags = kUbwc},
     .expected = {.element_bytes = 4, .width_el = 1920, .rows = 1088,
                  .pitch_bytes = 1920 * 4, .image_bytes = 7680 * 1088,
                  .flag_pitch_bytes = 128, .flag_bytes = 9 * 4096,
                  .surface_bytes = 36864 + 8355840}},
    // 1104 / 4 = 276 -> 288 rows of 128 bytes: 36864, exactly 9 pages.
    {.what = "tiled, flag rows up to 16",
     .request = {.width_px = 1920, .height_px = 1100, .flags = kUbwc},
     .expected = {.element_bytes = 4, .width_el = 1920, .rows = 1104,
                  .pitch_bytes = 1920 * 4, .image_bytes = 7680 * 1104,
                  .flag_pitch_bytes = 128, .flag_bytes = 9 * 4096,
                  .surface_bytes = 36864 + 8478720}},
    // 512 x 50 = 25600, a multiple of 64, to pages.
    {.what = "linear", .request = {.tiling_mode = kLinear}, .alignment_bytes = 64,
     .expected = {.element_bytes = 4, .width_el = 128, .rows = 50,
                  .pitch_bytes = 128 * 4, .image_bytes = 7 * 4096,
                  .surface_bytes = 28672}},
    // 2048 bytes a row are padded to 3072 (512 at most are not): 30720.
    {.what = "linear, padded",
     .request = {.width_px = 512, .height_px = 10, .tiling_mode = kLinear},
     .alignment_bytes = 64,
     .expected = {.element_bytes = 4, .width_el = 768, .rows = 10,
                  .pitch_bytes = 768 * 4, .image_bytes = 8 * 4096,
                  .surface_bytes = 32768}},
    // Linear surfaces get flag buffers too: 50 / 4 = 13 -> 16 rows.
    {.what = "linear, flags", .request = {.tiling_mode = kLinear, .flags = kUbwc},
     .alignment_bytes = 64,
     .expected = {.element_bytes = 4, .width_el = 128, .rows = 50,
                  .pitch_bytes = 128 * 4, .image_bytes = 7 * 4096,
                  .flag_pitch_bytes = 64, .flag_bytes = 4096,
                  .surface_bytes = 4096 + 28672}},
    // Any other mode is linear, with an alignment and so a surface of 0.
    {.what = "mode 2", .request = {.tiling_mode = 2}, .alignment_bytes = 0,
     .expected = {.element_bytes = 4, .width_el = 128, .rows = 50,
                  .pitch_bytes = 128 * 4, .image_bytes = 7 * 4096,
                  .surface_bytes = 0}},
    // 16 bytes: tiles of 16 wide (64 on family 5). Flags for 4 x 4: 16 rows of 28 or 32 -> 64.
    {.what = "4 samples", .request = {.samples = 4, .flags = kUbwc},
     .expected = {.element_bytes = 16, .width_el = 112, .rows = 64,
                  .pitch_bytes = 112 * 16, .image_bytes = 1792 * 64,
                  .flag_pitch_bytes = 64, .flag_bytes = 4096,
                  .surface_bytes = 4096 + 114688},
     .on_family5 = Sizes{.element_bytes = 16, .width_el = 128, .rows = 64,
                         .pitch_bytes = 128 * 16, .image_bytes = 2048 * 64,
                         .flag_pitch_bytes = 64, .flag_bytes = 4096,
                         .surface_bytes = 4096 + 131072}},
    // 32 bytes: tiles of 8 (64 on family 5). Flags for 4 x 2: 32 rows of 26 or 32 -> 64: 2048.
    {.what = "8 samples", .request = {.samples = 8, .flags = kUbwc},
     .expected = {.element_bytes = 32, .width_el = 104, .rows = 64,
                  .pitch_bytes = 104 * 32, .image_bytes = 3328 * 64,
                  .flag_pitch_bytes = 64, .flag_bytes = 4096,
                  .surface_bytes = 4096 + 212992},
     .on_family5 = Sizes{.element_bytes = 32, .width_el = 128, .rows = 64,
                         .pitch_bytes = 128 * 32, .image_bytes = 4096 * 64,
                         .flag_pitch_bytes = 64, .flag_bytes = 4096,
                         .surface_bytes = 4096 + 262144}},
    // 8 bytes: tiles of 32 (64 on 5). Flags for 8 x 4: 16 rows of 20 or 24 -> 64.
    {.what = "8 bytes", .request = {.width_px = 150, .format = 10, .flags = kUbwc},
     .expected = {.element_bytes = 8, .width_el = 160, .rows = 64,
                  .pitch_bytes = 160 * 8, .image_bytes = 1280 * 64,
                  .flag_pitch_bytes = 64, .flag_bytes = 4096,
                  .surface_bytes = 4096 + 81920},
     .on_family5 = Sizes{.element_bytes = 8, .width_el = 192, .rows = 64,
                         .pitch_bytes = 192 * 8, .image_bytes = 1536 * 64,
                         .flag_pitch_bytes = 64, .flag_bytes = 4096,
                         .surface_bytes = 4096 + 98304}},
    // 8 bytes, 8 samples: flags for 2 x 2 on every family. 64 bytes: tiles of 8 (64).
    {.what = "8 bytes, 8 samples", .request = {.format = 10, .samples = 8, .flags = kUbwc},
     .expected = {.element_bytes = 64, .width_el = 104, .rows = 64,
                  .pitch_bytes = 104 * 64, .image_bytes = 6656 * 64,
                  .flag_pitch_bytes = 64, .flag_bytes = 4096,
                  .surface_bytes = 4096 + 425984},
     .on_family5 = Sizes{.element_bytes = 64, .width_el = 128, .rows = 64,
                         .pitch_bytes = 128 * 64, .image_bytes = 8192 * 64,
                         .flag_pitch_bytes = 64, .flag_bytes = 4096,
                         .surface_bytes = 4096 + 524288}},
    // The alignment is of all samples of an element: 16 -> 64; the padding is of one: 4 x 128.
    {.what = "linear, 4 samples", .request = {.samples = 4, .tiling_mode = kLinear},
     .alignment_bytes = 64,
     .expected = {.element_bytes = 16, .width_el = 128, .rows = 50,
                  .pitch_bytes = 128 * 16, .image_bytes = 2048 * 50,
                  .surface_bytes = 102400}},
    // 16 x 8 = 128. 128 elements of 16 bytes are padded to 192; 192 x 128 bytes a row.
    {.what = "linear, 16 bytes, 8 samples",
     .request = {.format = 2, .samples = 8, .tiling_mode = kLinear},
     .alignment_bytes = 128,
     .expected = {.element_bytes = 128, .width_el = 192, .rows = 50,
                  .pitch_bytes = 192 * 128, .image_bytes = 24576 * 50,
                  .surface_bytes = 1228800}},
    // 3 bytes align as 4 do, in rows of 256 elements: 38400 -> 40960.
    {.what = "linear, 3 bytes", .request = {.format = 508, .tiling_mode = kLinear},
     .alignment_bytes = 64,
     .expected = {.element_bytes = 3, .width_el = 256, .rows = 50,
                  .pitch_bytes = 256 * 3, .image_bytes = 10 * 4096,
                  .surface_bytes = 40960}},
    // Tiles of 64 x 16: 384 x 64 is 6 pages.
    {.what = "tiled, 3 bytes", .request = {.format = 508, .flags = kUbwc},
     .expected = {.element_bytes = 3, .width_el = 128, .rows = 64,
                  .pitch_bytes = 128 * 3, .image_bytes = 384 * 64,
                  .surface_bytes = 24576}},
    // 6 bytes align as 8 x 8 = 64; rows of 512 elements: 10 x 512 x 48.
    {.what = "linear, 6 bytes, 8 samples",
     .request = {.height_px = 10, .format = 523, .samples = 8, .tiling_mode = kLinear},
     .alignment_bytes = 64,
     .expected = {.element_bytes = 48, .width_el = 512, .rows = 10,
                  .pitch_bytes = 512 * 48, .image_bytes = 24576 * 10,
                  .surface_bytes = 245760}},
    // 12 bytes align as 16 x 8 = 128; rows of 1024 elements: 5 x 1024 x 96.
    {.what = "linear, 12 bytes, 8 samples",
     .request = {.height_px = 5, .format = 6, .samples = 8, .tiling_mode = kLinear},
     .alignment_bytes = 128,
     .expected = {.element_bytes = 96, .width_el = 1024, .rows = 5,
                  .pitch_bytes = 1024 * 96, .image_bytes = 98304 * 5,
                  .surface_bytes = 491520}},
    // 25 x 8 blocks, 64 wide by the pixel alignment; never compressed.
    {.what = "blocks", .request = {.height_px = 30, .format = 71, .flags = kUbwc},
     .expected = {.element_bytes = 8, .width_el = 64, .rows = 16,
                  .pitch_bytes = 64 * 8, .image_bytes = 512 * 16,
                  .surface_bytes = 8192}},
    // 8 rows of 512 bytes are a page.
    {.what = "linear blocks",
     .request = {.height_px = 30, .format = 71, .tiling_mode = kLinear, .flags = kUbwc},
     .alignment_bytes = 64,
     .expected = {.element_bytes = 8, .width_el = 64, .rows = 8,
                  .pitch_bytes = 64 * 8, .image_bytes = 512 * 8,
                  .surface_bytes = 4096}},
    // 12 x 12 texels: 2 x 2 blocks, 64 wide by the pixel alignment, in tiles of 16 rows.
    {.what = "large blocks", .request = {.width_px = 13, .height_px = 13, .format = 186},
     .expected = {.element_bytes = 16, .width_el = 64, .rows = 16,
                  .pitch_bytes = 64 * 16, .image_bytes = 1024 * 16,
                  .surface_bytes = 16384}},
    // 257 blocks of 4 texels are 320, and no row of blocks is padded: 2560 bytes, a page.
    {.what = "linear row of 257 blocks",
     .request = {.width_px = 1025, .height_px = 4, .format = 71, .tiling_mode = kLinear},
     .alignment_bytes = 64,
     .expected = {.element_bytes = 8, .width_el = 320, .rows = 1,
                  .pitch_bytes = 320 * 8, .image_bytes = 4096,
                  .surface_bytes = 4096}},
    // The plane has 4 bytes, the format 8: 64 x 16 tiles, 8 bytes an element.
    {.what = "depth and stencil", .request = {.format = 20, .flags = kUbwc},
     .expected = {.element_bytes = 8, .width_el = 128, .rows = 64,
                  .pitch_bytes = 128 * 8, .image_bytes = 1024 * 64,
                  .surface_bytes = 65536}},
    // One tile of 128 x 32: a page.
    {.what = "one byte", .request = {.width_px = 1, .height_px = 1, .format = 61},
     .expected = {.element_bytes = 1, .width_el = 128, .rows = 32,
                  .pitch_bytes = 128 * 1, .image_bytes = 128 * 32,
                  .surface_bytes = 4096}},
    // One row of 64 bytes, in a page.
    {.what = "one byte, linear",
     .request = {.width_px = 1, .height_px = 1, .format = 61, .tiling_mode = kLinear},
     .alignment_bytes = 64,
     .expected = {.element_bytes = 1, .width_el = 64, .rows = 1,
                  .pitch_bytes = 64 * 1, .image_bytes = 4096,
                  .surface_bytes = 4096}},
    // One tile of 64 x 16 elements of 4 bytes: a page.
    {.what = "the last format",
     .request = {.width_px = 1, .height_px = 1, .format = 721, .flags = kUbwc},
     .expected = {.element_bytes = 4, .width_el = 64, .rows = 16,
                  .pitch_bytes = 64 * 4, .image_bytes = 256 * 16,
                  .surface_bytes = 4096}},
    // As one byte.
    {.what = "an unused id", .request = {.width_px = 1, .height_px = 1, .format = 119},
     .expected = {.element_bytes = 1, .width_el = 128, .rows = 32,
                  .pitch_bytes = 128 * 1, .image_bytes = 128 * 32,
                  .surface_bytes = 4096}},
    // 3 slices: 3 x 36864.
    {.what = "slices", .request = {.depth = 3, .flags = kUbwc},
     .expected = {.element_bytes = 4, .width_el = 128, .rows = 64,
                  .pitch_bytes = 128 * 4, .image_bytes = 512 * 64,
                  .flag_pitch_bytes = 64, .flag_bytes = 4096,
                  .surface_bytes = 3 * 36864}},
    // Bits without a meaning, and the one that means nothing alone.
    {.what = "other flags", .request = {.flags = ~(kUbwc | kExtra)},
     .expected = {.element_bytes = 4, .width_el = 128, .rows = 64,
                  .pitch_bytes = 128 * 4, .image_bytes = 512 * 64,
                  .surface_bytes = 32768}},
    // 5 x 2^30 bytes.
    {.what = "beyond 4 GiB", .request = {.width_px = 16384, .height_px = 16384, .depth = 5},
     .expected = {.element_bytes = 4, .width_el = 16384, .rows = 16384,
                  .pitch_bytes = 16384 * 4, .image_bytes = 65536 * 16384,
                  .surface_bytes = 5 * uint64_t{0x40000000}}},
    // (2^31 - 1) x 2^15 bytes.
    {.what = "the deepest", .request = {.depth = INT_MAX},
     .expected = {.element_bytes = 4, .width_el = 128, .rows = 64,
                  .pitch_bytes = 128 * 4, .image_bytes = 512 * 64,
                  .surface_bytes = 0x3FFFFFFF8000}},
    // 2^20 x 4112 = 2^32 + 2^24: the slice wraps.
    {.what = "a slice beyond 4 GiB", .request = {.width_px = 65536, .height_px = 4112, .format = 2},
     .expected = {.element_bytes = 16, .width_el = 65536, .rows = 4112,
                  .pitch_bytes = 65536 * 16, .image_bytes = 0x1000000,
                  .surface_bytes = 0x1000000}},
    // 64 x (2^26 - 1) = 2^32 - 64; rounded to pages with 64 bits: 2^32.
    {.what = "a slice of 4 GiB by its last rounding",
     .request = {.width_px = 64, .height_px = 0x3FFFFFF, .format = 61, .tiling_mode = kLinear},
     .alignment_bytes = 64,
     .expected = {.element_bytes = 1, .width_el = 64, .rows = 0x3FFFFFF,
                  .pitch_bytes = 64 * 1, .image_bytes = 0x100000000,
                  .surface_bytes = 0x100000000}},
    // 192 x 22369616 = 2^32 - 1024; rounded to tiles' pages with 32 bits: 0.
    {.what = "a slice that its first rounding wraps",
     .request = {.width_px = 64, .height_px = 22369616, .format = 508},
     .expected = {.element_bytes = 3, .width_el = 64, .rows = 22369616,
                  .pitch_bytes = 64 * 3, .image_bytes = 0,
                  .surface_bytes = 0}},
    // 2^15 x 4 x 2^15 = 2^32: 0. Flags: 8192 x 2048 bytes.
    {.what = "a slice of exactly 4 GiB",
     .request = {.width_px = 32768, .height_px = 32768, .flags = kUbwc},
     .expected = {.element_bytes = 4, .width_el = 32768, .rows = 32768,
                  .pitch_bytes = 32768 * 4, .image_bytes = 0,
                  .flag_pitch_bytes = 2048, .flag_bytes = 0x1000000,
                  .surface_bytes = 0x1000000}},
};
// clang-format on

TEST(InitLayout, BlobsOfOnePlane) {
  for (const uint32_t family : kFamilies) {
    const harness::ChipData& chip = harness::full_chip(family);
    harness::Gpu gpu(chip.chip_id);
    for (const Case& c : kCases) {
      const Sizes& sizes = family == 5 && c.on_family5 ? *c.on_family5 : c.expected;
      // A slice is the flag buffer and then the image.
      const uint64_t slice_bytes = sizes.flag_bytes + sizes.image_bytes;
      Plane plane = {.image = {.offset_bytes = sizes.flag_bytes,
                               .size_bytes = sizes.image_bytes,
                               .pitch_bytes = sizes.pitch_bytes,
                               .slice_pitch_bytes = slice_bytes,
                               .element_bytes = sizes.element_bytes,
                               .width_el = sizes.width_el,
                               .height_rows = sizes.rows}};
      if (sizes.flag_pitch_bytes != 0) {
        plane.flags = FlagBuffer{.size_bytes = sizes.flag_bytes,
                                 .pitch_bytes = sizes.flag_pitch_bytes,
                                 .slice_pitch_bytes = slice_bytes};
      }
      const uint64_t level_bytes = static_cast<uint64_t>(c.request.depth) * slice_bytes;
      const LayoutMetadata blob = laid_out(gpu, c.request);
      const std::string what = c.what + (" on " + on_family(family));
      expect_same_record(blob,
                         expected_blob(chip, c.request,
                                       {.alignment_bytes = c.alignment_bytes,
                                        .levels = {{.size_bytes = level_bytes, .planes = {plane}}},
                                        .surface_bytes = sizes.surface_bytes}),
                         what);
      EXPECT_NUMBER_NAMED(what + ": allocation", gpu->korvel_get_aligned_gpu_buffer_size(&blob),
                          sizes.surface_bytes);
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
  // Format 28, tiled, 100 x 50 x 6, with flags and the extra buffer. A slice has 4096 bytes of
  // flags and an image of 32768: 36864; 6 slices 221184. With 6 x 8224 = 49344 bytes 270528, 67
  // pages.
  const harness::ChipData& chip = harness::full_chip(7);
  const harness::Gpu gpu(chip.chip_id);
  Bytes expected;
  expected.u32(0, 0x00FACADE);  // magic
  expected.u32(4, 1);           // header version
  expected.u32(8, 5536);        // blob size
  expected.u32(12, 3);          // record kind
  expected.u32(16, 24);         // record offset
  expected.u32(20, 5512);       // record size
  constexpr std::size_t kRecord = 24;
  expected.u32(kRecord + 0, 0xDA7ACA5E);         // signature
  expected.u32(kRecord + 4, 5512);               // size
  expected.u32(kRecord + 8, 0x5A52);             // device UUID: signature
  expected.u32(kRecord + 12, 7);                 // family id
  expected.u32(kRecord + 16, chip.model_code);   // model code
  expected.u32(kRecord + 20, chip.rev_id);       // revision id
  expected.u32(kRecord + 24, 4);                 // driver UUID: signature
  expected.u32(kRecord + 28, 1);                 // driver version
  expected.u32(kRecord + 32, 3);                 // layout version
  expected.u32(kRecord + 36, 0);                 // unused
  expected.u64(kRecord + 40, 5512 + 67 * 4096);  // total size
  expected.u32(kRecord + 48, 4096);              // alignment
  expected.u32(kRecord + 52, 28);                // format
  expected.u32(kRecord + 56, 1);                 // samples
  expected.u32(kRecord + 64, 0);                 // linear fallback
  expected.u32(kRecord + 68, 1);                 // levels
  constexpr std::size_t kLevel = kRecord + 72;
  expected.u32(kLevel + 0, 6);       // slices
  expected.u32(kLevel + 4, 1);       // tiled
  expected.u64(kLevel + 8, 221184);  // size: 6 x 36864
  expected.u32(kLevel + 16, 1);      // planes
  constexpr std::size_t kPlane = kLevel + 24;
  expected.u64(kPlane + 0, 4096);        // image offset: behind the flags
  expected.u64(kPlane + 8, 32768);       // image size: 512 x 64
  expected.u32(kPlane + 16, 512);        // image pitch: 128 x 4
  expected.u64(kPlane + 24, 36864);      // image slice pitch: 4096 + 32768
  expected.u32(kPlane + 32, 4);          // image element size
  expected.u32(kPlane + 36, 128);        // image width
  expected.u32(kPlane + 40, 64);         // image height
  expected.u32(kPlane + 48, 1);          // flag valid
  expected.u64(kPlane + 56, 0);          // flag offset
  expected.u64(kPlane + 64, 4096);       // flag size: 16 rows x 64 to a page
  expected.u32(kPlane + 72, 64);         // flag pitch: 128 / 16 = 8 to 64
  expected.u64(kPlane + 80, 36864);      // flag slice pitch
  expected.u32(kLevel + 288, 0);         // lrz valid
  expected.u32(kLevel + 336, 0);         // lrz fast-clear valid
  expected.u32(kRecord + 5472, 1);       // extra valid
  expected.u64(kRecord + 5480, 221184);  // extra offset: behind 6 slices
  expected.u64(kRecord + 5488, 49344);   // extra size: 6 x 8224
  expected.u64(kRecord + 5496, 8224);    // extra slice pitch
  expected.u32(kRecord + 5504, 0);       // extended

  expect_same_record(laid_out(gpu, {.depth = 6, .flags = kUbwc | kExtra}), expected.blob(),
                     "the whole blob");
}

TEST(InitLayout, NothingBehindTheBlobIsWritten) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  struct {
    LayoutMetadata blob;
    unsigned char behind[64];
  } space;
  std::memset(&space, 0x3C, sizeof space);
  const Request request = {
      .depth = 6, .format = 103, .flags = kUbwc | kExtra | kExtended, .planes = 2};
  EXPECT_NUMBER(init_layout(gpu, &space.blob, request), 0);
  EXPECT_THAT(space.behind, testing::Each(0x3C));
}

// ---- The extra buffer -------------------------------------------------------------------------

TEST(InitLayout, TheExtraBufferStandsBehindAllSlices) {
  for (const uint32_t family : kFamilies) {
    const harness::ChipData& chip = harness::full_chip(family);
    const harness::Gpu gpu(chip.chip_id);
    expect_layout(gpu, chip, {.depth = 6, .flags = kExtra},
                  {.levels = {{.size_bytes = 6 * 32768, .planes = {{.image = kTiled100x50}}}},
                   .extra = Extra{.offset_bytes = 6 * 32768, .size_bytes = 6 * 8224},
                   .surface_bytes = 61 * 4096},  // 196608 + 49344 = 245952 to pages
                  "tiled");

    Expected linear = {.alignment_bytes = 64,
                       .levels = {{.size_bytes = 28672, .planes = {{.image = kLinear100x50}}}},
                       .extra = Extra{.offset_bytes = 28672, .size_bytes = 8224},
                       .surface_bytes = 577 * 64};  // 28672 + 8224 = 36896 to 64
    expect_layout(gpu, chip, {.tiling_mode = kLinear, .flags = kExtra}, linear, "linear");

    // Mode 2 has no alignment: the surface is 0 all the same.
    linear.alignment_bytes = 0;
    linear.surface_bytes = 0;
    expect_layout(gpu, chip, {.tiling_mode = 2, .flags = kExtra}, linear, "mode 2");
  }
}

TEST(InitLayout, ExtendedCountsOnlyBesideExtraAndPadsFamilies6And7) {
  for (const uint32_t family : {6u, 7u}) {
    const harness::ChipData& chip = chip_padded_by_two_units(family);
    const harness::Gpu gpu(chip.chip_id);
    // 100 x 50, each with 32 more: 132 x 82, in tiles of 64 x 16.
    constexpr Image kPadded = {.size_bytes = 768 * 96,  // 18 pages
                               .pitch_bytes = 192 * 4,
                               .slice_pitch_bytes = 768 * 96,
                               .element_bytes = 4,
                               .width_el = 192,
                               .height_rows = 96};
    expect_layout(gpu, chip, {.flags = kExtra | kExtended},
                  {.levels = {{.size_bytes = 73728, .planes = {{.image = kPadded}}}},
                   .extra = Extra{.offset_bytes = 73728, .size_bytes = 8224, .extended = 1},
                   .surface_bytes = 21 * 4096},  // 73728 + 8224 = 81952 to pages
                  "both");
    expect_layout(gpu, chip, {.flags = kExtended},
                  {.levels = {{.size_bytes = 32768, .planes = {{.image = kTiled100x50}}}},
                   .surface_bytes = 32768},
                  "extended alone");
  }
  const harness::ChipData& chip = harness::full_chip(5);
  const harness::Gpu gpu(chip.chip_id);
  expect_layout(gpu, chip, {.flags = kExtra | kExtended},
                {.levels = {{.size_bytes = 32768, .planes = {{.image = kTiled100x50}}}},
                 .extra = Extra{.offset_bytes = 32768, .size_bytes = 8224, .extended = 1},
                 .surface_bytes = 11 * 4096},  // 32768 + 8224 = 40992 to pages
                "family 5");
}

// ---- Several planes ---------------------------------------------------------------------------

TEST(InitLayout, TwoPlanesWithFlagBuffers) {
  // 103, 1030 x 100. Plane 0 in 128 x 32, plane 1 in 64 x 32 tiles; both with one byte an element.
  constexpr uint64_t kSlice0 = 4096 + 1152 * 128;  // flags and image of plane 0
  constexpr uint64_t kSlice1 = 4096 + 1088 * 128;
  // Flags, 16 rows each on families 6 and 7: for 32 x 8 texels 36 -> 64 bytes, 1024 in all; for
  // 16 x 8 68 -> 128, 2048. On family 5 for 16 x 4 both: 32 rows of 72 and of 68 -> 128, 4096.
  for (const uint32_t family : kFamilies) {
    const harness::ChipData& chip = harness::full_chip(family);
    const harness::Gpu gpu(chip.chip_id);
    const Plane plane0 = {.image = {.offset_bytes = 4096,
                                    .size_bytes = 1152 * 128,
                                    .pitch_bytes = 1152,
                                    .slice_pitch_bytes = kSlice0,
                                    .element_bytes = 1,
                                    .width_el = 1152,
                                    .height_rows = 128},
                          .flags = FlagBuffer{.offset_bytes = 0,
                                              .size_bytes = 4096,
                                              .pitch_bytes = family == 5 ? 128u : 64u,
                                              .slice_pitch_bytes = kSlice0}};
    // Behind one slice of plane 0, whatever the depth.
    const Plane plane1 = {.image = {.offset_bytes = kSlice0 + 4096,
                                    .size_bytes = 1088 * 128,
                                    .pitch_bytes = 1088,
                                    .slice_pitch_bytes = kSlice1,
                                    .element_bytes = 1,
                                    .width_el = 1088,
                                    .height_rows = 128},
                          .flags = FlagBuffer{.offset_bytes = kSlice0,
                                              .size_bytes = 4096,
                                              .pitch_bytes = 128,
                                              .slice_pitch_bytes = kSlice1}};
    for (const int32_t depth : {1, 3}) {
      const uint64_t bytes = static_cast<uint64_t>(depth) * (kSlice0 + kSlice1);
      expect_layout(
          gpu, chip,
          {.width_px = 1030,
           .height_px = 100,
           .depth = depth,
           .format = 103,
           .flags = kUbwc,
           .planes = 2},
          {.levels = {{.size_bytes = bytes, .planes = {plane0, plane1}}}, .surface_bytes = bytes},
          on_family(family));
    }
  }
}

TEST(InitLayout, ThreeLinearPlanes) {
  constexpr Image kImage = {.size_bytes = 2 * 4096,  // 128 x 50 = 6400 to pages
                            .pitch_bytes = 128,
                            .slice_pitch_bytes = 2 * 4096,
                            .element_bytes = 1,
                            .width_el = 128,
                            .height_rows = 50};
  std::vector<Plane> planes(3, Plane{.image = kImage});
  planes[1].image.offset_bytes = 8192;
  planes[2].image.offset_bytes = 2 * 8192;
  constexpr uint64_t kBytes = 2 * 3 * 8192;  // slices x planes
  for (const uint32_t family : kFamilies) {
    const harness::ChipData& chip = harness::full_chip(family);
    const harness::Gpu gpu(chip.chip_id);
    expect_layout(gpu, chip,
                  {.depth = 2, .format = 615, .tiling_mode = kLinear, .flags = kUbwc, .planes = 3},
                  {.alignment_bytes = 64,
                   .levels = {{.size_bytes = kBytes, .planes = planes}},
                   .surface_bytes = kBytes},
                  on_family(family));
  }
}

TEST(InitLayout, DepthAndStencilAsPlanes) {
  // Tiles of 64 x 16 and 128 x 32: 128 x 64 elements of the format's 8 bytes in both.
  constexpr Image kImage = {.size_bytes = 1024 * 64,
                            .pitch_bytes = 128 * 8,
                            .slice_pitch_bytes = 1024 * 64,
                            .element_bytes = 8,
                            .width_el = 128,
                            .height_rows = 64};
  std::vector<Plane> planes(2, Plane{.image = kImage});
  planes[1].image.offset_bytes = 65536;
  for (const uint32_t family : kFamilies) {
    const harness::ChipData& chip = harness::full_chip(family);
    const harness::Gpu gpu(chip.chip_id);
    expect_layout(
        gpu, chip, {.format = 20, .planes = 2},
        {.levels = {{.size_bytes = 2 * 65536, .planes = planes}}, .surface_bytes = 2 * 65536},
        on_family(family));
  }
}

TEST(InitLayout, NoPlanesTakeNoBytes) {
  const harness::ChipData& chip = harness::full_chip(6);
  const harness::Gpu gpu(chip.chip_id);
  expect_layout(gpu, chip, {.depth = 2, .flags = kUbwc, .planes = 0}, {.levels = {{}}}, "none");
  expect_layout(gpu, chip, {.depth = 2, .flags = kExtra, .planes = 0},
                {.levels = {{}},
                 .extra = Extra{.size_bytes = 2 * 8224},
                 .surface_bytes = 5 * 4096},  // 16448 to pages
                "the extra buffer alone");
}

TEST(InitLayout, PlanesThatAFormatLacks) {
  // Tiled on families 6 and 7 they are laid out by the format itself; linear they keep their width
  // on every family. An element has the format's bytes in any case.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    if (family != 5) {
      const LayoutMetadata blob = laid_out(gpu, {.planes = 2});
      EXPECT_NUMBER(blob.layout.level[0].plane[1].image_width, 128);
      EXPECT_NUMBER(blob.layout.level[0].plane[1].image_offset, 32768);
      EXPECT_NUMBER(blob.layout.total_size, kRecordBytes + 2 * 32768);
    }
    const LayoutMetadata blob =
        laid_out(gpu, {.width_px = 512, .height_px = 10, .tiling_mode = kLinear, .planes = 2});
    EXPECT_NUMBER(blob.layout.level[0].plane[0].image_width, 768);  // padded: 2048 -> 3072 bytes
    EXPECT_NUMBER(blob.layout.level[0].plane[1].image_width, 512);  // rows of 0 bytes
    EXPECT_NUMBER(blob.layout.level[0].plane[1].image_pitch, 512 * 4);
  }
}

TEST(InitLayoutDeathTest, Family5FaultsForATiledPlaneThatTheFormatLacks) {
  const uint32_t chip = harness::full_chip(5).chip_id;
  for (const uint32_t format : {28u, 103u}) {
    EXPECT_DIVISION_FAULT({
      const harness::Gpu gpu(chip);
      LayoutMetadata blob{};
      init_layout(gpu, &blob, {.format = format, .planes = 3});
    });
  }
}

// ---- Flag buffers by chip and format ------------------------------------------------------------

TEST(InitLayout, FlagBuffersOnlyWhereTheChipCompressesTheFormat) {
  const auto flags_on = [](const harness::ChipData& chip, uint32_t format) {
    const harness::Gpu gpu(chip.chip_id);
    const LayoutMetadata blob = laid_out(gpu, {.format = format, .flags = kUbwc});
    return blob.layout.level[0].plane[0].flag_valid;
  };
  for (const harness::ChipData& chip : korvel::kChipData) {
    const bool some = !chip.ubwc.never;
    const bool depth = some && !chip.ubwc.depth_excluded;
    const bool yuv = some && (chip.ubwc.yuv_a || chip.ubwc.yuv_b);
    const bool yuv_b = some && chip.ubwc.yuv_b;
    EXPECT_NUMBER(flags_on(chip, 28), some ? 1 : 0) << chip.chip_id;
    EXPECT_NUMBER(flags_on(chip, 40), depth ? 1 : 0) << chip.chip_id;
    EXPECT_NUMBER(flags_on(chip, 104), yuv ? 1 : 0) << chip.chip_id;
    EXPECT_NUMBER(flags_on(chip, 683), yuv_b ? 1 : 0) << chip.chip_id;
    EXPECT_NUMBER(flags_on(chip, 61), 0) << chip.chip_id;
  }
}

// Texels that a byte of flags stands for.
struct SampleTile {
  uint32_t format;
  uint32_t plane = 0;
  uint32_t samples = 1;
  uint32_t width_px = 0;
  uint32_t height_px = 0;
  bool on_family6 = true;  // false: the format has no sample tile there, which faults
};

// 12288 x 6144 texels are whole tiles of every kind, in both directions; and bytes of flags then
// fill whole rows of 64 and whole pages.
constexpr int32_t kTiledWidth = 12288;
constexpr int32_t kTiledHeight = 6144;

void expect_sample_tile(const harness::Gpu& gpu, const SampleTile& tile, const std::string& what) {
  const LayoutMetadata blob = laid_out(gpu, {.width_px = kTiledWidth,
                                             .height_px = kTiledHeight,
                                             .format = tile.format,
                                             .samples = tile.samples,
                                             .flags = kUbwc,
                                             .planes = tile.plane + 1});
  const PlaneLayout& plane = blob.layout.level[0].plane[tile.plane];
  const uint32_t pitch_bytes = kTiledWidth / tile.width_px;
  const uint32_t rows = kTiledHeight / tile.height_px;
  const std::string which =
      std::to_string(tile.format) + " plane " + std::to_string(tile.plane) + " on " + what;
  EXPECT_NUMBER(plane.image_width, kTiledWidth) << which;
  EXPECT_NUMBER(plane.image_height, kTiledHeight) << which;
  EXPECT_NUMBER(plane.flag_valid, 1) << which;
  EXPECT_NUMBER(plane.flag_pitch, pitch_bytes) << which;
  EXPECT_NUMBER(plane.flag_size, pitch_bytes * rows) << which;
}

// The tiles that families 6 and 7 give to the planes of every compressible video format, and to
// ordinary formats by samples and bytes.
constexpr SampleTile kTiles[] = {
    {.format = 28, .width_px = 16, .height_px = 4},
    {.format = 28, .samples = 2, .width_px = 8, .height_px = 4},
    {.format = 28, .samples = 4, .width_px = 4, .height_px = 4},
    {.format = 28, .samples = 8, .width_px = 4, .height_px = 2},
    {.format = 10, .width_px = 8, .height_px = 4},
    {.format = 10, .samples = 2, .width_px = 4, .height_px = 4},
    {.format = 10, .samples = 4, .width_px = 4, .height_px = 2},
    {.format = 10, .samples = 8, .width_px = 2, .height_px = 2},
    {.format = 103, .width_px = 32, .height_px = 8},
    {.format = 103, .plane = 1, .width_px = 16, .height_px = 8},
    {.format = 506, .width_px = 32, .height_px = 8},
    {.format = 506, .plane = 1, .width_px = 16, .height_px = 8},
    {.format = 103,
     .samples = 8,
     .width_px = 32,
     .height_px = 8},  // the samples do not matter to these
    {.format = 104, .width_px = 32, .height_px = 4},
    {.format = 104, .plane = 1, .width_px = 16, .height_px = 4},
    {.format = 107, .width_px = 32, .height_px = 4},
    {.format = 614, .width_px = 32, .height_px = 4},
    {.format = 620, .width_px = 16, .height_px = 4},
    {.format = 654, .width_px = 48, .height_px = 4},
    {.format = 654, .plane = 1, .width_px = 24, .height_px = 4},
    {.format = 655, .width_px = 48, .height_px = 4},
    {.format = 656, .width_px = 24, .height_px = 4},
    {.format = 657, .width_px = 32, .height_px = 8},
    {.format = 660, .width_px = 64, .height_px = 4},
    {.format = 660, .plane = 1, .width_px = 32, .height_px = 4},
    {.format = 661, .width_px = 64, .height_px = 4},
    {.format = 662, .width_px = 32, .height_px = 4},
    {.format = 663, .width_px = 32, .height_px = 4},
    {.format = 664, .width_px = 16, .height_px = 4},
    {.format = 658, .width_px = 16, .height_px = 8, .on_family6 = false},
    {.format = 709, .width_px = 32, .height_px = 4, .on_family6 = false},
    {.format = 709, .plane = 1, .width_px = 16, .height_px = 4, .on_family6 = false},
    {.format = 710, .width_px = 32, .height_px = 4, .on_family6 = false},
    {.format = 711, .width_px = 16, .height_px = 4, .on_family6 = false},
    {.format = 610, .width_px = 16, .height_px = 4},  // 2 bytes, none of the 16 x 8 ones
};

TEST(InitLayout, FlagBufferSizesFollowTheSampleTile) {
  for (const uint32_t family : {6u, 7u}) {
    const harness::ChipData& chip =
        harness::chip_where("compressing everything", [family](const harness::ChipData& c) {
          return c.family_id == family && c.supported && harness::in_every_column(c.columns) &&
                 !c.ubwc.never && !c.ubwc.depth_excluded && c.ubwc.yuv16;
        });
    const harness::Gpu gpu(chip.chip_id);
    for (const SampleTile& tile : kTiles) {
      if (family == 6 && !tile.on_family6) continue;
      expect_sample_tile(gpu, tile, on_family(family));
    }
  }
}

TEST(InitLayout, SampleTilesOfFamily5GoByBytesAndSamplesAlone) {
  constexpr SampleTile kTilesOfFamily5[] = {
      {.format = 28, .width_px = 16, .height_px = 4},
      {.format = 28, .samples = 2, .width_px = 8, .height_px = 4},
      {.format = 28, .samples = 4, .width_px = 4, .height_px = 4},
      {.format = 28, .samples = 8, .width_px = 4, .height_px = 2},
      {.format = 10, .width_px = 8, .height_px = 4},
      {.format = 10, .samples = 8, .width_px = 2, .height_px = 2},
      {.format = 103, .width_px = 16, .height_px = 4},
      {.format = 103, .samples = 8, .width_px = 4, .height_px = 2},
      {.format = 104, .width_px = 16, .height_px = 4},
      {.format = 107, .samples = 2, .width_px = 8, .height_px = 4},
      {.format = 619,
       .width_px = 16,
       .height_px = 4},  // which no tile is known for on the other families
      {.format = 658, .width_px = 16, .height_px = 4},
      {.format = 659, .width_px = 16, .height_px = 4},
      {.format = 656, .width_px = 8, .height_px = 4},
      {.format = 661, .width_px = 16, .height_px = 4},
      {.format = 709, .width_px = 16, .height_px = 4},
  };
  const harness::ChipData& chip =
      harness::chip_where("of family 5 and compressing everything", [](const harness::ChipData& c) {
        return c.family_id == 5 && c.supported && c.columns.base_alignment &&
               c.columns.linear_alignment && c.columns.tiled_alignment && !c.ubwc.never &&
               c.ubwc.yuv16;
      });
  const harness::Gpu gpu(chip.chip_id);
  for (const SampleTile& tile : kTilesOfFamily5) expect_sample_tile(gpu, tile, on_family(5));
}

TEST(InitLayoutDeathTest, FlagBuffersOfFormatsWithoutASampleTileFault) {
  struct Row {
    uint32_t family;
    std::vector<uint32_t> formats;
  };
  for (const Row& row : {Row{.family = 6, .formats = {619, 659, 658, 709, 710, 711}},
                         Row{.family = 7, .formats = {619, 659}}}) {
    const uint32_t chip =
        harness::chip_where("compressing the formats", [&row](const harness::ChipData& c) {
          return c.family_id == row.family && c.supported && !c.ubwc.never && c.ubwc.yuv16;
        }).chip_id;
    for (const uint32_t format : row.formats) {
      EXPECT_DIVISION_FAULT({
        const harness::Gpu gpu(chip);
        LayoutMetadata blob{};
        init_layout(gpu, &blob, {.format = format, .flags = kUbwc});
      });
      // Without flag buffers they are laid out like any other.
      const harness::Gpu gpu(chip);
      LayoutMetadata blob{};
      EXPECT_NUMBER(init_layout(gpu, &blob, {.format = format}), 0) << format;
    }
  }
}

}  // namespace
}  // namespace layout_test
