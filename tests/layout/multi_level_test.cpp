// Mip chains.
#include <gmock/gmock.h>

#include "tests/harness/faults.h"
#include "tests/layout/chosen_chips.h"
#include "tests/layout/expected_layouts.h"

namespace layout_test {
namespace {

using harness::message;
using Columns = korvel::ChipColumns;

// The width is rounded up to 64 before anything else: 100 texels count as 128.
struct ChainRequest {
  uint32_t width_px = 100;
  uint32_t height_px = 100;
  int32_t depth = 1;
  uint32_t format = 28;  // 4 bytes an element
  uint32_t samples = 1;
  uint32_t tiling_mode = kTiled;
  uint64_t flags = 0;
  uint32_t planes = 1;
};

void init(const harness::Gpu& gpu, MemoryLayout& record, const ChainRequest& r) {
  gpu->korvel_init_multi_level_surface(&record, r.width_px, r.height_px, r.depth, r.format,
                                       r.samples, r.tiling_mode, r.flags, r.planes);
}

// The words that are read of a record.
struct Head {
  uint32_t levels = 1;
  uint32_t alignment_bytes = 4096;
  uint32_t record_bytes = kRecordBytes;
};

// The flag sizes are read too; all other words are the canary's.
MemoryLayout record_of(const Head& head) {
  auto record = canary<MemoryLayout>();
  record.levels = head.levels;
  record.alignment = head.alignment_bytes;
  record.size = head.record_bytes;
  for (LevelLayout& level : record.level) level.plane[0].flag_size = 0;
  return record;
}

// The image of one level in a plane's chain.
struct ImageStep {
  uint32_t width_el = 0;
  uint32_t rows = 0;
  uint64_t offset_bytes = 0;
  uint64_t size_bytes = 0;                             // of one slice
  std::optional<uint64_t> level_bytes = std::nullopt;  // if not the image's in all slices
};

struct FlagStep {
  uint64_t offset_bytes = 0;
  uint64_t size_bytes = 0;  // 0: no flag buffer, but an offset
  uint32_t pitch_bytes = 0;
};

// The levels of one plane.
struct Chain {
  uint32_t plane = 0;
  uint32_t element_bytes = 0;
  uint64_t slice_pitch_bytes = 0;
  uint64_t flag_slice_pitch_bytes = 0;
  std::vector<ImageStep> images = {};
  std::vector<FlagStep> flags = {};  // of every level or of none
};

void put_chain(MemoryLayout& record, const ChainRequest& request, const Chain& chain) {
  const auto slices = static_cast<uint32_t>(request.depth);
  for (std::size_t l = 0; l < chain.images.size(); ++l) {
    const ImageStep& step = chain.images[l];
    const FlagStep flags = chain.flags.empty() ? FlagStep{} : chain.flags.at(l);
    LevelLayout& level = record.level[l];
    put_level_words(level, {.slices = slices,
                            .tiling_mode = request.tiling_mode,
                            .size_bytes = step.level_bytes.value_or(slices * step.size_bytes),
                            .planes = request.planes});
    Plane plane = {.image = {.offset_bytes = step.offset_bytes,
                             .size_bytes = step.size_bytes,
                             .pitch_bytes = step.width_el * chain.element_bytes,
                             .slice_pitch_bytes = chain.slice_pitch_bytes,
                             .element_bytes = chain.element_bytes,
                             .width_el = step.width_el,
                             .height_rows = step.rows}};
    if (flags.size_bytes != 0) {
      plane.flags = FlagBuffer{.offset_bytes = flags.offset_bytes,
                               .size_bytes = flags.size_bytes,
                               .pitch_bytes = flags.pitch_bytes,
                               .slice_pitch_bytes = chain.flag_slice_pitch_bytes};
    } else if (request.tiling_mode == kTiled && request.planes == 1) {
      // These two words are stored whether or not the level has a flag buffer.
      level.plane[0].flag_offset = flags.offset_bytes;
      level.plane[0].flag_slice_pitch = chain.flag_slice_pitch_bytes;
    }
    put_plane(level.plane[chain.plane], plane);
  }
}

struct ExpectedChains {
  std::vector<Chain> chains;  // of each plane
  std::optional<Extra> extra = std::nullopt;
  uint64_t surface_bytes = 0;  // the total less the record's own bytes
};

void expect_chains(const harness::Gpu& gpu, const Head& head, const ChainRequest& request,
                   const ExpectedChains& expected, const std::string& what) {
  MemoryLayout record = record_of(head);
  init(gpu, record, request);
  MemoryLayout expected_record = record_of(head);
  for (const Chain& chain : expected.chains) put_chain(expected_record, request, chain);
  put_extra(expected_record, expected.extra);
  expected_record.total_size = head.record_bytes + expected.surface_bytes;
  expect_same_record(record, expected_record, what);
}

TEST(MultiLevel, ATiledChain) {
  // 128 x 100 elements of 4 bytes in tiles of 64 x 16, then half as many each way.
  Chain chain = {.element_bytes = 4, .slice_pitch_bytes = 24 * 4096};  // 94208 + 4096 = 98304
  chain.images = {
      {.width_el = 128, .rows = 112, .offset_bytes = 0, .size_bytes = 512 * 112},
      {.width_el = 64, .rows = 64, .offset_bytes = 57344, .size_bytes = 256 * 64},
      {.width_el = 64, .rows = 32, .offset_bytes = 57344 + 16384, .size_bytes = 256 * 32},
      {.width_el = 64,
       .rows = 16,
       .offset_bytes = 73728 + 8192,
       .size_bytes = 256 * 16},  // 16 x 12
      {.width_el = 64, .rows = 16, .offset_bytes = 81920 + 4096, .size_bytes = 256 * 16},  // 8 x 6
      {.width_el = 64, .rows = 16, .offset_bytes = 86016 + 4096, .size_bytes = 256 * 16},  // 4 x 3
      {.width_el = 64, .rows = 16, .offset_bytes = 90112 + 4096, .size_bytes = 256 * 16},  // 2 x 1
  };
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    expect_chains(gpu, {.levels = 7}, {}, {.chains = {chain}, .surface_bytes = 24 * 4096},
                  on_family(family));
  }
}

TEST(MultiLevel, SlicesAreWholeChains) {
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    Chain chain = {.element_bytes = 4, .slice_pitch_bytes = 20 * 4096};  // 73728 + 8192
    chain.images = {
        {.width_el = 128, .rows = 112, .offset_bytes = 0, .size_bytes = 512 * 112},
        {.width_el = 64, .rows = 64, .offset_bytes = 57344, .size_bytes = 256 * 64},
        {.width_el = 64, .rows = 32, .offset_bytes = 57344 + 16384, .size_bytes = 256 * 32},
    };
    expect_chains(gpu, {.levels = 3}, {.depth = 6, .flags = kExtra},
                  {.chains = {chain},
                   .extra = Extra{.offset_bytes = 6 * 81920, .size_bytes = 6 * 8224},
                   .surface_bytes = 133 * 4096},  // 491520 + 49344 = 540864 to pages
                  on_family(family));
  }
}

