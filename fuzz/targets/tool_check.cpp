// korvel-layout check FILE
#include <cstring>

#include "fuzz/fuzz_target.h"
#include "fuzz/record_kind.h"
#include "fuzz/tool_run.h"
#include "tools/check_command.h"

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

// What the rules say to the record that the file holds, for the chip that records are made for.
bool rules_accept(const fuzz::StoredInputFile& file) {
  // What a cut record lacks is 0 to the tool.
  std::vector<uint8_t> bytes = file.bytes;
  reference::Process& process = fuzz::usual_machine().process;
  uint32_t verdict = 0;
  if (bytes.size() == KORVEL_SURFACE_BYTES) {
    verdict = fuzz::SurfaceKind::rules(process, bytes.data());
  } else {
    uint32_t offset = 0;
    if (bytes.size() == KORVEL_BLOB_BYTES) {
      std::memcpy(&offset, bytes.data() + offsetof(MetadataHeader, record_offset), sizeof offset);
    }
    bytes.resize(offset + std::size_t{KORVEL_BLOB_BYTES});
    verdict = fuzz::ResourceKind::rules(process, bytes.data() + offset);
  }
  fuzz::forget_messages(fuzz::usual_machine());
  return verdict == KORVEL_SUCCESS;
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
  options.kind = fuzz::draw_kind_option(input);
  options.chip = draw_chip(input);
  const fuzz::StoredInputFile file = fuzz::store_drawn_file(input);
  options.file = file.path;
  const ToolRun run = fuzz::run_tool(file, [&] { return tool::check(options); });
  if (!fuzz::fits(file.bytes.size(), options.kind)) REQUIRE(run.exit_code == tool::kExitBadInput);
  if (run.exit_code == tool::kExitBadInput) {
    hxl_sim_clear_messages();
    return 0;
  }
  REQUIRE(run.exit_code == tool::kExitDone || run.exit_code == tool::kExitRefused);
  require_one_verdict(run);
  // Records carry the usual chip's UUID.
  if (options.chip == usual_chip()) {
    REQUIRE((run.exit_code == tool::kExitDone) == rules_accept(file));
  }
  hxl_sim_clear_messages();
  return 0;
}
