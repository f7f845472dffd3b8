#include "tools/explanation/explanation_check.h"

#include <fmt/core.h>

#include <map>

namespace tool {
namespace {

void add_plane(std::vector<FieldValue>& fields, uint32_t l, uint32_t p, const PlaneLayout& plane) {
  const auto add = [&](const char* name, uint64_t value) {
    fields.push_back({plane_field(l, p, name), value});
  };
  add("image_offset", plane.image_offset);
  add("image_size", plane.image_size);
  add("image_pitch", plane.image_pitch);
  add("image_slice_pitch", plane.image_slice_pitch);
  add("image_element_size", plane.image_element_size);
  add("image_width", plane.image_width);
  add("image_height", plane.image_height);
  add("flag_valid", plane.flag_valid);
  if (plane.flag_valid == 0) return;
  add("flag_offset", plane.flag_offset);
  add("flag_size", plane.flag_size);
  add("flag_pitch", plane.flag_pitch);
  add("flag_slice_pitch", plane.flag_slice_pitch);
}

}  // namespace

std::vector<FieldValue> explained_fields(const LayoutMetadata& blob) {
  const MemoryLayout& record = blob.layout;
  std::vector<FieldValue> fields;
  for (uint32_t l = 0; l < record.levels; ++l) {
    const LevelLayout& level = record.level[l];
    fields.push_back({level_field(l, "size"), level.size});
    for (uint32_t p = 0; p < level.planes; ++p) add_plane(fields, l, p, level.plane[p]);
  }
  fields.push_back({"alignment", record.alignment});
  if (record.extra_valid != 0) {
    fields.push_back({"extra_offset", record.extra_offset});
    fields.push_back({"extra_size", record.extra_size});
    fields.push_back({"extra_slice_pitch", record.extra_slice_pitch});
  }
  fields.push_back({"total_size", record.total_size});
  fields.push_back({"gpu_buffer_size", record.total_size - record.size});
  return fields;
}

Comparison compare(const Explanation& explanation, const LayoutMetadata& blob) {
  std::map<std::string, const Step*> steps;
  for (const Step& step : explanation.steps) {
    if (step.field.empty()) continue;
    if (!steps.emplace(step.field, &step).second) {
      return {0, fmt::format("two steps give {}", step.field)};
    }
  }
  Comparison comparison;
  for (const FieldValue& field : explained_fields(blob)) {
    const auto found = steps.find(field.field);
    if (found == steps.end()) {
      comparison.disagreement = fmt::format("no step leads to {}", field.field);
      return comparison;
    }
    const auto explained = static_cast<uint64_t>(found->second->after.value);
    if (explained != field.value) {
      comparison.disagreement = fmt::format("the steps lead to {} = {}, but the library answers {}",
                                            field.field, explained, field.value);
      return comparison;
    }
    ++comparison.compared;
  }
  if (comparison.compared != steps.size()) {
    comparison.disagreement = fmt::format("{} steps give fields, but the record has {} of them",
                                          steps.size(), comparison.compared);
  }
  return comparison;
}

}  // namespace tool