TEST(MultiLevel, ALinearChain) {
  // Rows of 64 elements at least on family 5. No level takes whole pages, but the chain does.
  Chain chain5 = {.element_bytes = 4, .slice_pitch_bytes = 19 * 4096};  // 75776 + 256 = 76032
  chain5.images = {
      {.width_el = 128, .rows = 100, .offset_bytes = 0, .size_bytes = 512 * 100},
      {.width_el = 64, .rows = 50, .offset_bytes = 51200, .size_bytes = 256 * 50},
      {.width_el = 64, .rows = 25, .offset_bytes = 51200 + 12800, .size_bytes = 256 * 25},
      {.width_el = 64, .rows = 12, .offset_bytes = 64000 + 6400, .size_bytes = 256 * 12},
      {.width_el = 64, .rows = 6, .offset_bytes = 70400 + 3072, .size_bytes = 256 * 6},
      {.width_el = 64, .rows = 3, .offset_bytes = 73472 + 1536, .size_bytes = 256 * 3},
      {.width_el = 64, .rows = 1, .offset_bytes = 75008 + 768, .size_bytes = 256 * 1},
  };
  // 64 bytes / 4 = 16 elements at least on families 6 and 7.
  Chain chain67 = {.element_bytes = 4, .slice_pitch_bytes = 17 * 4096};  // 68544 + 64 = 68608
  chain67.images = {
      {.width_el = 128, .rows = 100, .offset_bytes = 0, .size_bytes = 512 * 100},
      {.width_el = 64, .rows = 50, .offset_bytes = 51200, .size_bytes = 256 * 50},
      {.width_el = 32, .rows = 25, .offset_bytes = 51200 + 12800, .size_bytes = 128 * 25},
      {.width_el = 16, .rows = 12, .offset_bytes = 64000 + 3200, .size_bytes = 64 * 12},
      {.width_el = 16, .rows = 6, .offset_bytes = 67200 + 768, .size_bytes = 64 * 6},
      {.width_el = 16, .rows = 3, .offset_bytes = 67968 + 384, .size_bytes = 64 * 3},
      {.width_el = 16, .rows = 1, .offset_bytes = 68352 + 192, .size_bytes = 64 * 1},
  };
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    const Chain& chain = family == 5 ? chain5 : chain67;
    expect_chains(gpu, {.levels = 7, .alignment_bytes = 64}, {.tiling_mode = kLinear},
                  {.chains = {chain}, .surface_bytes = chain.slice_pitch_bytes}, on_family(family));
  }
}

TEST(MultiLevel, LinearRowsOfAChainAreNeverPadded) {
  // 512 elements of 4 bytes, for which a single-level surface takes 768.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    Chain chain = {.element_bytes = 4, .slice_pitch_bytes = 2048 * 10};  // 5 pages
    chain.images = {
        {.width_el = 512, .rows = 10, .offset_bytes = 0, .size_bytes = 2048 * 10},
    };
    expect_chains(gpu, {.alignment_bytes = 64},
                  {.width_px = 500, .height_px = 10, .tiling_mode = kLinear},
                  {.chains = {chain}, .surface_bytes = 2048 * 10}, on_family(family));
  }
}

