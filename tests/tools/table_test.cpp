// What surfaces cost, a row each. Numbers are worked out by hand.
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "tests/harness/chips.h"
#include "tests/tools/json_words.h"
#include "tests/tools/run_tool.h"

namespace tool_test {
namespace {

using nlohmann::json;

std::string table_on_family(uint32_t family_id, const std::string& arguments) {
  return "table --chip " + hex(harness::full_chip(family_id).chip_id) + " " + arguments;
}

// Luma 1920 x 1080 bytes, chroma 960 x 540 pairs: 2073600 + 1036800 = 3110400. Both planes are laid
// out whole: rows of 1920 bytes, 2073600 bytes in whole 4096: 2076672, twice: 4153344.
TEST(Table, Nv12) {
  const json rows = json_of(table_on_family(6, "--format nv12 --size 1920x1080 --linear"))["rows"];
  ASSERT_EQ(rows.size(), 1U);
  expect_words(rows[0], {{"image_pitch", 1920},
                         {"gpu_buffer_size", 4153344},
                         {"payload_bytes", 3110400},
                         {"over_payload_bytes", 1042944},
                         {"flag_bytes", 0},
                         {"extra_bytes", 0}});
  EXPECT_NEAR(rows[0]["padding_per_cent"].get<double>(), 100.0 * 1042944 / 4153344, 1e-9);
  EXPECT_EQ(rows[0]["wrapped"], false);
}

// 1088 rows of 7680 bytes and a flag buffer of 36864; the texels take 1080 rows.
TEST(Table, FlagBuffersAreNoPadding) {
  const json rows = json_of(table_on_family(6, "--format 28 --size 1920x1080 --ubwc"))["rows"];
  ASSERT_EQ(rows.size(), 1U);
  expect_words(rows[0], {{"gpu_buffer_size", 8355840 + 36864},
                         {"payload_bytes", 8294400},
                         {"over_payload_bytes", 61440 + 36864},
                         {"flag_bytes", 36864}});
  EXPECT_NEAR(rows[0]["padding_per_cent"].get<double>(), 100.0 * 61440 / 8392704, 1e-9);
}

// 512 x 512 blocks of 8 bytes, then quarters down to one: (4^10 - 1) / 3 blocks, and one block each
// for the last two levels, of 2 and 1 texels.
TEST(Table, PayloadOfAChain) {
  const json rows =
      json_of(table_on_family(6, "--format bc1_unorm --size 2048x2048 --levels full"))["rows"];
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0]["request"]["levels"], 12);
  expect_word(rows[0], "payload_bytes", (349525 + 2) * 8);
}

// 20 x 10 texels x 4 samples x 4 bytes x 3 slices.
TEST(Table, PayloadOfSamplesAndSlices) {
  const json rows =
      json_of(table_on_family(7, "--format d32_float --size 20x10x3 --samples 4"))["rows"];
  ASSERT_EQ(rows.size(), 1U);
  expect_word(rows[0], "payload_bytes", 20 * 10 * 4 * 4 * 3);
}

TEST(Table, EveryCombinationOnce) {
  const json table = json_of(
      "table --chip all-families --format 28,70..71 --size 64..128:32x16,5x5x2 --samples 1,4 "
      "--levels none,2..3 --linear both --ubwc both");
  // 3 chips x 3 formats x (3 + 1) sizes x 2 x 3 x 2 x 2.
  EXPECT_EQ(table["rows"].size(), 3U * 3 * 4 * 2 * 3 * 2 * 2);
  std::set<std::string> different;
  for (const json& row : table["rows"]) {
    different.insert(row["chip"]["chip_id_hex"].dump() + row["request"].dump());
  }
  EXPECT_EQ(different.size(), table["rows"].size());
  EXPECT_EQ(table["refused"], json::array());
}

// The rows are made without the exports, of which show prints the answers.
TEST(Table, AgreesWithShow) {
  for (const uint32_t family_id : {5U, 6U, 7U}) {
    const std::string chip = " --chip " + hex(harness::full_chip(family_id).chip_id);
    for (const char* request :
         {" --format 28 --size 1918x1080 --linear", " --format nv12 --size 1280x720 --ubwc",
          " --format bc1_unorm --size 100x100 --levels 7",
          " --format 20 --size 65x33x5 --samples 2",
          " --format 508 --size 1000x10 --linear --extra --extended"}) {
      const json shown = json_of("show" + chip + request);
      const json row = json_of("table" + chip + request).at("rows").at(0);
      EXPECT_EQ(row.at("gpu_buffer_size"), shown.at("gpu_buffer_size")) << chip << request;
      EXPECT_EQ(row.at("image_pitch"), shown.at("layout")["level"][0]["plane"][0]["image_pitch"]);
      EXPECT_EQ(row.at("request"), shown.at("request"));
      EXPECT_EQ(row.at("chip"), shown.at("chip"));
    }
  }
}

std::vector<uint64_t> sizes_in(const std::string& arguments) {
  std::vector<uint64_t> sizes;
  const json table = json_of(arguments);
  for (const json& row : table.at("rows")) sizes.push_back(row["gpu_buffer_size"]);
  return sizes;
}

