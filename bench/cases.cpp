#include "bench/cases.h"

#include <korvel_utils.h>

#include <cstdio>
#include <cstdlib>

#include "simulator/hxl_sim.h"

namespace bench {
namespace {

// DXGI numbers.
constexpr uint32_t kR8G8B8A8Unorm = 28;
constexpr uint32_t kD32Float = 40;
constexpr uint32_t kBc1Unorm = 71;
constexpr uint32_t kNv12 = 103;

constexpr uint32_t kChip = HXL_SIM_DEFAULT_CHIP;

LayoutMetadata blob;
MemoryLayout chain;
MemoryLayout full_record;
SurfaceMetadata full_surface;
uint8_t device_uuid[KORVEL_UUID_BYTES];
uint8_t driver_uuid[KORVEL_UUID_BYTES];
uint32_t out_width;
uint32_t out_height;
uint32_t out_bytes;
volatile uint64_t sink;

void lay_out(uint32_t format, uint32_t samples, uint32_t tiling_mode, uint64_t flags,
             uint32_t planes) {
  sink =
      korvel_init_memory_layout(&blob, 1920, 1080, 1, format, samples, tiling_mode, flags, planes);
}

void lay_out_chain(uint32_t levels, uint64_t flags) {
  chain.levels = levels;
  chain.alignment = 4096;
  chain.size = sizeof chain;
  korvel_init_multi_level_surface(&chain, 2048, 2048, 1, kR8G8B8A8Unorm, 1, KORVEL_TILING_TILED,
                                  flags, 1);
}

constexpr Case kCases[] = {
    {"nothing", [] {}},
    {"layout/r8g8b8a8 tiled", [] { lay_out(kR8G8B8A8Unorm, 1, 1, 0, 1); }},
    {"layout/r8g8b8a8 linear", [] { lay_out(kR8G8B8A8Unorm, 1, 0, 0, 1); }},
    {"layout/r8g8b8a8 tiled ubwc", [] { lay_out(kR8G8B8A8Unorm, 1, 1, LAYOUT_FLAG_UBWC, 1); }},
    {"layout/nv12 tiled ubwc", [] { lay_out(kNv12, 1, 1, LAYOUT_FLAG_UBWC, 2); }},
    {"layout/bc1 tiled", [] { lay_out(kBc1Unorm, 1, 1, 0, 1); }},
    {"layout/d32 4 samples", [] { lay_out(kD32Float, 4, 1, 0, 1); }},
    {"chain/11 levels", [] { lay_out_chain(11, 0); }},
    {"chain/12 levels", [] { lay_out_chain(12, 0); }},
    {"chain/11 levels ubwc", [] { lay_out_chain(11, LAYOUT_FLAG_UBWC); }},
    {"predicate/renderable", [] { sink = isFormatRenderableByGpu(kR8G8B8A8Unorm, 0); }},
    {"predicate/sampleable", [] { sink = isFormatSampleableByGpu(kR8G8B8A8Unorm, 1, 0); }},
    {"predicate/ubwc", [] { sink = isUBWCSupportedByGpu(kR8G8B8A8Unorm); }},
    {"validate/layout 15 x 3",
     [] {
       sink = validate_resource_memory_layout_metadata(&full_record, device_uuid, driver_uuid);
     }},
    {"validate/surface 15 x 3",
     [] { sink = validate_surface_metadata(&full_surface, device_uuid, driver_uuid); }},
    {"align/full tiled",
     [] {
       compute_fmt_aligned_width_and_height(1920, 1080, 0, kR8G8B8A8Unorm, 1, 1, 0, 512, &out_width,
                                            &out_height);
     }},
    {"align/full linear",
     [] {
       compute_fmt_aligned_width_and_height(1920, 1080, 0, kR8G8B8A8Unorm, 1, 0, 0, 512, &out_width,
                                            &out_height);
     }},
    {"align/fdm tiled",
     [] {
       compute_fmt_aligned_width_and_height_fdm(1920, 1080, 0, kR8G8B8A8Unorm, 1, 1, 2, 512, 1, 0,
                                                &out_width, &out_height);
     }},
    {"align/minimal linear",
     [] {
       compute_fmt_minimal_aligned_width_and_height(1920, 1080, 0, kR8G8B8A8Unorm, 1, 0, 1, 1, 512,
                                                    4, 0, &out_width, &out_height);
     }},
    {"align/in bytes",
     [] {
       uint32_t tiling_mode = 1;
       const AlignInBytesParams params = {1920, 1080, 0, kR8G8B8A8Unorm, 1, 1, 512, &tiling_mode};
       const AlignInBytesResult result = {&out_bytes, &out_width, &out_height};
       compute_fmt_aligned_width_and_height_in_bytes(&params, &result);
     }},
    {"align/basic",
     [] { compute_aligned_width_and_height(1920, 1080, 0, 0, 0, 0, &out_width, &out_height); }},
    {"align/surface padding", [] { sink = compute_surface_padding(1920, 0, 1, 0, 0); }},
    {"align/compressed",
     [] {
       compute_compressedfmt_aligned_width_and_height(1920, 1080, kBc1Unorm, 0, 0, 0, &out_width,
                                                      &out_height, &out_bytes);
     }},
    {"align/pixel", [] { sink = get_gpu_pixel_alignment(); }},
    {"align/slice pitch", [] { sink = get_slice_pitch_alignment(1); }},
    {"uuid/device",
     [] {
       sink = static_cast<uint32_t>(get_device_uuid(device_uuid, 16, 6, 0x060316, 0x0316000A));
     }},
    {"uuid/driver", [] { sink = static_cast<uint32_t>(get_driver_uuid(driver_uuid, 16)); }},
    {"blob/size", [] { sink = korvel_get_metadata_blob_size(); }},
    {"blob/buffer size", [] { sink = korvel_get_aligned_gpu_buffer_size(&blob); }},
};

// A plane whose image and flag buffer pass every check.
template <typename Plane>
void fill_plane(Plane& plane) {
  plane.image_size = 0x1000;
  plane.image_pitch = 256;
  plane.image_slice_pitch = 0x2000;
  plane.image_element_size = 4;
  plane.image_width = 64;
  plane.image_height = 16;
  plane.flag_valid = 1;
  plane.flag_size = 0x1000;
  plane.flag_pitch = 64;
  plane.flag_slice_pitch = 0x2000;
}

template <typename Record>
void fill_record(Record& record) {
  record.total_size = record.size + 0x10000;
  record.alignment = 4096;
  record.format = kR8G8B8A8Unorm;
  record.samples = 1;
  record.levels = KORVEL_MAX_LEVELS;
  for (auto& level : record.level) {
    level.slices = 1;
    level.tiled = 1;
    level.size = 0x2000;
    level.planes = KORVEL_MAX_PLANES;
    for (auto& plane : level.plane) fill_plane(plane);
  }
}

void fill_uuids(uint8_t* device, uint8_t* driver) {
  get_device_uuid(device, KORVEL_UUID_BYTES, 6, 0x060316, 0x0316000A);
  get_driver_uuid(driver, KORVEL_UUID_BYTES);
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

void prepare() {
  hxl_sim_set_chip(kChip);
  hxl_sim_set_recording(0);
  lay_out(kR8G8B8A8Unorm, 1, 1, LAYOUT_FLAG_UBWC, 1);

  fill_uuids(device_uuid, driver_uuid);
  full_record.signature = KORVEL_LAYOUT_SIGNATURE;
  full_record.size = sizeof full_record;
  fill_uuids(full_record.device_uuid, full_record.driver_uuid);
  fill_record(full_record);
  full_surface.signature = KORVEL_SURFACE_SIGNATURE;
  full_surface.size = sizeof full_surface;
  full_surface.guid = 1;
  fill_uuids(full_surface.device_uuid, full_surface.driver_uuid);
  fill_record(full_surface);
  for (auto& level : full_surface.level) {
    for (auto& plane : level.plane) {
      plane.actual_width = 60;
      plane.actual_height = 15;
    }
  }
  expect_valid(validate_resource_memory_layout_metadata(&full_record, device_uuid, driver_uuid),
               "layout record");
  expect_valid(validate_surface_metadata(&full_surface, device_uuid, driver_uuid),
               "surface record");
}

}  // namespace bench
