// Command lines that make no sense, and what helps with them.
#include <gtest/gtest.h>

#include <map>

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
        "fit --help", "guess --help", "help", "help show", "help diff", "", "check --help",
        "dump --help", "chips --help", "formats --help"}) {
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
  expect_reason("shew", "\"shew\" is no command; did you mean show?");
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

TEST(CommandLine, HelpOfACommand) {
  for (const char* command : {"show", "explain", "table", "diff", "fit", "guess", "chips",
                              "formats", "check", "dump", "schema"}) {
    const std::string name = command;
    const std::string help = run_tool("help " + name).out;
    EXPECT_EQ(help, run_tool(name + " --help").out);
    EXPECT_NE(help.find("Usage: korvel-layout " + name), std::string::npos) << help;
    EXPECT_NE(run_tool("help").out.find("\n  " + name + " "), std::string::npos) << name;
  }
  EXPECT_EQ(run_tool("").out, run_tool("--help").out);
  expect_reason("help shaw", "\"shaw\" is no command; did you mean show?");
}

TEST(CommandLine, DidYouMean) {
  expect_reason("chip", "did you mean chips?");
  expect_reason("xyzzyxy", "\"xyzzyxy\" is no command; korvel-layout --help lists them");
  expect_reason(kShow + " --lineer",
                "\"--lineer\" is no option of korvel-layout show; did you mean "
                "--linear? korvel-layout show --help lists them");
  expect_reason(kShow + " --sample=4", "did you mean --samples?");
  expect_reason(kShow + " --colour",
                "\"--colour\" is no option of korvel-layout show; korvel-layout");
  expect_reason(kShow + " --chip 0x43010001",
                "the closest id is 0x43010000; korvel-layout chips lists all, and --unknown-chip");
  expect_reason(kShow + " more", "\"more\" is one word too many");
  expect_reason("show --format 28", "--size is required, for example --size 1920x1080");
  expect_reason("show --size 1x1", "--format is required, for example --format r8g8b8a8_unorm");
}

// By id, model, revision or family. A model or revision of several chips needs more words.
TEST(CommandLine, Chips) {
  const auto chip_of = [](const std::string& chip) {
    return json_of(kShow + " --chip " + chip).at("chip").at("chip_id_hex").get<std::string>();
  };
  EXPECT_EQ(chip_of("0x43010000"), "0x43010000");
  EXPECT_EQ(chip_of("1124139008"), "0x43010000");
  EXPECT_EQ(chip_of("0x0316000A"), "0x43010000");
  EXPECT_EQ(chip_of("family-6"), "0x43010000");
  EXPECT_EQ(chip_of("0x060323"), "0x430E0000");
  expect_reason(kShow + " --chip 0x0316010A",
                "2 chips have 0x0316010A; name one of them: 0x43010060, 0x43010061");
  expect_reason(kShow + " --chip family-8", "there are family-5, family-6 and family-7");
  expect_reason(kShow + " --chip 0x12345678", "no chip has the id, model or revision 0x12345678");
  EXPECT_EQ(run_tool(kShow + " --chip 0x12345678 --unknown-chip").exit_code, 0);
}

TEST(CommandLine, FormatsByOtherNames) {
  const auto format_of = [](const std::string& format) {
    return json_of("show --size 64x64 --format " + format).at("request").at("format").get<int>();
  };
  const std::map<std::string, int> formats = {{"VK_FORMAT_R8G8B8A8_UNORM", 28},
                                              {"VK_FORMAT_R8G8B8A8_SRGB", 29},
                                              {"vk_format_r16g16b16a16_sfloat", 10},
                                              {"VK_FORMAT_B8G8R8A8_SRGB", 91},
                                              {"VK_FORMAT_A2B10G10R10_UNORM_PACK32", 24},
                                              {"VK_FORMAT_BC7_SRGB_BLOCK", 99},
                                              {"VK_FORMAT_ASTC_12x12_SRGB_BLOCK", 187},
                                              {"VK_FORMAT_D32_SFLOAT", 40},
                                              {"VK_FORMAT_G8_B8R8_2PLANE_420_UNORM", 103},
                                              {"DRM_FORMAT_ABGR8888", 28},
                                              {"AB24", 28},
                                              {"AR24", 87},
                                              {"XR24", 88},
                                              {"DRM_FORMAT_NV12", 103},
                                              {"YUYV", 107},
                                              {"RG16", 85}};
  for (const auto& [name, format] : formats) EXPECT_EQ(format_of(name), format) << name;
  expect_reason("show --size 1x1 --format XB24",
                "R8G8B8A8_UNORM (28) is laid out alike, with other channels: write --format 28");
  expect_reason("show --size 1x1 --format VK_FORMAT_R8G8B8A8", "no known format name");
}

TEST(CommandLine, Formats) {
  expect_reason("show --size 1x1 --format r8g8b8a8_unrom", "the closest is R8G8B8A8_UNORM");
  expect_reason("show --size 1x1 --format DXGI_FORMAT_NV13", "the closest is NV12");
  expect_reason("show --size 1x1 --format astc_12x12_sint", "the closest is ASTC_12X12_");
  std::string endless = "show --size 1x1 --format ";
  endless.append(100000, 'z');
  expect_reason(endless, "no known format name");
  expect_reason("show --size 1x1 --format 4294967296", "--format 4294967296: formats are 1 to 721");
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
                "--size 0x10: width, height and depth are 1 or more");
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