TEST(MultiLevel, FlagBuffersOfATiledChainStandInFront) {
  // 28, flags for 16 x 4 texels of 128 x 128: 8 x 32, 4 x 16, 2 x 8, each raised to 64 x 64 bytes.
  // Two slices of 12288 bytes of flags; two chains of 81920 behind them.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    Chain chain = {.element_bytes = 4, .slice_pitch_bytes = 81920, .flag_slice_pitch_bytes = 12288};
    chain.images = {
        {.width_el = 128, .rows = 112, .offset_bytes = 2 * 12288, .size_bytes = 512 * 112},
        {.width_el = 64, .rows = 64, .offset_bytes = 24576 + 57344, .size_bytes = 256 * 64},
        {.width_el = 64, .rows = 32, .offset_bytes = 81920 + 16384, .size_bytes = 256 * 32},
    };
    chain.flags = {
        {.offset_bytes = 0, .size_bytes = 4096, .pitch_bytes = 64},
        {.offset_bytes = 4096, .size_bytes = 4096, .pitch_bytes = 64},
        {.offset_bytes = 8192, .size_bytes = 4096, .pitch_bytes = 64},
    };
    expect_chains(gpu, {.levels = 3}, {.depth = 2, .flags = kUbwc},
                  {.chains = {chain}, .surface_bytes = 2 * (12288 + 81920)}, on_family(family));
  }
}

TEST(MultiLevel, FlagBuffersCoverThePowersOfTwoAbove) {
  // 1000 x 300 as 1024 x 300; the flags as 1024 x 512: 64 x 128, then 32 -> 64 x 64 and 64 x 64.
  // Flags 16384 a slice, 3 slices; images 4096 x 304, 2048 x 160, 1024 x 80: 404 pages a slice.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    Chain chain = {
        .element_bytes = 4, .slice_pitch_bytes = 404 * 4096, .flag_slice_pitch_bytes = 16384};
    chain.images = {
        {.width_el = 1024, .rows = 304, .offset_bytes = 3 * 16384, .size_bytes = 4096 * 304},
        {.width_el = 512, .rows = 160, .offset_bytes = 49152 + 1245184, .size_bytes = 2048 * 160},
        {.width_el = 256, .rows = 80, .offset_bytes = 1294336 + 327680, .size_bytes = 1024 * 80},
    };
    chain.flags = {
        {.offset_bytes = 0, .size_bytes = 8192, .pitch_bytes = 64},
        {.offset_bytes = 8192, .size_bytes = 4096, .pitch_bytes = 64},
        {.offset_bytes = 12288, .size_bytes = 4096, .pitch_bytes = 64},
    };
    expect_chains(gpu, {.levels = 3},
                  {.width_px = 1000, .height_px = 300, .depth = 3, .flags = kUbwc | kExtra},
                  {.chains = {chain},
                   .extra = Extra{.offset_bytes = 3 * (16384 + 1654784), .size_bytes = 3 * 8224},
                   .surface_bytes = 1231 * 4096},  // 5013504 + 24672 = 5038176 to pages
                  on_family(family));
  }
}

TEST(MultiLevel, FlagBuffersAboveTheMinimumShrinkByTheLevel) {
  // 16384 x 4096: 1024 x 1024, 512 x 512, 256 x 256, 128 x 128, 64 x 64 and 64 x 64 (32) bytes.
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  MemoryLayout record = record_of({.levels = 6});
  init(gpu, record, {.width_px = 16384, .height_px = 4096, .flags = kUbwc});
  constexpr uint32_t kPitches[] = {1024, 512, 256, 128, 64, 64};
  // The sums of the pitches' squares.
  constexpr uint64_t kOffsets[] = {0, 0x100000, 0x140000, 0x150000, 0x154000, 0x155000};
  for (std::size_t l = 0; l < 6; ++l) {
    const PlaneLayout& plane = record.level[l].plane[0];
    EXPECT_NUMBER(plane.flag_pitch, kPitches[l]) << l;
    EXPECT_NUMBER(plane.flag_size, uint64_t{kPitches[l]} * kPitches[l]) << l;
    EXPECT_NUMBER(plane.flag_offset, kOffsets[l]) << l;
    EXPECT_NUMBER(plane.flag_slice_pitch, 0x155000 + 64 * 64) << l;
  }
  EXPECT_NUMBER(record.level[0].plane[0].image_offset, 0x156000);
}

TEST(MultiLevel, StoredFlagSizesOfLevelsWithoutFlagBuffersAreSummed) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  MemoryLayout record = record_of({.levels = 3});
  record.level[0].plane[0].flag_size = 100;
  record.level[1].plane[0].flag_size = 0x100000000;
  record.level[2].plane[0].flag_size = 7;
  MemoryLayout expected = record;
  // 100 + 2^32 + 7 = 0x10000006B bytes of flags, up to 4096.
  constexpr uint64_t kStart = 0x100001000;
  Chain chain = {.element_bytes = 4, .slice_pitch_bytes = 81920, .flag_slice_pitch_bytes = kStart};
  chain.images = {
      {.width_el = 128, .rows = 112, .offset_bytes = kStart, .size_bytes = 512 * 112},
      {.width_el = 64, .rows = 64, .offset_bytes = kStart + 57344, .size_bytes = 256 * 64},
      {.width_el = 64, .rows = 32, .offset_bytes = kStart + 57344 + 16384, .size_bytes = 256 * 32},
  };
  chain.flags = {
      {.offset_bytes = 0},
      {.offset_bytes = 100},
      {.offset_bytes = 100 + 0x100000000},
  };
  put_chain(expected, {}, chain);
  put_extra(expected, std::nullopt);
  expected.total_size = kRecordBytes + kStart + 81920;
  init(gpu, record, {});
  expect_same_record(record, expected, "stored flag sizes");
}

