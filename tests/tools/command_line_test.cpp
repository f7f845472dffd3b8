// Command lines that make no sense, and what helps with them.
#include <gtest/gtest.h>

#include "tests/tools/run_tool.h"
#include "tests/tools/scratch_folder.h"

namespace tool_test {
namespace {

const std::string kShow = "show --format 28 --size 64x64";

void expect_reason(const std::string& arguments, const std::string& part) {
  const std::string reason = reason_of_refusal(run_tool(arguments));
  EXPECT_NE(reason.find(part), std::string::npos) << arguments << ": " << reason;
}

TEST(CommandLine, HelpAndVersion) {
  for (const char* arguments :
       {"--help", "-h", "show --help", "explain --help", "table --help", "diff --help",
        "check --help", "dump --help", "chips --help", "formats --help"}) {
    const Outcome run = run_tool(arguments);
    EXPECT_EQ(run.exit_code, 0) << arguments;
    EXPECT_NE(run.out.find("Usage: korvel-layout"), std::string::npos) << arguments;
    EXPECT_EQ(run.err, "") << arguments;
  }
  EXPECT_NE(run_tool("--help").out.find("Examples:"), std::string::npos);
  const Outcome version = run_tool("--version");
  EXPECT_EQ(version.exit_code, 0);
  EXPECT_TRUE(version.out.starts_with("korvel-layout ")) << version.out;
  EXPECT_EQ(count_lines(version.out), 1U) << version.out;
}

TEST(CommandLine, WhatItCannotMakeSenseOf) {
  expect_reason("", "no command given");
  expect_reason("shew", "\"shew\" is no command");
  expect_reason("--chip 1", "--chip");
  expect_reason("show", "required");
  expect_reason("show --format 28", "--size");
  expect_reason("show --size 1x1", "--format");
  expect_reason(kShow + " --colour", "--colour");
  expect_reason(kShow + " extra", "extra");
  expect_reason(kShow + " --format 29", "--format takes exactly one value");
  expect_reason(kShow + " --samples", "--samples takes exactly one value");
  expect_reason("chips --chip 1", "--chip");
  expect_reason("check --chip 1", "FILE is required");
  expect_reason("check somewhere", "cannot open");
  expect_reason("dump", "FILE is required");
  expect_reason("show chips", "required");
}

TEST(CommandLine, Formats) {
  expect_reason("show --size 1x1 --format r8g8b8a8_unrom", "the closest is R8G8B8A8_UNORM");
  expect_reason("show --size 1x1 --format DXGI_FORMAT_NV13", "the closest is NV12");
  expect_reason("show --size 1x1 --format astc_12x12_sint", "the closest is ASTC_12X12_");
  expect_reason("show --size 1x1 --format " + std::string(100000, 'z'), "no known format name");
  expect_reason("show --size 1x1 --format 4294967296", "not a number from 0 to 4294967295");
  expect_reason("show --size 1x1 --format -1", "no known format name");
  expect_reason("show --size 1x1 --format 0", "--format 0: formats are 1 to 721");
  expect_reason("show --size 1x1 --format 722", "--format 722: formats are 1 to 721");
  expect_reason("show --size 1x1 --format 4294967295", "--format 4294967295: formats");
}

TEST(CommandLine, Sizes) {
  for (const char* size :
       {"1920", "1920x", "x1080", "1920x1080x", "1920x1080x6x1", "1920X1080", "0x10x10x10", "axb",
        "1 920x1", "1920*1080", "2147483648x1", "1x-2147483649", "+1x1", "1.5x1", "1x1 "}) {
    const std::string reason =
        reason_of_refusal(run_tool_with({"show", "--format", "28", "--size", size}));
    EXPECT_NE(reason.find("--size"), std::string::npos) << size << ": " << reason;
  }
  expect_reason("show --format 28 --size 0x10",
                "--size 0x10x1: width, height and depth are 1 or more");
  expect_reason("show --format 28 --size -5x10x2", "--size -5x10x2");
  expect_reason("show --format 28 --size 1x1x0", "--size 1x1x0");
}

TEST(CommandLine, Numbers) {
  expect_reason(kShow + " --samples 3", "--samples 3: 1, 2, 4 or 8");
  expect_reason(kShow + " --samples 0", "--samples 0: 1, 2, 4 or 8");
  expect_reason(kShow + " --samples four", "--samples");
  expect_reason(kShow + " --samples -1", "--samples");
  expect_reason(kShow + " --planes 4", "--planes 4: 0 to 3");
  expect_reason(kShow + " --levels 0", "--levels");
  expect_reason(kShow + " --levels 16", "from 1 to 15");
  expect_reason(kShow + " --chip 0x100000000", "--chip");
  expect_reason(kShow + " --chip 43010000h", "--chip");
  expect_reason(kShow + " --chip 0x", "--chip");
  expect_reason("formats --chip one", "--chip");
  EXPECT_NE(
      reason_of_refusal(run_tool_with({"show", "--format", "28", "--size", "1x1", "--chip", ""})),
      "");
}

TEST(CommandLine, Combinations) {
  expect_reason(kShow + " --extended", "--extra");
  expect_reason(kShow + " --force", "--blob");
  expect_reason("show --format d32_float --size 1x1 --linear",
                "--linear: D32_FLOAT (40) is a depth or stencil format");
}

// A report stays one line whatever it quotes.
TEST(CommandLine, LineEndsInArguments) {
  reason_of_refusal(run_tool_with({"show", "--format", "a\nb", "--size", "1x1"}));
  reason_of_refusal(run_tool_with({"show", "--format", "28", "--size", "1x1\nkorvel"}));
  reason_of_refusal(run_tool_with({"sh\now"}));
  reason_of_refusal(run_tool_with({"show", "--format", "28", "--size", "1x1", "more\nand more"}));
  reason_of_refusal(run_tool_with({"dump", "no\nsuch file"}));
}

TEST(CommandLine, StandardOutputThatTakesNothing) {
  const ScratchFolder folder;
  const std::string err = folder.path("err");
  EXPECT_EQ(exit_code_of(start_tool({"chips"}, "/dev/full", err)), 2);
  EXPECT_EQ(count_lines(file_content(err)), 1U) << file_content(err);
}

}  // namespace
}  // namespace tool_test
