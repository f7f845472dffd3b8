// The entries about formats as calls with named arguments.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "tests/harness/gpu.h"
#include "tests/harness/numbers.h"

namespace formats_test {

// Formats that stand for their kind.
inline constexpr uint32_t kRgba8 = 28;    // 4 bytes of colour
inline constexpr uint32_t kRgb8 = 508;    // 3 bytes of colour
inline constexpr uint32_t kDepth32 = 40;  // 4 bytes of depth
inline constexpr uint32_t kSharedExponent = 67;
inline constexpr uint32_t kBc1 = 71;         // blocks of 4 x 4 texels and 8 bytes
inline constexpr uint32_t kAstc12x12 = 185;  // blocks of 12 x 12 texels and 16 bytes
inline constexpr uint32_t kBlocks3x3 = 626;  // blocks of 3 x 3 texels and 16 bytes

// ---- Predicates ---------------------------------------------------------------------------------

struct RenderableRequest {
  int32_t format = kRgba8;
  int32_t depth_stencil_use = 0;
};

inline uint32_t renderable(const harness::Library& library, const RenderableRequest& r) {
  return library.isFormatRenderableByGpu(r.format, r.depth_stencil_use);
}

struct SampleableRequest {
  int32_t format = kRgba8;
  uint32_t sample_count = 1;
  int32_t depth_stencil_view = 0;
};

inline uint32_t sampleable(const harness::Library& library, const SampleableRequest& r) {
  return library.isFormatSampleableByGpu(r.format, r.sample_count, r.depth_stencil_view);
}

// ---- Sizes in blocks ----------------------------------------------------------------------------

// In every output before the call.
inline constexpr uint32_t kCanary = 0xCACACACA;

struct BlockSize {
  uint32_t width_blocks = kCanary;
  uint32_t height_blocks = kCanary;
  uint32_t block_bytes = kCanary;

  friend std::vector<harness::NamedNumber> numbers_of(const BlockSize& size) {
    return {{"width_blocks", size.width_blocks},
            {"height_blocks", size.height_blocks},
            {"block_bytes", size.block_bytes}};
  }
};

struct BlockSizeRequest {
  int32_t width_texels = 100;
  int32_t height_texels = 30;
  uint32_t format = kBc1;
  uint64_t unread_1 = 0;
  uint64_t unread_2 = 0;
  uint64_t unread_3 = 0;
};

inline std::string describe(const BlockSizeRequest& r) {
  std::ostringstream text;
  text << r.width_texels << " x " << r.height_texels << " texels of format " << r.format;
  return text.str();
}

struct BlockSizeOutputs {
  uint32_t* width_blocks;
  uint32_t* height_blocks;
  uint32_t* block_bytes;
};

inline void store_size_in_blocks(const harness::Library& library, const BlockSizeRequest& r,
                                 const BlockSizeOutputs& outputs) {
  library.compute_compressedfmt_aligned_width_and_height(
      r.width_texels, r.height_texels, r.format, r.unread_1, r.unread_2, r.unread_3,
      outputs.width_blocks, outputs.height_blocks, outputs.block_bytes);
}

inline BlockSize size_in_blocks(const harness::Library& library, const BlockSizeRequest& r) {
  BlockSize size;
  store_size_in_blocks(library, r,
                       {.width_blocks = &size.width_blocks,
                        .height_blocks = &size.height_blocks,
                        .block_bytes = &size.block_bytes});
  return size;
}

inline uint32_t renderable(const harness::Gpu& gpu, const RenderableRequest& r) {
  return renderable(gpu.library(), r);
}
inline uint32_t sampleable(const harness::Gpu& gpu, const SampleableRequest& r) {
  return sampleable(gpu.library(), r);
}
inline BlockSize size_in_blocks(const harness::Gpu& gpu, const BlockSizeRequest& r) {
  return size_in_blocks(gpu.library(), r);
}

}  // namespace formats_test
