// The format table as JSON and as a table.
#include <gtest/gtest.h>

#include "tests/harness/chips.h"
#include "tests/harness/off_by.h"
#include "tests/tools/run_tool.h"

namespace tool_test {
namespace {

using nlohmann::json;

json formats_of(const std::string& arguments) {
  return json_of(arguments).at("formats");
}

json format_of(const json& formats, int id) {
  for (const json& format : formats) {
    if (format.at("id") == id) return format;
  }
  ADD_FAILURE() << "format " << id << " is not listed";
  return {};
}

TEST(Formats, Records) {
  const json formats = formats_of("formats");
  EXPECT_EQ(format_of(formats, 29), json({{"id", 29},
                                          {"name", "R8G8B8A8_UNORM_SRGB"},
                                          {"flags", {"UNORM", "SRGB"}},
                                          {"bytes", 4},
                                          {"planes", 1},
                                          {"block", {{"width", 1}, {"height", 1}}},
                                          {"renderable", nullptr},
                                          {"sampleable", nullptr},
                                          {"ubwc", nullptr}}));
  EXPECT_EQ(format_of(formats, 103).at("planes"), 2);
  EXPECT_EQ(format_of(formats, 187).at("block"), json({{"width", 12}, {"height", 12}}));
  EXPECT_EQ(format_of(formats, 501).at("name"), nullptr);
}

// A name says what its class bits say.
TEST(Formats, NamesAgreeWithFlags) {
  for (const json& format : formats_of("formats")) {
    if (format.at("name").is_null()) continue;
    const std::string name = format.at("name");
    const std::string flags = format.at("flags").dump();
    const auto ends = [&](const char* ending) { return name.ends_with(ending); };
    const auto has = [&](const char* flag) { return flags.find(flag) != std::string::npos; };
    EXPECT_EQ(ends("_SRGB"), has("SRGB")) << name << flags;
    EXPECT_TRUE(!ends("_SNORM") || name.starts_with("BC") || has("SNORM")) << name << flags;
    EXPECT_TRUE(!ends("_SINT") || has("SIGNED")) << name << flags;
    EXPECT_TRUE(!name.starts_with("ASTC_") || has("BLOCK_COMPRESSED")) << name << flags;
    EXPECT_TRUE(!name.starts_with("BC") || has("BLOCK_COMPRESSED")) << name << flags;
    EXPECT_TRUE(!ends("_TYPELESS") || has("TYPELESS")) << name << flags;
  }
}

TEST(Formats, EveryNameMeansItsNumber) {
  int named = 0;
  for (const json& format : formats_of("formats")) {
    if (format.at("name").is_null()) continue;
    const int id = format.at("id");
    EXPECT_TRUE((id >= 1 && id <= 115) || (id >= 133 && id <= 187)) << id;
    ++named;
  }
  EXPECT_NUMBER(named, 115 + 14 * 3);  // the DXGI formats, and three classes of 14 ASTC block sizes
}

TEST(Formats, UnusedIdsOnlyWhenAskedFor) {
  const json used = formats_of("formats");
  const json all = formats_of("formats --all");
  EXPECT_NUMBER(all.size(), 722);
  EXPECT_LT(used.size(), all.size());
  for (const json& format : used) {
    const int id = format.at("id");
    EXPECT_TRUE(id != 0 && id != 119 && id != 136 && id != 500 && id != 670 && id != 700) << id;
  }
}

TEST(Formats, CapabilitiesOfAChip) {
  const json formats = formats_of("formats --chip " + hex(harness::full_chip(6).chip_id));
  const json colour = format_of(formats, 28);
  EXPECT_EQ(colour.at("renderable"), json({{"colour", true}, {"depth_stencil", true}}));
  EXPECT_EQ(colour.at("sampleable"),
            json({{"single_sampled", true}, {"multisampled", true}, {"depth_stencil", true}}));
  EXPECT_EQ(colour.at("ubwc"), true);
  const json depth = format_of(formats, 40);
  EXPECT_EQ(depth.at("renderable"), json({{"colour", false}, {"depth_stencil", true}}));
  EXPECT_EQ(depth.at("sampleable"),
            json({{"single_sampled", false}, {"multisampled", false}, {"depth_stencil", true}}));
  EXPECT_EQ(format_of(formats, 508).at("sampleable").at("multisampled"), false);
  EXPECT_EQ(format_of(formats, 508).at("sampleable").at("single_sampled"), true);
  EXPECT_EQ(format_of(formats, 70).at("ubwc"), false);
}

TEST(Formats, ChipWithoutARow) {
  const Outcome run = run_tool("formats --chip 0x12345678 --unknown-chip");
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_NE(run.err.find("warning: Unknown Family ID 0\n"), std::string::npos) << run.err;
  EXPECT_EQ(count_lines(run.err), 2U) << run.err;
}

TEST(Formats, Table) {
  const Outcome run = run_tool("formats");
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_NE(run.out.find("R8G8B8A8_UNORM_SRGB"), std::string::npos);
  EXPECT_EQ(run.out.find("renderable"), std::string::npos);
  EXPECT_NE(run_tool("formats --chip 0x43010000").out.find("renderable"), std::string::npos);
}

}  // namespace
}  // namespace tool_test
