#include "bench/cases.h"

#include <korvel_utils.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "bench/floors.h"
#include "simulator/hxl_sim.h"
#include "tests/records/valid_record.h"

namespace bench {
namespace {

// DXGI numbers.
constexpr uint32_t kR8G8B8A8Unorm = 28;
constexpr uint32_t kD32Float = 40;
constexpr uint32_t kBc1Unorm = 71;
constexpr uint32_t kNv12 = 103;

constexpr uint32_t kChip = HXL_SIM_DEFAULT_CHIP;

LayoutMetadata blob;
MemoryLayout surface;
MemoryLayout chain;
MemoryLayout full_record;
SurfaceMetadata full_surface;
uint8_t device_uuid[KORVEL_UUID_BYTES];
uint8_t driver_uuid[KORVEL_UUID_BYTES];
uint8_t other_uuid[KORVEL_UUID_BYTES];
char text[64];
uint32_t out_width;
uint32_t out_height;
uint32_t out_bytes;
volatile uint64_t sink;

harness::Library library;

void lay_out(uint32_t format, uint32_t samples, uint32_t tiling_mode, uint64_t flags,
             uint32_t planes) {
  sink = library.korvel_init_memory_layout(&blob, 1920, 1080, 1, format, samples, tiling_mode,
                                           flags, planes);
}

void lay_out_surface(uint32_t format) {
  surface.levels = 1;
  surface.alignment = 4096;
  surface.size = sizeof surface;
  library.korvel_init_single_level_surface(&surface, 1920, 1080, 1, format, 1, KORVEL_TILING_TILED,
                                           0, 1);
}

void lay_out_chain(uint32_t levels, uint64_t flags) {
  chain.levels = levels;
  chain.alignment = 4096;
  chain.size = sizeof chain;
  library.korvel_init_multi_level_surface(&chain, 2048, 2048, 1, kR8G8B8A8Unorm, 1,
                                          KORVEL_TILING_TILED, flags, 1);
}

// Formats in an order that no branch predictor learns: used ids, unused ones, and some beyond all.
constexpr uint32_t kFormatsToMix = 730;
std::vector<uint16_t> mixed_formats;

uint32_t next_format() {
  static std::size_t next = 0;
  if (next == mixed_formats.size()) next = 0;
  return mixed_formats[next++];
}

uint32_t next_format_of_the_table() {
  constexpr uint32_t kLastFormat = 721;
  return next_format() % kLastFormat + 1;
}

void mix_formats(std::size_t count) {
  std::mt19937 random(1);  // the same order in every run
  mixed_formats.resize(count);
  for (uint16_t& format : mixed_formats) format = static_cast<uint16_t>(random() % kFormatsToMix);
}

uint8_t floor_table[kFormatsToMix];
LayoutMetadata floor_blob;
MemoryLayout floor_chain;

#define LAYOUT "korvel_init_memory_layout"
#define CHAIN "korvel_init_multi_level_surface"

constexpr Case kCases[] = {
    {"nothing", nullptr, nullptr, [] {}},
    {"layout/r8g8b8a8 tiled", LAYOUT, "floor/layout", [] { lay_out(kR8G8B8A8Unorm, 1, 1, 0, 1); }},
    {"layout/r8g8b8a8 linear", LAYOUT, "floor/layout", [] { lay_out(kR8G8B8A8Unorm, 1, 0, 0, 1); }},
    {"layout/r8g8b8a8 tiled ubwc", LAYOUT, "floor/layout",
     [] { lay_out(kR8G8B8A8Unorm, 1, 1, LAYOUT_FLAG_UBWC, 1); }},
    {"layout/nv12 tiled ubwc", LAYOUT, "floor/layout",
     [] { lay_out(kNv12, 1, 1, LAYOUT_FLAG_UBWC, 2); }},
    {"layout/bc1 tiled", LAYOUT, "floor/layout", [] { lay_out(kBc1Unorm, 1, 1, 0, 1); }},
    {"layout/d32 4 samples", LAYOUT, "floor/layout", [] { lay_out(kD32Float, 4, 1, 0, 1); }},
    {"layout/random format", LAYOUT, "floor/layout",
     [] { lay_out(next_format_of_the_table(), 1, 1, 0, 1); }},
    {"surface/r8g8b8a8 tiled", "korvel_init_single_level_surface", nullptr,
     [] { lay_out_surface(kR8G8B8A8Unorm); }},
    {"chain/11 levels", CHAIN, "floor/chain 11", [] { lay_out_chain(11, 0); }},
    {"chain/12 levels", CHAIN, "floor/chain 12", [] { lay_out_chain(12, 0); }},
    {"chain/12 levels ubwc", CHAIN, "floor/chain 12", [] { lay_out_chain(12, LAYOUT_FLAG_UBWC); }},
    {"predicate/renderable", "isFormatRenderableByGpu", "floor/look-up",
     [] { sink = library.isFormatRenderableByGpu(kR8G8B8A8Unorm, 0); }},
    {"predicate/renderable random", "isFormatRenderableByGpu", "floor/look-up random",
     [] { sink = library.isFormatRenderableByGpu(static_cast<int32_t>(next_format()), 0); }},
    {"predicate/sampleable", "isFormatSampleableByGpu", "floor/look-up",
     [] { sink = library.isFormatSampleableByGpu(kR8G8B8A8Unorm, 1, 0); }},
    {"predicate/sampleable random", "isFormatSampleableByGpu", "floor/look-up random",
     [] { sink = library.isFormatSampleableByGpu(static_cast<int32_t>(next_format()), 1, 0); }},
    {"predicate/ubwc", "isUBWCSupportedByGpu", "floor/look-up",
     [] { sink = library.isUBWCSupportedByGpu(kR8G8B8A8Unorm); }},
    {"predicate/ubwc random", "isUBWCSupportedByGpu", "floor/look-up random",
     [] { sink = library.isUBWCSupportedByGpu(next_format()); }},
    {"validate/layout 15 x 3", "validate_resource_memory_layout_metadata", "floor/read layout",
     [] {
       sink =
           library.validate_resource_memory_layout_metadata(&full_record, device_uuid, driver_uuid);
     }},
    {"validate/surface 15 x 3", "validate_surface_metadata", "floor/read surface",
     [] { sink = library.validate_surface_metadata(&full_surface, device_uuid, driver_uuid); }},
    {"align/full tiled", "compute_fmt_aligned_width_and_height", nullptr,
     [] {
       library.compute_fmt_aligned_width_and_height(1920, 1080, 0, kR8G8B8A8Unorm, 1, 1, 0, 512,
                                                    &out_width, &out_height);
     }},
    {"align/full linear", "compute_fmt_aligned_width_and_height", nullptr,
     [] {
       library.compute_fmt_aligned_width_and_height(1920, 1080, 0, kR8G8B8A8Unorm, 1, 0, 0, 512,
                                                    &out_width, &out_height);
     }},
    {"align/fdm tiled", "compute_fmt_aligned_width_and_height_fdm", nullptr,
     [] {
       library.compute_fmt_aligned_width_and_height_fdm(1920, 1080, 0, kR8G8B8A8Unorm, 1, 1, 2, 512,
                                                        1, 0, &out_width, &out_height);
     }},
    {"align/minimal linear", "compute_fmt_minimal_aligned_width_and_height", nullptr,
     [] {
       library.compute_fmt_minimal_aligned_width_and_height(1920, 1080, 0, kR8G8B8A8Unorm, 1, 0, 1,
                                                            1, 512, 4, 0, &out_width, &out_height);
     }},
    {"align/in bytes", "compute_fmt_aligned_width_and_height_in_bytes", nullptr,
     [] {
       uint32_t tiling_mode = 1;
       const AlignInBytesParams params = {1920, 1080, 0, kR8G8B8A8Unorm, 1, 1, 512, &tiling_mode};
       const AlignInBytesResult result = {&out_bytes, &out_width, &out_height};
       library.compute_fmt_aligned_width_and_height_in_bytes(&params, &result);
     }},
    {"align/basic", "compute_aligned_width_and_height", nullptr,
     [] {
       library.compute_aligned_width_and_height(1920, 1080, 0, 0, 0, 0, &out_width, &out_height);
     }},
    {"align/surface padding", "compute_surface_padding", nullptr,
     [] { sink = library.compute_surface_padding(1920, 0, 1, 0, 0); }},
    {"align/compressed", "compute_compressedfmt_aligned_width_and_height", nullptr,
     [] {
       library.compute_compressedfmt_aligned_width_and_height(1920, 1080, kBc1Unorm, 0, 0, 0,
                                                              &out_width, &out_height, &out_bytes);
     }},
    {"align/pixel", "get_gpu_pixel_alignment", nullptr,
     [] { sink = library.get_gpu_pixel_alignment(); }},
    {"align/slice pitch", "get_slice_pitch_alignment", nullptr,
     [] { sink = library.get_slice_pitch_alignment(1); }},
    {"uuid/device", "get_device_uuid", nullptr,
     [] {
       sink =
           static_cast<uint32_t>(library.get_device_uuid(device_uuid, 16, 6, 0x060316, 0x0316000A));
     }},
    {"uuid/override", "get_override_device_uuid", nullptr,
     [] {
       sink = static_cast<uint32_t>(
           library.get_override_device_uuid(other_uuid, 16, 6, 0x060316, 0x0316000A, 1));
     }},
    {"uuid/driver", "get_driver_uuid", nullptr,
     [] { sink = static_cast<uint32_t>(library.get_driver_uuid(driver_uuid, 16)); }},
    {"uuid/text", "uuid_to_str", nullptr,
     [] {
       sink = static_cast<uint32_t>(
           library.uuid_to_str(text, sizeof text, device_uuid, KORVEL_UUID_BYTES));
     }},
    {"secure context", "isSecureContextSupportedByGpu", nullptr,
     [] { sink = library.isSecureContextSupportedByGpu(); }},
    {"blob/size", "korvel_get_metadata_blob_size", nullptr,
     [] { sink = library.korvel_get_metadata_blob_size(); }},
    {"blob/buffer size", "korvel_get_aligned_gpu_buffer_size", nullptr,
     [] { sink = library.korvel_get_aligned_gpu_buffer_size(&blob); }},
    {"floor/layout", "floor_copy_layout", nullptr,
     [] { floor_copy_layout(&floor_blob, &blob, 1, 1); }},
    {"floor/chain 11", "floor_copy_layout", nullptr,
     [] { floor_copy_layout(&floor_chain, &chain, 11, 0); }},
    {"floor/chain 12", "floor_copy_layout", nullptr,
     [] { floor_copy_layout(&floor_chain, &chain, 12, 0); }},
    {"floor/look-up", "floor_look_up", nullptr,
     [] { sink = floor_look_up(floor_table, kFormatsToMix, kR8G8B8A8Unorm); }},
    {"floor/look-up random", "floor_look_up", nullptr,
     [] { sink = floor_look_up(floor_table, kFormatsToMix, next_format()); }},
    {"floor/read layout", "floor_read", nullptr,
     [] { sink = floor_read(&full_record, KORVEL_LAYOUT_BYTES_VERSION_1); }},
    {"floor/read surface", "floor_read", nullptr,
     [] { sink = floor_read(&full_surface, KORVEL_SURFACE_BYTES); }},
};

void fill_uuids(uint8_t* device, uint8_t* driver) {
  library.get_device_uuid(device, KORVEL_UUID_BYTES, 6, 0x060316, 0x0316000A);
  library.get_driver_uuid(driver, KORVEL_UUID_BYTES);
}

// All levels and planes that a record can hold.
template <typename Kind>
typename Kind::Record full_valid_record() {
  records::Uuids uuids;
  fill_uuids(uuids.device, uuids.driver);
  return records::valid_record<Kind>({.levels = KORVEL_MAX_LEVELS, .lrz = false, .uuids = uuids});
}

void expect_valid(uint32_t status, const char* record) {
  if (status == KORVEL_SUCCESS) return;
  std::fprintf(stderr, "the benchmark's %s does not validate\n", record);
  std::exit(1);
}

}  // namespace

std::span<const Case> cases() {
  return kCases;
}

const harness::Library& prepare(std::size_t formats) {
  hxl_sim_set_chip(kChip);
  hxl_sim_set_recording(0);
  library = harness::load_library();
  mix_formats(formats);
  lay_out(kR8G8B8A8Unorm, 1, 1, LAYOUT_FLAG_UBWC, 1);

  fill_uuids(device_uuid, driver_uuid);
  full_record = full_valid_record<records::ResourceKind>();
  full_surface = full_valid_record<records::SurfaceKind>();
  expect_valid(
      library.validate_resource_memory_layout_metadata(&full_record, device_uuid, driver_uuid),
      "layout record");
  expect_valid(library.validate_surface_metadata(&full_surface, device_uuid, driver_uuid),
               "surface record");
  return library;
}

}  // namespace bench
