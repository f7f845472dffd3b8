// Both validators on records in which one word was changed.

#include <initializer_list>

#include "tests/digest/line.h"
#include "tests/harness/chips.h"
#include "tests/records/valid_record.h"

namespace digest {
namespace {

using harness::Gpu;

// The caller's; a record that names other ones is refused.
const records::Uuids kUuids = records::make_uuids({.family_id = 6, .model_code = 7, .rev_id = 8});

// Three levels of one, two and three planes.
template <typename Kind>
typename Kind::Record valid_record(bool lrz) {
  records::DepthBuffers depth = records::kUsualDepth;
  depth.offset_bytes = 0;
  depth.width_el = 64;  // all that the pitch of 64 bytes holds
  auto record = records::valid_record<Kind>({.levels = 3,
                                             .slices = 2,
                                             .lrz = lrz,
                                             .surface_bytes = 0x10000,
                                             .uuids = kUuids,
                                             .depth = depth});
  for (uint32_t l = 0; l < record.levels; ++l) record.level[l].planes = 1 + l;
  return record;
}

template <typename Record, typename Validate>
void add_changed_records(Line& line, Gpu& gpu, const Record& valid, Validate validate) {
  for (std::size_t offset = 0; offset < sizeof valid; offset += 4) {
    uint32_t old;
    std::memcpy(&old, reinterpret_cast<const char*>(&valid) + offset, sizeof old);
    for (const uint32_t word : {old, 0U, 1U, 2U, old + 1, old - 1, old * 2, 0xFFFFFFFFU}) {
      Record record = valid;
      std::memcpy(reinterpret_cast<char*>(&record) + offset, &word, sizeof word);
      line.add(validate(&record, kUuids.device, kUuids.driver));
      line.end_case();
    }
    line.add_messages(gpu);
  }
}

}  // namespace

void add_validation_lines(Lines& lines) {
  Gpu gpu(harness::full_chip(6).chip_id);
  for (const bool lrz : {false, true}) {
    const std::string suffix = lrz ? ", low-resolution depth" : "";
    Line layouts("validate layout records" + suffix);
    add_changed_records(layouts, gpu, valid_record<records::ResourceKind>(lrz),
                        gpu->validate_resource_memory_layout_metadata);
    lines.push_back(layouts);
    Line surfaces("validate surface records" + suffix);
    add_changed_records(surfaces, gpu, valid_record<records::SurfaceKind>(lrz),
                        gpu->validate_surface_metadata);
    lines.push_back(surfaces);
  }
}

}  // namespace digest