TEST(MultiLevel, FlagBuffersOfALinearPlaneHaveNoPlace) {
  // They are counted and described, but their offset and slice pitch stay as they were, and no
  // bytes are set aside.
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  const ChainRequest request = {.tiling_mode = kLinear, .flags = kUbwc};
  MemoryLayout record = record_of({.levels = 2, .alignment_bytes = 64});
  MemoryLayout expected = record;
  Chain chain = {.element_bytes = 4, .slice_pitch_bytes = 16 * 4096};  // 51200 + 12800 to pages
  chain.images = {
      {.width_el = 128, .rows = 100, .offset_bytes = 0, .size_bytes = 512 * 100},
      {.width_el = 64, .rows = 50, .offset_bytes = 51200, .size_bytes = 256 * 50},
  };
  put_chain(expected, request, chain);
  for (std::size_t l = 0; l < 2; ++l) {
    // For 16 x 4 texels 8 x 32 and 4 x 16 bytes, each raised to 64 x 64.
    PlaneLayout& plane = expected.level[l].plane[0];
    plane.flag_valid = 1;
    plane.flag_size = 64 * 64;
    plane.flag_pitch = 64;
  }
  put_extra(expected, std::nullopt);
  expected.total_size = kRecordBytes + 16 * 4096;
  init(gpu, record, request);
  expect_same_record(record, expected, "linear, flags");
}

TEST(MultiLevel, TwoPlanesWithFlagBuffers) {
  // 103, 100 x 60 as 128 x 60. Plane 0 in 128 x 32 tiles: 128 x 64, 128 x 32. Plane 1 in 64 x 32:
  // 128 x 64, 64 x 32, whose 2048 bytes are a page. Flags of 64 x 64 bytes before each image; the
  // level's size is that of the last plane. A slice is 4096 + 8192 + 4096 + 4096 bytes.
  constexpr uint64_t kSlice = 20480;
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    for (const int32_t depth : {1, 3}) {
      const auto slices = static_cast<uint64_t>(depth);
      const uint64_t level0_bytes = slices * (4096 + 8192);
      const uint64_t level1_bytes = slices * (4096 + 4096);
      std::vector<Chain> chains;
      for (const uint32_t plane : {0U, 1U}) {
        // Plane 1 stands behind all slices of plane 0.
        const uint64_t start = plane * slices * kSlice;
        chains.push_back({.plane = plane,
                          .element_bytes = 1,
                          .slice_pitch_bytes = kSlice,
                          .flag_slice_pitch_bytes = kSlice});
        chains[plane].images = {
            {.width_el = 128,
             .rows = 64,
             .offset_bytes = start + 4096,
             .size_bytes = 128 * 64,
             .level_bytes = level0_bytes},
            {.width_el = plane == 0 ? 128U : 64U,
             .rows = 32,
             .offset_bytes = start + 12288 + 4096,
             .size_bytes = 4096,
             .level_bytes = level1_bytes},
        };
        chains[plane].flags = {
            {.offset_bytes = start, .size_bytes = 64 * 64, .pitch_bytes = 64},
            {.offset_bytes = start + 12288, .size_bytes = 64 * 64, .pitch_bytes = 64},
        };
      }
      expect_chains(gpu, {.levels = 2},
                    {.height_px = 60, .depth = depth, .format = 103, .flags = kUbwc, .planes = 2},
                    {.chains = chains, .surface_bytes = 2 * slices * kSlice}, on_family(family));
    }
  }
}

TEST(MultiLevel, TwoLinearPlanesWithFlagBuffers) {
  // 128 x 60 bytes in each plane, behind 64 x 64 bytes of flags: 4096 + 7680 = 11776 -> 3 pages.
  constexpr uint64_t kSlice = 3 * 4096;
  std::vector<Chain> chains;
  for (const uint32_t plane : {0U, 1U}) {
    const uint64_t start = plane * kSlice;
    chains.push_back({.plane = plane,
                      .element_bytes = 1,
                      .slice_pitch_bytes = kSlice,
                      .flag_slice_pitch_bytes = kSlice});
    chains[plane].images = {{.width_el = 128,
                             .rows = 60,
                             .offset_bytes = start + 4096,
                             .size_bytes = 128 * 60,
                             .level_bytes = 4096 + 7680}};
    chains[plane].flags = {{.offset_bytes = start, .size_bytes = 64 * 64, .pitch_bytes = 64}};
  }
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    expect_chains(
        gpu, {.alignment_bytes = 64},
        {.height_px = 60, .format = 103, .tiling_mode = kLinear, .flags = kUbwc, .planes = 2},
        {.chains = chains, .surface_bytes = 2 * kSlice}, on_family(family));
  }
}

