// Every export that depends on the GPU, as a call that any chip can answer without a fault.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tests/align/align_calls.h"
#include "tests/formats/format_calls.h"
#include "tests/harness/gpu.h"

namespace identify_test {

struct GpuEntry {
  const char* name;
  void (*call)(const harness::Library& library);
  // What the call reports on a chip without a row, beyond the identification: under each of these
  // names the chip's id, or else the family.
  std::vector<const char*> chip_reporters;
  bool reports_family = false;
  // How often one call asks for the GPU while it stays unidentified.
  int questions = 1;
};

inline constexpr uint32_t kRgba8 = formats_test::kRgba8;
inline constexpr uint32_t kTiled = 1;

// The arguments of the three entries that lay surfaces out, and what they are where a test does not
// say.
struct LayoutRequest {
  int32_t width_px = 100;
  int32_t height_px = 30;
  int32_t depth = 1;
  uint32_t format = kRgba8;
  uint32_t samples = 1;
  uint32_t tiling_mode = kTiled;
  uint64_t flags = 0;
  uint32_t planes = 1;
};

inline uint32_t init_layout(const harness::Library& library, void* blob, const LayoutRequest& r) {
  return library.korvel_init_memory_layout(blob, r.width_px, r.height_px, r.depth, r.format,
                                           r.samples, r.tiling_mode, r.flags, r.planes);
}

inline void init_single_level(const harness::Library& library, MemoryLayout& record,
                              const LayoutRequest& r) {
  library.korvel_init_single_level_surface(&record, r.width_px, r.height_px, r.depth, r.format,
                                           r.samples, r.tiling_mode, r.flags, r.planes);
}

inline void init_multi_level(const harness::Library& library, MemoryLayout& record,
                             const LayoutRequest& r) {
  library.korvel_init_multi_level_surface(&record, static_cast<uint32_t>(r.width_px),
                                          static_cast<uint32_t>(r.height_px), r.depth, r.format,
                                          r.samples, r.tiling_mode, r.flags, r.planes);
}

// What the alignment entries are asked where only that they are asked matters.
inline constexpr align_test::Request kSomeSize = {
    .width_el = 100, .height_rows = 30, .format = kRgba8};
inline constexpr align_test::Request kNegativeWidth = {.width_el = -1, .format = kRgba8};

namespace calls {

inline void get_gpu_pixel_alignment(const harness::Library& library) {
  library.get_gpu_pixel_alignment();
}

inline void get_slice_pitch_alignment(const harness::Library& library) {
  library.get_slice_pitch_alignment(kTiled);
}

inline void isFormatRenderableByGpu(const harness::Library& library) {
  formats_test::renderable(library, {.format = kRgba8});
}

inline void isFormatSampleableByGpu(const harness::Library& library) {
  formats_test::sampleable(library, {.format = kRgba8});
}

inline void isUBWCSupportedByGpu(const harness::Library& library) {
  library.isUBWCSupportedByGpu(kRgba8);
}

inline void compute_compressedfmt_aligned_width_and_height(const harness::Library& library) {
  formats_test::size_in_blocks(
      library, {.width_texels = 100, .height_texels = 30, .format = formats_test::kBc1});
}

inline void compute_aligned_width_and_height(const harness::Library& library) {
  align_test::basic(library, {.width_px = 100, .height_px = 30});
}

inline void compute_surface_padding(const harness::Library& library) {
  align_test::surface_padding(library, {.width_px = 100});
}

inline void compute_fmt_aligned_width_and_height(const harness::Library& library) {
  align_test::full(library, kSomeSize);
}

inline void compute_fmt_minimal_aligned_width_and_height(const harness::Library& library) {
  align_test::minimal(library, kSomeSize);
}

inline void compute_fmt_aligned_width_and_height_in_bytes(const harness::Library& library) {
  align_test::in_bytes(library, kSomeSize);
}

inline void compute_fmt_aligned_width_and_height_fdm(const harness::Library& library) {
  align_test::fdm(library, kSomeSize);
}

inline void korvel_init_memory_layout(const harness::Library& library) {
  LayoutMetadata blob{};
  init_layout(library, &blob, {});
}

inline void korvel_init_single_level_surface(const harness::Library& library) {
  MemoryLayout record{};
  record.levels = 1;
  init_single_level(library, record, {});
}

inline void korvel_init_multi_level_surface(const harness::Library& library) {
  MemoryLayout record{};
  record.levels = 1;
  init_multi_level(library, record, {});
}

}  // namespace calls

inline const std::vector<GpuEntry>& gpu_entries() {
  constexpr const char* kFdm = "compute_fmt_aligned_width_and_height_fdm";
  constexpr const char* kFull = "compute_fmt_aligned_width_and_height";
  constexpr const char* kMinimal = "compute_fmt_minimal_aligned_width_and_height";
  constexpr const char* kPlain = "compute_aligned_width_and_height";
#define CALL(name) #name, calls::name
  static const std::vector<GpuEntry> entries = {
      {CALL(get_gpu_pixel_alignment), {}},
      {CALL(get_slice_pitch_alignment), {}, false, 2},
      {CALL(isFormatRenderableByGpu), {"isFormatRenderableByGpu"}, true},
      {CALL(isFormatSampleableByGpu), {"isFormatSampleableByGpu"}, true},
      {CALL(isUBWCSupportedByGpu), {}},
      {CALL(compute_compressedfmt_aligned_width_and_height), {}},
      {CALL(compute_aligned_width_and_height), {kPlain}},
      {CALL(compute_surface_padding), {kPlain}},
      {CALL(compute_fmt_aligned_width_and_height), {kFull}},
      {CALL(compute_fmt_minimal_aligned_width_and_height), {kMinimal}},
      {CALL(compute_fmt_aligned_width_and_height_in_bytes), {kMinimal, kFull}},
      {CALL(compute_fmt_aligned_width_and_height_fdm), {kFdm}},
      {CALL(korvel_init_memory_layout), {kFdm}},
      {CALL(korvel_init_single_level_surface), {kFdm}},
      {CALL(korvel_init_multi_level_surface), {kFdm}},
  };
#undef CALL
  return entries;
}

// What the entry reports on a chip without a row once the chip is identified. `chip_id` is printed
// as a signed number.
inline std::vector<harness::Message> own_messages(const GpuEntry& entry, uint32_t chip_id) {
  const std::string text = entry.reports_family
                               ? "Unknown Family ID 0"
                               : "Unknown Chip ID " + std::to_string(static_cast<int32_t>(chip_id));
  std::vector<harness::Message> messages;
  for (const char* reporter : entry.chip_reporters) {
    messages.push_back(harness::message(reporter, text));
  }
  return messages;
}

inline std::vector<harness::Message> joined(std::vector<harness::Message> first,
                                            const std::vector<harness::Message>& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// What one question brings, as often as it is asked.
template <typename T>
std::vector<T> repeated(int times, const std::vector<T>& once) {
  std::vector<T> all;
  for (int i = 0; i < times; ++i) all.insert(all.end(), once.begin(), once.end());
  return all;
}

// Calls to the services in every outcome of an identification.
inline const std::vector<std::string> kWholeQuery = {
    "hxl_library_open(0)", "hxl_device_open(1, 0)", "hxl_device_getinfo(device)",
    "hxl_device_close(device)", "hxl_library_close()"};
inline const std::vector<std::string> kQueryWithoutDevice = {
    "hxl_library_open(0)", "hxl_device_open(1, 0)", "hxl_library_close()"};
inline const std::vector<std::string> kQueryWithoutLibrary = {"hxl_library_open(0)"};

}  // namespace identify_test
