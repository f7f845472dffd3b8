// korvel-layout dump FILE
#include <charconv>
#include <cstring>
#include <span>
#include <string_view>

#include "fuzz/fuzz_target.h"
#include "fuzz/tool_run.h"
#include "tools/command/dump_command.h"

namespace {

// A dump's rows begin with the offset of their bytes.
bool starts_with_offset(std::string_view line) {
  return line.starts_with("0x");
}

std::size_t hexadecimal(std::string_view digits) {
  std::size_t number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
  return number;
}

// One past the last byte that a row tells: the stored bytes stand behind the offset, two digits
// each, or the last offset of a stretch.
std::size_t end_of_row(std::string_view line, std::size_t first) {
  constexpr std::size_t kBytes = 8;  // column of the bytes
  const std::string_view bytes = line.substr(std::min(kBytes, line.size()), 25);
  if (bytes.starts_with("to 0x")) return hexadecimal(bytes.substr(5)) + 1;
  const std::size_t digits = bytes.find_last_not_of(' ') + 1;
  return first + (digits + 1) / 3;
}

// Where the record of the file starts, as far as a blob's header says so.
std::size_t record_offset(std::span<const uint8_t> file) {
  constexpr std::size_t kUsual = sizeof(MetadataHeader);
  if (file.size() != KORVEL_BLOB_BYTES) return kUsual;
  MetadataHeader header;
  std::memcpy(&header, file.data(), sizeof header);
  const bool has_room = header.record_offset <= file.size() - KORVEL_LAYOUT_BYTES_VERSION_1;
  return has_room ? header.record_offset : kUsual;
}

// The rows tell every byte of the file once, from the first to the last; what is header and record
// at a time is told as both.
void require_all_bytes_told(std::string_view dump, std::span<const uint8_t> file) {
  const std::size_t record = record_offset(file);
  const bool some_told_twice = record < sizeof(MetadataHeader);
  std::size_t told = 0;
  while (!dump.empty()) {
    const std::size_t end = dump.find('\n');
    const std::string_view line = dump.substr(0, end);
    dump.remove_prefix(end + 1);
    if (!starts_with_offset(line)) continue;
    const std::size_t first = hexadecimal(line.substr(2));
    REQUIRE(first == told || (some_told_twice && first < told));
    told = end_of_row(line, first);
  }
  REQUIRE(told == file.size());
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::InputBytes input(data, size);
  tool::DumpOptions options;
  options.stored.kind = fuzz::draw_kind_option(input);
  options.all = input.u8() % 2 != 0;
  const fuzz::StoredInputFile file = fuzz::store_file(fuzz::draw_record_file(input));
  options.stored.file = file.path;
  const fuzz::ToolRun run = fuzz::run_tool(file, [&] { return tool::dump(options); });
  REQUIRE(run.exit_code == tool::kExitDone || run.exit_code == tool::kExitBadInput);
  if (!fuzz::fits(file.bytes.size(), options.stored.kind))
    REQUIRE(run.exit_code == tool::kExitBadInput);
  if (run.exit_code == tool::kExitDone) require_all_bytes_told(run.output, file.bytes);
  return 0;
}
