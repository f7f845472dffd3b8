// Records to store in files.
#pragma once

#include <cstring>
#include <string>

#include <korvel_utils.h>
#include "tests/harness/chips.h"
#include "tests/records/valid_record.h"
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

// A valid surface record of one level and one plane: 64 x 64 elements of 4 bytes.
inline SurfaceMetadata stored_surface() {
  constexpr uint64_t kImageBytes = 16384;  // 64 rows x 256 bytes
  return records::valid_record<records::SurfaceKind>(
      {.levels = 1,
       .slices = 1,
       .planes = 1,
       .spare_planes = false,
       .flags = false,
       .lrz = false,
       .surface_bytes = kImageBytes,
       .level_bytes = kImageBytes,
       .samples = 1,
       .guid = 0x1122334455667788,
       .uuids = records::make_uuids({.family_id = stored_chip().family_id,
                                     .model_code = stored_chip().model_code,
                                     .rev_id = stored_chip().rev_id}),
       .image = {.offset_bytes = 0,
                 .size_bytes = kImageBytes,
                 .pitch_bytes = 256,  // 64 elements x 4 bytes
                 .slice_pitch_bytes = kImageBytes,
                 .element_bytes = 4,
                 .width_el = 64,
                 .height_rows = 64,
                 .actual_width_el = 64,
                 .actual_height_rows = 64}});
}

}  // namespace tool_test
