#include "tools/command/diff_side.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstring>

#include "tools/explanation/explain_surface.h"
#include "tools/explanation/explained_record.h"
#include "tools/explanation/fault_forecast.h"
#include "tools/output/standard_error.h"
#include "tools/record/stored_file.h"
#include "tools/request/bad_input.h"
#include "tools/request/format_names.h"
#include "tools/request/refused_request.h"

namespace tool {
namespace {

std::string file_label(const std::string& path, const ComparedSide& side) {
  const char* const what = side.is_surface_record() ? "a surface record"
                           : side.header.empty()    ? "a resource record"
                                                    : "a blob";
  return fmt::format("{}, {}", without_controls(path), what);
}

// A record never counts bytes that lie behind it.
std::size_t record_bytes(const RecordFields& fields, std::span<const unsigned char> record) {
  if (fields.only_size != 0) return std::min<std::size_t>(fields.only_size, record.size());
  uint32_t size = 0;
  std::memcpy(&size, record.data() + fields.size_word, sizeof size);
  const bool known = size == KORVEL_LAYOUT_BYTES_VERSION_1 ||
                     size == KORVEL_LAYOUT_BYTES_VERSION_2 || size == KORVEL_LAYOUT_BYTES_VERSION_3;
  return std::min<std::size_t>(known ? size : sizeof(MemoryLayout), record.size());
}

}  // namespace

ComparedSide side_of_file(const std::string& path, const std::optional<std::string>& kind) {
  const StoredFile file(path, kind);
  const std::optional<std::size_t> offset = file.record_offset();
  if (!offset) {
    refuse("{}: the blob header's record offset {} leaves no room for a record in its {} bytes",
           path, file.header().record_offset, file.bytes().size());
  }
  ComparedSide side;
  if (file.kind() == RecordKind::surface) side.fields = &kSurfaceFields;
  const std::span<const unsigned char> bytes = file.bytes();
  if (file.is_blob()) {
    side.header.assign(bytes.begin(), bytes.begin() + sizeof(MetadataHeader));
  }
  const std::span<const unsigned char> record = bytes.subspan(*offset);
  const auto used = record.first(record_bytes(*side.fields, record));
  side.record.assign(used.begin(), used.end());
  side.label = file_label(path, side);
  return side;
}

ComparedSide side_of_request(const RequestOptions& options) {
  const SurfaceRequest request = request_of(options);
  const Chip chip = options.chip ? parse_chip(*options.chip, options.unknown_chip) : default_chip();
  std::string refusal = refused_request(request);
  if (refusal.empty()) refusal = forecast_fault(chip.row, request);
  if (!refusal.empty()) throw BadInput(refusal);
  ComparedSide side;
  side.label = fmt::format("{}, chip 0x{:08X}", request_label(request), chip.chip_id);
  Explanation explanation = explain_surface(chip.row, request);
  const MemoryLayout record = explained_record(chip.row, request, explanation);
  const auto* const bytes = reinterpret_cast<const unsigned char*>(&record);
  side.record.assign(bytes, bytes + sizeof record);
  side.asked = {chip, request, std::move(explanation)};
  return side;
}

}  // namespace tool
