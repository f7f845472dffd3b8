// Every exit code that the help documents, of every command.
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>

#include "tests/tools/stored_records.h"

namespace tool_test {
namespace {

using Arguments = std::vector<std::string>;
using Codes = std::set<int>;

Arguments with(Arguments arguments, const Arguments& more) {
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

struct Case {
  Arguments arguments;
  int exit_code;
};

std::vector<Case> cases(const ScratchFolder& folder) {
  LayoutMetadata record = stored_blob(folder);
  const std::string valid = folder.file("valid", bytes_of(record));
  record.layout.samples = 3;
  const std::string invalid = folder.file("invalid", bytes_of(record));
  const Arguments surface = {"--format", "28", "--size", "64x64"};
  const Arguments beyond_the_pitch_limit = {"--format",  "28",       "--size",
                                            "20000x100", "--linear", "--strict"};
  const Arguments nothing = {"--format", "28", "--size", "64x0"};
  return {
      {with({"show"}, surface), 0},
      {with({"show"}, beyond_the_pitch_limit), 1},
      {with({"show"}, nothing), 2},
      {with({"explain"}, surface), 0},
      {with({"explain"}, beyond_the_pitch_limit), 1},
      {with({"explain"}, nothing), 2},
      {with({"table"}, surface), 0},
      // Depth formats are tiled only: the row is left out with a warning.
      {{"table", "--format", "d32_float", "--size", "64x64", "--linear", "--strict"}, 1},
      {with({"table"}, nothing), 2},
      {with({"diff", "--a", "--linear", "--b", "--linear"}, surface), 0},
      {with({"diff", "--a", "--linear", "--b", "--ubwc"}, surface), 1},
      {with({"diff"}, surface), 2},
      // 64 elements of 4 bytes.
      {with({"fit", "--linear", "--plane", "pitch=256"}, surface), 0},
      {with({"fit", "--linear", "--plane", "pitch=255"}, surface), 1},
      {with({"fit"}, surface), 2},
      // 64 rows of 256 bytes are 16384, and no layout is an odd number of bytes.
      {with({"guess", "--bytes", "16384"}, surface), 0},
      {with({"guess", "--bytes", "16383"}, surface), 1},
      {with({"guess"}, surface), 2},
      {{"check", valid}, 0},
      {{"check", invalid}, 1},
      {{"check", folder.path("missing")}, 2},
      {{"dump", valid}, 0},
      {{"dump", invalid}, 0},
      {{"dump", folder.path("missing")}, 2},
      {{"chips"}, 0},
      {{"chips", "--chip"}, 2},
      {{"formats"}, 0},
      {{"formats", "--chip", "none"}, 2},
      {{"manual"}, 0},
      {{"manual", "more"}, 2},
  };
}

// "Exit codes: 0 alike, 1 different, 2 bad input."
Codes documented_codes(const std::string& help) {
  Codes codes;
  const std::size_t start = help.find("Exit codes:");
  if (start == std::string::npos) return codes;
  const std::regex code("\\b([0-9]) ");
  for (std::sregex_iterator at(help.begin() + static_cast<std::ptrdiff_t>(start), help.end(), code),
       end;
       at != end; ++at) {
    codes.insert(std::stoi((*at)[1]));
  }
  return codes;
}

TEST(ExitCodes, OfEveryCommand) {
  const ScratchFolder folder;
  std::map<std::string, Codes> tried;
  for (const auto& [arguments, exit_code] : cases(folder)) {
    const Outcome run = run_tool_with(arguments);
    EXPECT_EQ(run.exit_code, exit_code) << testing::PrintToString(arguments) << run.err;
    EXPECT_EQ(run.out.empty(), exit_code == 2) << testing::PrintToString(arguments);
    tried[arguments.front()].insert(exit_code);
  }
  for (const char* command : {"diff", "fit", "guess"}) {
    EXPECT_EQ(documented_codes(run_tool("help " + std::string(command)).out), tried[command]);
  }
  // The last one is a bug's.
  EXPECT_EQ(documented_codes(run_tool("help").out), (Codes{0, 1, 2, 3}));
  for (const char* command : {"show", "explain", "table", "check"}) {
    EXPECT_EQ(tried[command], (Codes{0, 1, 2})) << command;
  }
  const std::string help = run_tool("help").out;
  for (const auto& [command, codes] : tried) {
    EXPECT_NE(help.find("\n  " + command + " "), std::string::npos) << command;
  }
}

}  // namespace
}  // namespace tool_test
