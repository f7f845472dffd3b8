// korvel-layout diff FILE FILE, and FILE beside a request
#include <string>
#include <string_view>

#include "fuzz/fuzz_target.h"
#include "fuzz/met_cases.h"
#include "fuzz/tool_run.h"
#include "tools/command/diff_command.h"

namespace {

// The sentence that counts: "3 of 50 fields differ", or that of two that are alike.
std::string_view count_in(std::string_view output) {
  for (const std::string_view end : {" differ\n", "Alike in all "}) {
    const std::size_t found = output.find(end);
    if (found == std::string_view::npos) continue;
    const std::size_t first = output.rfind('\n', found) + 1;
    return output.substr(first, output.find('\n', first) - first);
  }
  return {};
}

fuzz::ToolRun diff(const fuzz::StoredInputFile& file, const std::vector<std::string>& files,
                   const tool::DiffOptions& usual) {
  tool::DiffOptions options = usual;
  options.files = files;
  return fuzz::run_tool(file, [&options] { return tool::diff(options); });
}

void require_alike(const fuzz::StoredInputFile& file, const tool::DiffOptions& usual) {
  const fuzz::ToolRun run = diff(file, {file.path, file.path}, usual);
  REQUIRE(run.exit_code == tool::kExitDone || run.exit_code == tool::kExitBadInput);
  if (!fuzz::fits(file.bytes.size(), usual.kind)) REQUIRE(run.exit_code == tool::kExitBadInput);
}

void require_same_both_ways(const fuzz::StoredInputFile& a, const fuzz::StoredInputFile& b,
                            const tool::DiffOptions& usual) {
  const fuzz::ToolRun there = diff(a, {a.path, b.path}, usual);
  const fuzz::ToolRun back = diff(b, {b.path, a.path}, usual);
  REQUIRE(there.exit_code == back.exit_code);
  if (there.exit_code == tool::kExitBadInput) return;
  REQUIRE(!count_in(there.output).empty());
  REQUIRE(count_in(there.output) == count_in(back.output));
  const bool alike = count_in(there.output).starts_with("Alike");
  REQUIRE(alike == (there.exit_code == tool::kExitDone));
  if (!alike) fuzz::meet(fuzz::Case::files_differ);
}

void require_compared_with_request(const fuzz::StoredInputFile& file,
                                   const tool::DiffOptions& usual) {
  tool::DiffOptions options = usual;
  options.b = "--format nv12 --size 100x60 --ubwc --levels 2";
  const fuzz::ToolRun run = diff(file, {file.path}, options);
  REQUIRE(run.exit_code == tool::kExitDone || run.exit_code == tool::kExitRefused ||
          run.exit_code == tool::kExitBadInput);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::InputBytes input(data, size);
  tool::DiffOptions options;
  options.kind = fuzz::draw_kind_option(input);
  options.json = input.u8() % 4 == 1;
  const std::size_t half = size / 2;
  fuzz::InputBytes second(data + half, size - half);
  const auto a = fuzz::store_file(fuzz::draw_record_file(input));
  const auto b = fuzz::store_file(fuzz::draw_record_file(second), fuzz::FileSlot::second);
  require_alike(a, options);
  require_compared_with_request(a, options);
  options.json = false;
  require_same_both_ways(a, b, options);
  return 0;
}
