#include "tools/explanation/explained_record.h"

#include <cstring>
#include <map>
#include <span>
#include <string_view>

#include "identify/uuid.h"
#include "tools/record/named_words.h"

namespace tool {
namespace {

// The words that a layout takes from the request as they are.
void write_asked_words(const SurfaceRequest& request, MemoryLayout& record) {
  record.format = request.format;
  record.samples = request.samples;
  record.levels = request.levels.value_or(1);
  record.extra_valid = (request.flags & LAYOUT_FLAG_EXTRA) != 0 ? 1 : 0;
  record.extended = record.extra_valid != 0 && (request.flags & LAYOUT_FLAG_EXTENDED) != 0 ? 1 : 0;
  if (request.levels && request.planes == 0) return;  // a chain without planes writes no level
  for (uint32_t l = 0; l < record.levels; ++l) {
    record.level[l].slices = static_cast<uint32_t>(request.size.depth);
    record.level[l].tiled = request.tiling_mode;
    record.level[l].planes = request.planes;
  }
}

}  // namespace

MemoryLayout explained_record(const korvel::ChipRow& chip, const SurfaceRequest& request,
                              const Explanation& explanation) {
  MemoryLayout record{};
  record.signature = KORVEL_LAYOUT_SIGNATURE;
  record.size = sizeof record;
  korvel::store_uuid(record.device_uuid, chip.device_uuid);
  korvel::store_uuid(record.driver_uuid, korvel::kDriverUuid);
  write_asked_words(request, record);

  std::map<std::string_view, uint64_t> numbers;
  for (const Step& step : explanation.steps) {
    if (!step.field.empty()) numbers[step.field] = static_cast<uint64_t>(step.after.value);
  }
  auto* const bytes = reinterpret_cast<unsigned char*>(&record);
  const std::span<const unsigned char> whole(bytes, sizeof record);
  for (const NamedWord& word : named_words(kLayoutFields, whole, BufferWords::of_all_buffers)) {
    const auto number = numbers.find(word.name);
    if (number == numbers.end()) continue;
    std::memcpy(bytes + word.offset, &number->second, word.field->size);
  }
  return record;
}

}  // namespace tool
