// One run of a command of the tool on a stored file, and the properties of every run.
#pragma once

#include <algorithm>
#include <optional>
#include <string>

#include <korvel_utils.h>
#include "fuzz/broken_property.h"
#include "fuzz/captured_output.h"
#include "fuzz/stored_input_file.h"
#include "simulator/hxl_sim.h"
#include "tools/command/exit_codes.h"
#include "tools/request/bad_input.h"

namespace fuzz {

struct ToolRun {
  int exit_code = 0;
  std::string output;
  std::string errors;   // warnings
  std::string refusal;  // the reason of a bad input
};

inline bool is_printable_text(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) {
    return c == '\n' || (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F);
  });
}

// Whole lines of text: or nothing.
inline void require_lines(const std::string& text) {
  REQUIRE(text.empty() || text.back() == '\n');
  REQUIRE(is_printable_text(text));
}

template <typename Command>
ToolRun run_tool(const StoredInputFile& file, Command command) {
  ToolRun run;
  {
    const CapturedOutput captured;
    try {
      run.exit_code = command();
    } catch (const tool::BadInput& bad_input) {
      run.exit_code = tool::kExitBadInput;
      run.refusal = bad_input.what();
    }
    run.output = captured.output();
    run.errors = captured.errors();
  }
  require_lines(run.output);
  require_lines(run.errors);
  // Either data or a reason, never both.
  const bool refused = run.exit_code == tool::kExitBadInput;
  REQUIRE(run.output.empty() == refused);
  REQUIRE(run.refusal.empty() == !refused);
  REQUIRE(stored_bytes(file) == file.bytes);
  return run;
}

// The kind that the user names; one in so many is none that exists.
inline std::optional<std::string> draw_kind_option(InputBytes& input) {
  switch (input.u8() % 8) {
    case 1: return "resource";
    case 2: return "surface";
    case 3: return "";
    default: return std::nullopt;
  }
}

inline bool fits_a_resource(std::size_t size) {
  return size == KORVEL_BLOB_BYTES || size == KORVEL_LAYOUT_BYTES_VERSION_1 ||
         size == KORVEL_LAYOUT_BYTES_VERSION_2 || size == KORVEL_LAYOUT_BYTES_VERSION_3;
}

// Whether a file of this size can be a record of the named kind.
inline bool fits(std::size_t size, const std::optional<std::string>& kind) {
  if (kind == "resource") return fits_a_resource(size);
  if (kind == "surface") return size == KORVEL_SURFACE_BYTES;
  return !kind && (fits_a_resource(size) || size == KORVEL_SURFACE_BYTES);
}

}  // namespace fuzz
