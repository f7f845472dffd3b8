// Both validators on records in which one word was changed.

#include <initializer_list>

#include "tests/digest/line.h"
#include "tests/harness/chips.h"

namespace digest {
namespace {

using harness::Gpu;

// The caller's; a record that names other ones is refused.
constexpr uint32_t kDevice[] = {0x5A52, 6, 7, 8};
constexpr uint32_t kDriver[] = {4, 1, 3, 0};
constexpr uint32_t kLevels = 3;

template <typename Record>
void fill_valid(Record& record, uint32_t size) {
  record.size = size;
  std::memcpy(record.device_uuid, kDevice, sizeof kDevice);
  std::memcpy(record.driver_uuid, kDriver, sizeof kDriver);
  record.total_size = size + 0x10000U;
  record.alignment = 4096;
  record.format = 28;
  record.samples = 4;
  record.levels = kLevels;
  for (uint32_t l = 0; l < kLevels; ++l) {
    auto& level = record.level[l];
    level.slices = 2;
    level.tiled = 1;
    level.size = 0x4000;
    level.planes = 1 + l;
    level.lrz_valid = level.lrz_fc_valid = 1;
    level.lrz_size = 0x800;
    level.lrz_pitch = 64;
    level.lrz_slice_pitch = 0x1000;
    level.lrz_width = 64;
    level.lrz_height = 32;
    level.lrz_fc_size = 512;
    for (auto& plane : level.plane) {
      plane.image_offset = 0x2000;
      plane.image_size = 0x1000;
      plane.image_pitch = 256;
      plane.image_slice_pitch = 0x2000;
      plane.image_element_size = 4;
      plane.image_width = 64;
      plane.image_height = 16;
      plane.flag_valid = 1;
      plane.flag_offset = 0x8000;
      plane.flag_size = 0x1000;
      plane.flag_pitch = 64;
      plane.flag_slice_pitch = 0x1000;
    }
  }
}

template <typename Record, typename Validate>
void add_changed_records(Line& line, Gpu& gpu, const Record& valid, Validate validate) {
  uint8_t device[KORVEL_UUID_BYTES];
  uint8_t driver[KORVEL_UUID_BYTES];
  std::memcpy(device, kDevice, sizeof device);
  std::memcpy(driver, kDriver, sizeof driver);
  for (std::size_t offset = 0; offset < sizeof valid; offset += 4) {
    uint32_t old;
    std::memcpy(&old, reinterpret_cast<const char*>(&valid) + offset, sizeof old);
    for (const uint32_t word : {old, 0U, 1U, 2U, old + 1, old - 1, old * 2, 0xFFFFFFFFU}) {
      Record record = valid;
      std::memcpy(reinterpret_cast<char*>(&record) + offset, &word, sizeof word);
      line.add(validate(&record, device, driver));
      line.end_case();
    }
    line.add_messages(gpu);
  }
}

}  // namespace

void add_validation_lines(Lines& lines) {
  Gpu gpu(harness::full_chip(6).chip_id);
  for (const uint32_t lrz : {0U, 1U}) {
    const std::string suffix = lrz != 0 ? ", low-resolution depth" : "";
    MemoryLayout layout{};
    layout.signature = KORVEL_LAYOUT_SIGNATURE;
    fill_valid(layout, KORVEL_LAYOUT_BYTES_VERSION_3);
    SurfaceMetadata surface{};
    surface.signature = KORVEL_SURFACE_SIGNATURE;
    surface.guid = UINT64_C(0x100000000);
    fill_valid(surface, KORVEL_SURFACE_BYTES);
    for (uint32_t l = 0; l < kLevels; ++l) {
      layout.level[l].lrz_valid = layout.level[l].lrz_fc_valid = lrz;
      surface.level[l].lrz_valid = surface.level[l].lrz_fc_valid = lrz;
      for (auto& plane : surface.level[l].plane) {
        plane.actual_width = 60;
        plane.actual_height = 15;
      }
    }
    Line layouts("validate layout records" + suffix);
    add_changed_records(layouts, gpu, layout, gpu->validate_resource_memory_layout_metadata);
    lines.push_back(layouts);
    Line surfaces("validate surface records" + suffix);
    add_changed_records(surfaces, gpu, surface, gpu->validate_surface_metadata);
    lines.push_back(surfaces);
  }
}

}  // namespace digest