TEST(MultiLevel, ThreePlanesWithoutFlagBuffers) {
  // 615, 100 x 40 as 128 x 40: 128 x 64 and 128 x 32 in each plane. The flag words stay.
  constexpr uint64_t kSlice = 128 * 64 + 128 * 32;  // 3 pages
  std::vector<Chain> chains;
  for (const uint32_t plane : {0U, 1U, 2U}) {
    const uint64_t start = plane * 2 * kSlice;  // behind both slices of the plane before
    chains.push_back({.plane = plane, .element_bytes = 1, .slice_pitch_bytes = kSlice});
    chains[plane].images = {
        {.width_el = 128, .rows = 64, .offset_bytes = start, .size_bytes = 128 * 64},
        {.width_el = 128, .rows = 32, .offset_bytes = start + 8192, .size_bytes = 128 * 32},
    };
  }
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    expect_chains(gpu, {.levels = 2},
                  {.height_px = 40, .depth = 2, .format = 615, .flags = kUbwc, .planes = 3},
                  {.chains = chains, .surface_bytes = 3 * 2 * kSlice}, on_family(family));
  }
}

TEST(MultiLevel, BlocksAreCountedAtEveryLevel) {
  // 100 x 100 as 128 x 100 texels: 32 x 25, 16 x 13, 8 x 7 blocks, 64 wide each.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    Chain chain = {.element_bytes = 8, .slice_pitch_bytes = 8 * 4096};  // 24576 + 8192
    chain.images = {
        {.width_el = 64, .rows = 32, .offset_bytes = 0, .size_bytes = 512 * 32},
        {.width_el = 64, .rows = 16, .offset_bytes = 16384, .size_bytes = 512 * 16},
        {.width_el = 64, .rows = 16, .offset_bytes = 16384 + 8192, .size_bytes = 512 * 16},
    };
    expect_chains(gpu, {.levels = 3}, {.format = 71, .flags = kUbwc},
                  {.chains = {chain}, .surface_bytes = 8 * 4096}, "tiled blocks");

    chain = {.element_bytes = 8, .slice_pitch_bytes = 6 * 4096};  // 19456 + 3584 to pages
    chain.images = {
        {.width_el = 64, .rows = 25, .offset_bytes = 0, .size_bytes = 512 * 25},
        {.width_el = 64, .rows = 13, .offset_bytes = 12800, .size_bytes = 512 * 13},
        {.width_el = 64, .rows = 7, .offset_bytes = 12800 + 6656, .size_bytes = 512 * 7},
    };
    expect_chains(gpu, {.levels = 3, .alignment_bytes = 64}, {.format = 71, .tiling_mode = kLinear},
                  {.chains = {chain}, .surface_bytes = 6 * 4096}, "linear blocks");
  }
}

TEST(MultiLevel, SamplesMultiplyTheElement) {
  // 28 x 4, 16 bytes: tiles of 16 x 16 (64 on family 5). 128 x 48, 64 x 32.
  for (const uint32_t family : kFamilies) {
    const harness::Gpu gpu(harness::full_chip(family).chip_id);
    // Flags for 4 x 4 texels of 128 x 64: 32 x 16 and 16 x 8, raised to 64 x 64.
    Chain chain = {
        .element_bytes = 16, .slice_pitch_bytes = 98304 + 32768, .flag_slice_pitch_bytes = 8192};
    chain.images = {
        {.width_el = 128, .rows = 48, .offset_bytes = 8192, .size_bytes = 2048 * 48},
        {.width_el = 64, .rows = 32, .offset_bytes = 8192 + 98304, .size_bytes = 1024 * 32},
    };
    chain.flags = {
        {.offset_bytes = 0, .size_bytes = 4096, .pitch_bytes = 64},
        {.offset_bytes = 4096, .size_bytes = 4096, .pitch_bytes = 64},
    };
    expect_chains(gpu, {.levels = 2}, {.height_px = 40, .samples = 4, .flags = kUbwc},
                  {.chains = {chain}, .surface_bytes = 8192 + 131072}, on_family(family));
  }
}

TEST(MultiLevel, ExtendedPadsEveryLevel) {
  for (const uint32_t family : {6u, 7u}) {
    const harness::ChipData& chip = chip_padded_by_two_units(family);
    const harness::Gpu gpu(chip.chip_id);
    // 128 x 100 and 64 x 50, each with 32 more: 160 x 132 and 96 x 82, in tiles of 64 x 16.
    Chain chain = {.element_bytes = 4, .slice_pitch_bytes = 110592 + 49152};
    chain.images = {
        {.width_el = 192, .rows = 144, .offset_bytes = 0, .size_bytes = 768 * 144},
        {.width_el = 128, .rows = 96, .offset_bytes = 110592, .size_bytes = 512 * 96},
    };
    expect_chains(gpu, {.levels = 2}, {.flags = kExtra | kExtended},
                  {.chains = {chain},
                   .extra = Extra{.offset_bytes = 159744, .size_bytes = 8224, .extended = 1},
                   .surface_bytes = 42 * 4096},  // 159744 + 8224 = 167968 to pages
                  on_family(family));
  }
}

