// Requests for layouts, as the tests make them.
#pragma once

#include <cstdint>
#include <string>

#include "tests/harness/gpu.h"

namespace layout_test {

constexpr uint32_t kLinear = KORVEL_TILING_LINEAR;
constexpr uint32_t kTiled = KORVEL_TILING_TILED;
constexpr uint64_t kUbwc = LAYOUT_FLAG_UBWC;
constexpr uint64_t kExtra = LAYOUT_FLAG_EXTRA;
constexpr uint64_t kExtended = LAYOUT_FLAG_EXTENDED;
constexpr uint32_t kFourCC = 0x37425857;

inline constexpr uint32_t kFamilies[] = {5, 6, 7};

inline std::string on_family(uint32_t family) {
  return "family " + std::to_string(family);
}

struct Request {
  int32_t width_px = 100;
  int32_t height_px = 50;
  int32_t depth = 1;
  uint32_t format = 28;  // 4 bytes an element
  uint32_t samples = 1;
  uint32_t tiling_mode = kTiled;
  uint64_t flags = 0;
  uint32_t planes = 1;
};

inline uint32_t init_layout(const harness::Gpu& gpu, void* blob, const Request& r) {
  return gpu->korvel_init_memory_layout(blob, r.width_px, r.height_px, r.depth, r.format, r.samples,
                                        r.tiling_mode, r.flags, r.planes);
}

inline void init_single_level(const harness::Gpu& gpu, MemoryLayout& record, const Request& r) {
  gpu->korvel_init_single_level_surface(&record, r.width_px, r.height_px, r.depth, r.format,
                                        r.samples, r.tiling_mode, r.flags, r.planes);
}

inline void init_multi_level(const harness::Gpu& gpu, MemoryLayout& record, const Request& r) {
  gpu->korvel_init_multi_level_surface(&record, static_cast<uint32_t>(r.width_px),
                                       static_cast<uint32_t>(r.height_px), r.depth, r.format,
                                       r.samples, r.tiling_mode, r.flags, r.planes);
}

}  // namespace layout_test
