// Records to store in files.
#pragma once

#include <cstring>
#include <string>

#include <korvel_utils.h>
#include "tests/harness/chips.h"
#include "tests/tools/run_tool.h"
#include "tests/tools/scratch_folder.h"

namespace tool_test {

inline const harness::ChipData& stored_chip() {
  return harness::full_chip(6);
}

// A blob that the program itself wrote for stored_chip().
inline LayoutMetadata stored_blob(const ScratchFolder& folder, const std::string& more = "") {
  const std::string path = folder.path("written");
  run_tool("show --format 28 --size 256x256 --ubwc --force --chip " + hex(stored_chip().chip_id) +
           " --blob " + path + " " + more);
  LayoutMetadata blob{};
  const std::string content = file_content(path);
  if (content.size() == sizeof blob) std::memcpy(&blob, content.data(), sizeof blob);
  return blob;
}

// A valid surface record of one level and one plane of 64 x 64 elements of 4 bytes.
inline SurfaceMetadata stored_surface() {
  SurfaceMetadata record{};
  record.guid = 0x1122334455667788;
  record.total_size = 16384 + KORVEL_SURFACE_BYTES;
  record.alignment = 4096;
  record.format = 28;
  record.samples = 1;
  record.levels = 1;
  record.level[0].slices = 1;
  record.level[0].tiled = 1;
  record.level[0].size = 16384;
  record.level[0].planes = 1;
  SurfacePlane& plane = record.level[0].plane[0];
  plane.image_size = 16384;
  plane.image_pitch = 256;
  plane.image_slice_pitch = 16384;
  plane.image_element_size = 4;
  plane.image_width = plane.image_height = plane.actual_width = plane.actual_height = 64;
  const uint32_t device[] = {KORVEL_DEVICE_SIGNATURE, stored_chip().family_id,
                             stored_chip().model_code, stored_chip().rev_id};
  const uint32_t driver[] = {4, 1, 3, 0};
  std::memcpy(record.device_uuid, device, sizeof device);
  std::memcpy(record.driver_uuid, driver, sizeof driver);
  record.size = KORVEL_SURFACE_BYTES;
  record.signature = KORVEL_SURFACE_SIGNATURE;
  return record;
}

}  // namespace tool_test