TEST(MultiLevel, NoPlanesLeaveTheLevelWordsAlone) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  for (const uint32_t mode : {kLinear, kTiled}) {
    MemoryLayout record = record_of({.levels = 3});
    MemoryLayout expected = record;
    for (std::size_t l = 0; l < 3; ++l) {
      expected.level[l].lrz_valid = 0;
      expected.level[l].lrz_fc_valid = 0;
    }
    put_extra(expected, Extra{.size_bytes = 6 * 8224, .extended = 1});
    expected.total_size = kRecordBytes + 13 * 4096;  // 49344 to pages
    init(gpu, record,
         {.depth = 6, .tiling_mode = mode, .flags = kUbwc | kExtra | kExtended, .planes = 0});
    expect_same_record(record, expected, "no planes");
  }
}

TEST(MultiLevel, NoLevelsLeaveAllLevelsAlone) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  expect_chains(gpu, {.levels = 0, .record_bytes = 5472}, {.flags = kUbwc}, {}, "no levels");
}

TEST(MultiLevel, FifteenLevels) {
  // One-byte tiles of 128 x 32, 16384 x 16384: each level a quarter, down to one tile at level 7
  // (128 x 128 is 4 tiles) and from there on 64 x 64 (2), 32 x 32 (1) ...
  const harness::Gpu gpu(harness::full_chip(7).chip_id);
  MemoryLayout record = record_of({.levels = 15});
  init(gpu, record, {.width_px = 16384, .height_px = 16384, .format = 61});
  constexpr uint64_t kPages[] = {65536, 16384, 4096, 1024, 256, 64, 16, 4, 2, 1, 1, 1, 1, 1, 1};
  uint64_t offset = 0;
  for (std::size_t l = 0; l < 15; ++l) {
    EXPECT_NUMBER(record.level[l].plane[0].image_offset, offset) << l;
    EXPECT_NUMBER(record.level[l].plane[0].image_size, kPages[l] * 4096) << l;
    EXPECT_NUMBER(record.level[l].size, kPages[l] * 4096) << l;
    EXPECT_NUMBER(record.level[l].lrz_valid, 0) << l;
    offset += kPages[l] * 4096;
  }
  EXPECT_NUMBER(record.total_size, 5512 + offset);
}

TEST(MultiLevel, ExtentsBelowOne) {
  // The width is rounded up to 64 first: 1 is 64, and 0, as what wraps to 0, is 1 in the end.
  // Linear rows of 4-byte elements then take 64 bytes, 16 elements, at least. Heights count as
  // signed.
  harness::Gpu gpu(harness::full_chip(6).chip_id);
  struct Row {
    uint32_t width_px;
    uint32_t height_px;
    uint32_t width_el;
    uint32_t rows;
  };
  for (const Row& row :
       {Row{.width_px = 1, .height_px = 1, .width_el = 64, .rows = 1},
        Row{.width_px = 0, .height_px = 0, .width_el = 16, .rows = 1},
        Row{.width_px = 0xFFFFFFFF, .height_px = 0x80000000, .width_el = 16, .rows = 1},
        Row{.width_px = 0xFFFFFFC0, .height_px = 5, .width_el = 16, .rows = 5},
        Row{.width_px = 0x80000000, .height_px = 0xFFFFFFFF, .width_el = 16, .rows = 1},
        Row{.width_px = 65, .height_px = 2, .width_el = 128, .rows = 2}}) {
    MemoryLayout record = record_of({.alignment_bytes = 64});
    init(gpu, record,
         {.width_px = row.width_px, .height_px = row.height_px, .tiling_mode = kLinear});
    EXPECT_NUMBER(record.level[0].plane[0].image_width, row.width_el) << row.width_px;
    EXPECT_NUMBER(record.level[0].plane[0].image_height, row.rows) << row.height_px;
  }
  EXPECT_TRUE(gpu.take_messages().empty());
}

TEST(MultiLevel, NegativeDepthWraps) {
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  constexpr auto kLevelBytes = static_cast<uint64_t>(-57344);
  Chain chain = {.element_bytes = 4, .slice_pitch_bytes = 57344};
  chain.images = {{.width_el = 128,
                   .rows = 112,
                   .offset_bytes = 0,
                   .size_bytes = 512 * 112,
                   .level_bytes = kLevelBytes}};
  expect_chains(
      gpu, {}, {.depth = -1, .flags = kExtra},
      {.chains = {chain},
       .extra = Extra{.offset_bytes = kLevelBytes, .size_bytes = static_cast<uint64_t>(-8224)},
       // -57344 - 8224 = -65568 up to pages
       .surface_bytes = static_cast<uint64_t>(-16 * 4096)},
      "depth -1");
}

TEST(MultiLevel, TotalsHave64Bits) {
  // 2048 x 2048 and 1024 x 1024 texels of 4 bytes: 2^24 and 2^22 bytes a slice. 2^11 slices.
  const harness::Gpu gpu(harness::full_chip(6).chip_id);
  MemoryLayout record = record_of({.levels = 2});
  init(gpu, record, {.width_px = 2048, .height_px = 2048, .depth = 2048});
  EXPECT_NUMBER(record.level[0].size, uint64_t{1} << 35);
  EXPECT_NUMBER(record.level[1].size, uint64_t{1} << 33);
  EXPECT_NUMBER(record.level[0].plane[0].image_slice_pitch, 0x1000000 + 0x400000);
  EXPECT_NUMBER(record.total_size, kRecordBytes + (uint64_t{1} << 35) + (uint64_t{1} << 33));
}

