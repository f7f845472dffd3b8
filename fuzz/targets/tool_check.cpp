// korvel-layout check FILE
#include <cstring>
#include <sstream>

#include "fuzz/accepted_record.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/met_cases.h"
#include "fuzz/record_kind.h"
#include "fuzz/tool_run.h"
#include "tools/command/check_command.h"

namespace {

using fuzz::ToolRun;

std::string usual_chip() {
  return std::to_string(fuzz::usual_machine().process.chip.chip_id);
}

std::string draw_chip(fuzz::InputBytes& input) {
  switch (input.u8() % 8) {
    case 1: return "0";
    case 2: return "0x12345678";
    case 3: return "chip";
    default: return usual_chip();
  }
}

// The record that the file holds. What a cut one lacks is 0 to the tool.
template <typename Kind>
typename Kind::Record record_in(const fuzz::StoredInputFile& file) {
  std::vector<uint8_t> bytes = file.bytes;
  uint32_t offset = 0;
  if (bytes.size() == KORVEL_BLOB_BYTES) {
    std::memcpy(&offset, bytes.data() + offsetof(MetadataHeader, record_offset), sizeof offset);
  }
  typename Kind::Record record;
  bytes.resize(offset + sizeof record);
  std::memcpy(&record, bytes.data() + offset, sizeof record);
  return record;
}

// What the rules say to it, for the chip that records are made for.
template <typename Kind>
bool rules_accept(const typename Kind::Record& record) {
  const uint32_t verdict = Kind::rules(fuzz::usual_machine().process, &record);
  fuzz::forget_messages(fuzz::usual_machine());
  return verdict == KORVEL_SUCCESS;
}

// The end of the extra buffer, which no rule looks at.
fuzz::Exact extra_end(const MemoryLayout& record) {
  if (record.size == KORVEL_LAYOUT_BYTES_VERSION_1 || record.extra_valid == 0) return 0;
  return fuzz::Exact{record.extra_offset} + record.extra_size;
}
// What the slices of the extra buffer take, and what it has.
bool extra_slices_fit(const MemoryLayout& record) {
  if (record.size == KORVEL_LAYOUT_BYTES_VERSION_1 || record.extra_valid == 0) return true;
  return fuzz::Exact{record.extra_slice_pitch} * record.level[0].slices <= record.extra_size;
}
bool extra_slices_fit(const SurfaceMetadata&) {
  return true;
}
fuzz::Exact extra_end(const SurfaceMetadata&) {
  return 0;
}

bool has_no_room(uint64_t bytes, uint32_t count, uint32_t bytes_of_one) {
  return fuzz::Exact{count} * bytes_of_one > bytes;
}

// How many sentences an accepted record deserves.
template <typename Record>
std::size_t warnings_due(const Record& record) {
  const fuzz::Exact surface_bytes = fuzz::surface_bytes_of(record);
  const bool wraps = record.total_size < record.size;
  std::size_t due = fuzz::bound_of(record) != surface_bytes ? 1 : 0;
  if (!wraps && extra_end(record) > surface_bytes) ++due;
  if (!wraps && !extra_slices_fit(record)) ++due;
  for (uint32_t l = 0; l < record.levels; ++l) {
    const auto& level = record.level[l];
    if (!wraps && level.size > surface_bytes) ++due;
    if (level.lrz_valid == 1 && has_no_room(level.lrz_size, level.lrz_height, level.lrz_pitch)) {
      ++due;
    }
    for (uint32_t p = 0; p < level.planes; ++p) {
      const auto& plane = level.plane[p];
      if (has_no_room(plane.image_size, fuzz::covered_rows(plane), plane.image_pitch)) ++due;
      if (has_no_room(plane.image_pitch, fuzz::covered_width_el(plane), plane.image_element_size)) {
        ++due;
      }
    }
  }
  return due;
}

// Those that are neither of the blob's header nor of the chip.
std::size_t warnings_of_record(const std::string& errors) {
  std::size_t count = 0;
  std::istringstream lines(errors);
  for (std::string line; std::getline(lines, line);) {
    const bool of_header = line.find(": the blob header's ") != std::string::npos;
    const bool of_chip = line.find(": chip 0x") != std::string::npos;
    if (!of_header && !of_chip) ++count;
  }
  return count;
}

template <typename Kind>
void require_right_verdict(const ToolRun& run, const fuzz::StoredInputFile& file,
                           bool for_usual_chip) {
  const typename Kind::Record record = record_in<Kind>(file);
  const bool accepted = run.exit_code == tool::kExitDone;
  // Records carry the usual chip's UUID.
  if (for_usual_chip) REQUIRE(accepted == rules_accept<Kind>(record));
  const std::size_t warnings = warnings_of_record(run.errors);
  if (!accepted) {
    REQUIRE(warnings == 0);
    return;
  }
  fuzz::require_accepted_record<Kind>(record);
  REQUIRE(warnings == warnings_due(record));
  fuzz::meet(warnings == 0 ? fuzz::Case::check_warns_of_nothing : fuzz::Case::check_warns);
}

void require_one_verdict(const ToolRun& run) {
  const bool accepted = run.exit_code == tool::kExitDone;
  REQUIRE(run.output.starts_with(accepted ? "valid " : "refused "));
  REQUIRE(std::count(run.output.begin(), run.output.end(), '\n') == 1);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::InputBytes input(data, size);
  tool::CheckOptions options;
  options.stored.kind = fuzz::draw_kind_option(input);
  options.chip = draw_chip(input);
  options.unknown_chip = true;
  const fuzz::StoredInputFile file = fuzz::store_file(fuzz::draw_record_file(input));
  options.stored.file = file.path;
  const ToolRun run = fuzz::run_tool(file, [&] { return tool::check(options); });
  if (!fuzz::fits(file.bytes.size(), options.stored.kind))
    REQUIRE(run.exit_code == tool::kExitBadInput);
  if (run.exit_code == tool::kExitBadInput) {
    hxl_sim_clear_messages();
    return 0;
  }
  REQUIRE(run.exit_code == tool::kExitDone || run.exit_code == tool::kExitRefused);
  require_one_verdict(run);
  const bool for_usual_chip = options.chip == usual_chip();
  if (file.bytes.size() == KORVEL_SURFACE_BYTES) {
    require_right_verdict<fuzz::SurfaceKind>(run, file, for_usual_chip);
  } else {
    require_right_verdict<fuzz::ResourceKind>(run, file, for_usual_chip);
  }
  hxl_sim_clear_messages();
  return 0;
}