// 4096, 16384 and 65536 bytes: tiles of 64 x 16 elements of 4 bytes.
TEST(Table, Sorted) {
  const std::string table = table_on_family(6, "--format 28 --size 64x64,64x16,128x128");
  using Sizes = std::vector<uint64_t>;
  EXPECT_EQ(sizes_in(table), (Sizes{16384, 4096, 65536}));
  EXPECT_EQ(sizes_in(table + " --sort bytes"), (Sizes{4096, 16384, 65536}));
  EXPECT_EQ(sizes_in(table + " --sort bytes --reverse"), (Sizes{65536, 16384, 4096}));
  EXPECT_EQ(sizes_in(table + " --sort size"), (Sizes{4096, 16384, 65536}));
  for (const char* column : {"chip", "format", "samples", "levels", "tiling", "ubwc", "pitch",
                             "payload", "over", "padding", "flags"}) {
    EXPECT_EQ(run_tool(table + " --sort " + column).exit_code, 0) << column;
  }
}

TEST(Table, Csv) {
  const Outcome run = run_tool(table_on_family(6, "--format 28 --size 64x16,65x16 --csv"));
  EXPECT_EQ(run.exit_code, 0) << run.err;
  std::istringstream lines(run.out);
  std::string header;
  std::getline(lines, header);
  EXPECT_EQ(header,
            "chip_id,format,format_name,width_texels,height_texels,slices,samples,levels,tiled,"
            "ubwc,pitch_bytes,allocation_bytes,payload_bytes,over_payload_bytes,padding_per_cent,"
            "flag_bytes,wrapped");
  std::string row;
  std::getline(lines, row);
  EXPECT_EQ(row.substr(row.find(',')),
            ",28,R8G8B8A8_UNORM,64,16,1,1,,1,0,256,4096,4096,0,0.0000,0,0");
  // Two tiles a row: 8192 bytes, of which 65 x 16 x 4 = 4160 are texels: 4032 / 8192 = 49.21875 %.
  std::getline(lines, row);
  EXPECT_EQ(row.substr(row.find(',')),
            ",28,R8G8B8A8_UNORM,65,16,1,1,,1,0,512,8192,4160,4032,49.2188,0,0");
  EXPECT_EQ(count_lines(run.out), 3U);
}

TEST(Table, TextHasARowEach) {
  const Outcome run = run_tool(table_on_family(6, "--format 28,nv12 --size 64x16"));
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_EQ(run.err, "");
  EXPECT_NE(run.out.find("R8G8B8A8_UNORM  64x16 "), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("NV12            64x16 "), std::string::npos) << run.out;
}

TEST(Table, WhatIsRefusedIsLeftOut) {
  const std::string table = table_on_family(6, "--format d32_float --size 64x64 --linear both");
  const json both = json_with_warnings(table);
  EXPECT_EQ(both["rows"].size(), 1U);
  ASSERT_EQ(both["refused"].size(), 1U);
  EXPECT_EQ(
      both["refused"][0]["reason"],
      "--linear: D32_FLOAT (40) is a depth or stencil format, and these are tiled only; leave "
      "--linear out");
  EXPECT_EQ(run_tool(table).exit_code, 0);
  EXPECT_EQ(run_tool(table + " --strict").exit_code, 1);
}

TEST(Table, NumbersThatWrap) {
  const json wrapped =
      json_with_warnings(table_on_family(6, "--format 28 --size 16384x16384 --samples 4"));
  EXPECT_EQ(wrapped["rows"][0]["wrapped"], true);
  EXPECT_TRUE(wrapped["rows"][0]["padding_per_cent"].is_null());
}

TEST(Table, WhatItCannotMakeSenseOf) {
  const auto expect_reason = [](const std::string& arguments, const std::string& part) {
    const std::string reason = reason_of_refusal(run_tool("table " + arguments));
    EXPECT_NE(reason.find(part), std::string::npos) << arguments << ": " << reason;
  };
  const std::string one = "--format 28 --size 64x64";
  expect_reason("--format 28", "--size is required");
  expect_reason("--format 28,,29 --size 1x1", "\"\" is no known format name");
  expect_reason("--format 28..20 --size 1x1", "--format");
  expect_reason("--format 28 --size 64", "write for example 1920x1080");
  expect_reason("--format 28 --size 64x", "--size");
  expect_reason("--format 28 --size 0x1", "--size");
  expect_reason("--format 28 --size 1..2..3x1", "--size");
  expect_reason("--format 28 --size 1..8:0x1", "--size");
  expect_reason("--format 28 --size 1..2147483647x1", "more than 1000000");
  expect_reason("--format 28 --size 1..2000x1..2000", "more than 1000000");
  expect_reason("--format all --size 1..1000x1..1000", "more than 1000000");
  expect_reason(one + " --samples 16", "--samples");
  expect_reason(one + " --levels 0", "--levels");
  expect_reason(one + " --linear maybe", "--linear both");
  expect_reason(one + " --sort colour", "there are chip, format, size");
  expect_reason(one + " --reverse", "--sort");
  expect_reason(one + " --csv --json", "exclude each other");
  expect_reason(one + " --extended", "--extra");
  expect_reason(one + " --chip 0x12345678", "--unknown-chip");
  EXPECT_EQ(run_tool("table " + one + " --chip 0x12345678 --unknown-chip").exit_code, 0);
}

}  // namespace
}  // namespace tool_test