// ---- Chips that lack a property -----------------------------------------------------------------

TEST(MultiLevel, WithoutAMinimumExtentFlagBuffersAreNotRaised) {
  // 8 x 32, 4 x 16, 2 x 8: 256 + 64 + 16 bytes, a page.
  const harness::Gpu gpu(chip_lacking(&Columns::min_level_extent).chip_id);
  Chain chain = {.element_bytes = 4, .slice_pitch_bytes = 81920, .flag_slice_pitch_bytes = 4096};
  chain.images = {
      {.width_el = 128, .rows = 112, .offset_bytes = 4096, .size_bytes = 512 * 112},
      {.width_el = 64, .rows = 64, .offset_bytes = 4096 + 57344, .size_bytes = 256 * 64},
      {.width_el = 64, .rows = 32, .offset_bytes = 61440 + 16384, .size_bytes = 256 * 32},
  };
  chain.flags = {
      {.offset_bytes = 0, .size_bytes = 8 * 32, .pitch_bytes = 8},
      {.offset_bytes = 256, .size_bytes = 4 * 16, .pitch_bytes = 4},
      {.offset_bytes = 256 + 64, .size_bytes = 2 * 8, .pitch_bytes = 2},
  };
  expect_chains(gpu, {.levels = 3}, {.flags = kUbwc},
                {.chains = {chain}, .surface_bytes = 4096 + 81920}, "no minimum extent");

  // One byte and one row at least: 8 and 32, shifted.
  MemoryLayout record = record_of({.levels = 8});
  init(gpu, record, {.flags = kUbwc});
  constexpr uint32_t kPitches[] = {8, 4, 2, 1, 1, 1, 1, 1};
  constexpr uint64_t kSizes[] = {8 * 32, 4 * 16, 2 * 8, 1 * 4, 1 * 2, 1, 1, 1};
  for (std::size_t l = 0; l < 8; ++l) {
    EXPECT_NUMBER(record.level[l].plane[0].flag_pitch, kPitches[l]) << l;
    EXPECT_NUMBER(record.level[l].plane[0].flag_size, kSizes[l]) << l;
  }
}

TEST(MultiLevel, WithoutALevelOffsetAlignmentImagesStartAtZero) {
  // The chain starts at 0 rounded from what the flag buffers take, over them.
  const harness::Gpu gpu(chip_lacking(&Columns::level_offset_alignment).chip_id);
  Chain chain = {.element_bytes = 4, .slice_pitch_bytes = 57344, .flag_slice_pitch_bytes = 4096};
  chain.images = {
      {.width_el = 128, .rows = 112, .offset_bytes = 0, .size_bytes = 512 * 112},
  };
  chain.flags = {
      {.offset_bytes = 0, .size_bytes = 4096, .pitch_bytes = 64},
  };
  expect_chains(gpu, {}, {.flags = kUbwc}, {.chains = {chain}, .surface_bytes = 57344},
                "no level offset alignment");
}

TEST(MultiLevel, WithoutALevelSizeAlignmentTheFlagAreaIsEmpty) {
  const harness::Gpu gpu(chip_lacking(&Columns::level_size_alignment).chip_id);
  Chain chain = {.element_bytes = 4, .slice_pitch_bytes = 57344 + 16384};
  chain.images = {
      {.width_el = 128, .rows = 112, .offset_bytes = 0, .size_bytes = 512 * 112},
      {.width_el = 64, .rows = 64, .offset_bytes = 57344, .size_bytes = 256 * 64},
  };
  chain.flags = {
      {.offset_bytes = 0, .size_bytes = 4096, .pitch_bytes = 64},
      {.offset_bytes = 4096, .size_bytes = 4096, .pitch_bytes = 64},
  };
  expect_chains(gpu, {.levels = 2}, {.flags = kUbwc}, {.chains = {chain}, .surface_bytes = 73728},
                "no level size alignment");
}

TEST(MultiLevel, WithoutABaseAlignmentChainsHaveNoSlicePitch) {
  const harness::Gpu gpu(chip_lacking(&Columns::base_alignment).chip_id);
  Chain chain = {.element_bytes = 4, .slice_pitch_bytes = 0};
  chain.images = {
      {.width_el = 128, .rows = 112, .offset_bytes = 0, .size_bytes = 512 * 112},
      {.width_el = 64, .rows = 64, .offset_bytes = 57344, .size_bytes = 256 * 64},
  };
  expect_chains(gpu, {.levels = 2}, {.depth = 2}, {.chains = {chain}}, "no base alignment");
}

TEST(MultiLevel, WithoutALinearAlignmentLinearImagesTakeNoBytes) {
  const harness::Gpu gpu(chip_lacking(&Columns::linear_alignment, 6).chip_id);
  Chain chain = {.element_bytes = 4, .slice_pitch_bytes = 0};
  chain.images = {
      {.width_el = 128, .rows = 100, .offset_bytes = 0, .size_bytes = 0},
  };
  expect_chains(gpu, {.alignment_bytes = 64}, {.tiling_mode = kLinear}, {.chains = {chain}},
                "no linear alignment");
}

TEST(MultiLevel, WithoutATiledAlignmentImagesAreNotRounded) {
  // 3-byte elements on family 5: rows of 64 elements, 192 bytes; 16 of them 3072 bytes, no page.
  const harness::Gpu gpu(
      harness::chip_where("of family 5 without tiled alignment", [](const harness::ChipData& c) {
        return c.family_id == 5 && c.supported && !c.columns.tiled_alignment &&
               c.columns.base_alignment && c.columns.level_offset_alignment;
      }).chip_id);
  MemoryLayout record = record_of({.levels = 2});
  init(gpu, record, {.width_px = 64, .height_px = 16, .format = 508});
  EXPECT_NUMBER(record.level[0].plane[0].image_size, 3072);
  EXPECT_NUMBER(record.level[1].plane[0].image_offset, 3072);
  EXPECT_NUMBER(record.level[1].plane[0].image_size, 3072);
  EXPECT_NUMBER(record.level[0].plane[0].image_slice_pitch, 8192);  // 2 x 3072 to pages
}

TEST(MultiLevel, AnUnknownChipIsReportedForEveryImage) {
  harness::Gpu gpu(harness::kUnknownChip);
  // Sizes as they are, images rounded to 1, everything else to 0.
  Chain chain = {.element_bytes = 4, .slice_pitch_bytes = 0};
  chain.images = {
      {.width_el = 128, .rows = 100, .offset_bytes = 0, .size_bytes = 512 * 100},
      {.width_el = 64, .rows = 50, .offset_bytes = 51200, .size_bytes = 256 * 50},
  };
  expect_chains(gpu, {.levels = 2}, {.flags = kUbwc}, {.chains = {chain}}, "unknown chip");
  std::vector<harness::Message> messages = harness::unknown_chip_messages(harness::kUnknownChip);
  messages.insert(messages.end(), 2,
                  message("compute_fmt_aligned_width_and_height_fdm", "Unknown Chip ID 305419896"));
  EXPECT_EQ(gpu.take_messages(), messages);
}

TEST(MultiLevel, MessagesComeLevelByLevel) {
  harness::Gpu gpu(harness::kUnknownChip);
  MemoryLayout record = record_of({.levels = 2});
  // BC1: 2^31 - 1 rows and the rest of a block wrap below 0; level 1 is half as high.
  init(gpu, record, {.width_px = 64, .height_px = 0x7FFFFFFF, .format = 71, .planes = 2});
  constexpr const char* kName = "compute_fmt_aligned_width_and_height_fdm";
  const harness::Message wrapped =
      message(kName, "Invalid width or height: W = 16, H = -536870911");
  const harness::Message unknown = message(kName, "Unknown Chip ID 305419896");
  std::vector<harness::Message> messages = harness::unknown_chip_messages(harness::kUnknownChip);
  messages.insert(messages.end(), {wrapped, wrapped, unknown, unknown});
  EXPECT_EQ(gpu.take_messages(), messages);
}

TEST(MultiLevelDeathTest, DivisionsBy0) {
  const uint32_t chip5 = harness::full_chip(5).chip_id;
  const uint32_t chip6 = harness::full_chip(6).chip_id;
  // Linear elements of 0 bytes are the divisor on families 6 and 7 (family 5 takes none).
  EXPECT_DIVISION_FAULT({
    const harness::Gpu gpu(chip6);
    MemoryLayout record = record_of({});
    init(gpu, record, {.samples = 0, .tiling_mode = kLinear});
  });
  {
    const harness::Gpu gpu(chip5);
    MemoryLayout record = record_of({});
    init(gpu, record, {.samples = 0, .tiling_mode = kLinear});
    EXPECT_NUMBER(record.level[0].plane[0].image_width, 128);
    EXPECT_NUMBER(record.level[0].plane[0].image_size, 0);
  }
  EXPECT_DIVISION_FAULT({  // a tiled plane that the format lacks
    const harness::Gpu gpu(chip5);
    MemoryLayout record = record_of({});
    init(gpu, record, {.planes = 2});
  });
  EXPECT_DIVISION_FAULT({  // a flag buffer without a sample tile
    const harness::Gpu gpu(chip6);
    MemoryLayout record = record_of({});
    init(gpu, record, {.format = 619, .flags = kUbwc, .planes = 2});
  });
}

TEST(MultiLevelDeathTest, WithoutLevelsNoFlagBufferIsDividedIntoTiles) {
  // 16 samples have no sample tile on families 6 and 7: the first level's flag buffer divides by 0.
  for (const uint32_t family : {6U, 7U}) {
    const uint32_t chip = harness::full_chip(family).chip_id;
    const ChainRequest request = {.samples = 16, .flags = kUbwc};
    EXPECT_DIVISION_FAULT({
      const harness::Gpu gpu(chip);
      MemoryLayout record = record_of({.levels = 1});
      init(gpu, record, request);
    });
    const harness::Gpu gpu(chip);
    expect_chains(gpu, {.levels = 0}, request, {}, on_family(family));
  }
}

}  // namespace
}  // namespace layout_test
