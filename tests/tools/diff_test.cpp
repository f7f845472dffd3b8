// What differs between two layouts, and where they part. Numbers are worked out by hand.
#include <gtest/gtest.h>

#include "tests/tools/json_words.h"
#include "tests/tools/stored_records.h"

namespace tool_test {
namespace {

using nlohmann::json;

// Of a run whose sides differ.
json different(const std::vector<std::string>& arguments) {
  std::vector<std::string> all = {"diff", "--json"};
  all.insert(all.end(), arguments.begin(), arguments.end());
  const Outcome run = run_tool_with(all);
  EXPECT_EQ(run.exit_code, 1) << run.err;
  const json found = json::parse(run.out, nullptr, false);
  EXPECT_FALSE(found.is_discarded()) << run.out;
  EXPECT_EQ(found.value("alike", true), false);
  return found;
}

// The two numbers of a field; empty when it does not differ.
json difference_of(const json& found, const std::string& field) {
  for (const json& difference : found.at("differences")) {
    if (difference.at("field") == field) return {difference.at("a"), difference.at("b")};
  }
  return json::array();
}

const std::string kPitch = "level[0].plane[0].image_pitch";

// What a side says itself counts.
TEST(Diff, AlikeRequests) {
  const Outcome alike = run_tool_with({"diff", "--format", "28", "--size", "1x1", "--a",
                                       "--size 1918x1080", "--b", "--size 1918x1080 --samples 1"});
  EXPECT_EQ(alike.exit_code, 0) << alike.err;
  EXPECT_NE(alike.out.find("\nAlike in all 29 fields\n"), std::string::npos) << alike.out;
}

// 2000 texels: steps of 64 make 2048 elements, 8192 bytes, four spans of 2048: 1024 bytes more, 2304
// elements. Tiles of 64 x 16 make 2048, and 1088 rows of 1080.
TEST(Diff, WhereLinearAndTiledPart) {
  const json found =
      different({"--format", "28", "--size", "2000x1080", "--a", "--linear", "--b", ""});
  EXPECT_EQ(difference_of(found, kPitch), json::array({9216, 8192}));
  EXPECT_EQ(difference_of(found, "level[0].plane[0].image_height"), json::array({1080, 1088}));
  EXPECT_EQ(difference_of(found, "level[0].tiled"), json::array({false, true}));
  EXPECT_EQ(difference_of(found, "format"), json::array());
  const json& parting = found.at("parting");
  EXPECT_EQ(parting.at("field"), "level[0].plane[0].image_width");
  EXPECT_EQ(parting.at("a").at("after").at("value"), 2304);
  EXPECT_EQ(parting.at("a").at("number"), 3);
  EXPECT_EQ(parting.at("b").at("after").at("value"), 2048);
  EXPECT_EQ(parting.at("b").at("number"), 2);
}

// Both widths come to 128 elements and part in the height: one tile of 16 rows, and two.
TEST(Diff, PartsAtTheFirstNumberThatDiffers) {
  const json found = different({"--format", "28", "--a", "--size 100x16", "--b", "--size 100x17"});
  EXPECT_EQ(found.at("parting").at("field"), "level[0].plane[0].image_height");
  EXPECT_EQ(found.at("parting").at("a").at("after").at("value"), 16);
  EXPECT_EQ(found.at("parting").at("b").at("before").at("value"), 17);
}

TEST(Diff, ChipsThatLayOutAlike) {
  const Outcome run = run_tool_with({"diff", "--format", "nv12", "--size", "1920x1080", "--a",
                                     "--chip family-6", "--b", "--chip family-7"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_NE(run.out.find("\n1 of 37 fields differ\n"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("No number of the two layouts differs."), std::string::npos) << run.out;
}

TEST(Diff, FieldsThatOneSideLacks) {
  const json found = different(
      {"--format", "28", "--size", "64x64", "--a", "--levels 2", "--b", "--levels 3 --ubwc"});
  const json flags = difference_of(found, "level[0].plane[0].flag_pitch");
  ASSERT_EQ(flags.size(), 2U);
  EXPECT_TRUE(flags[0].is_null());
  EXPECT_TRUE(flags[1].is_number());
  EXPECT_EQ(difference_of(found, "level[2].tiled"), json::array({nullptr, true}));
  EXPECT_EQ(difference_of(found, "levels"), json::array({2, 3}));
}

TEST(Diff, BlobAndRequest) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder);
  const std::string request =
      " --format 28 --size 256x256 --ubwc --chip " + hex(stored_chip().chip_id);
  const std::string same = folder.file("same", bytes_of(blob));
  EXPECT_EQ(run_tool("diff " + same + request).exit_code, 0);
  EXPECT_EQ(run_tool("diff " + same + " --json" + request).exit_code, 0);
  blob.layout.level[0].plane[0].image_pitch -= 4;  // of 256 x 4
  const std::string other = folder.file("other", bytes_of(blob));
  const Outcome run = run_tool("diff " + other + request);
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_NE(run.out.find("They part at level[0].plane[0].image_pitch\n  A  stores 1020 bytes\n"),
            std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find("256 elements -> 1024 bytes\n"), std::string::npos) << run.out;
  const json swapped = different({other, "--a", request});
  EXPECT_EQ(difference_of(swapped, kPitch), json::array({1024, 1020}));
  EXPECT_EQ(swapped.at("parting").at("a").at("field"), kPitch);
  EXPECT_TRUE(swapped.at("parting").at("b").is_null());
}

TEST(Diff, TwoBlobs) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder);
  const std::string one = folder.file("one", bytes_of(blob));
  EXPECT_EQ(run_tool("diff " + one + " " + one).exit_code, 0);
  blob.header.blob_size = 7;
  blob.layout.samples = 4;
  blob.layout.padding_5476 = 1;  // in no field
  const json found = different({one, folder.file("other", bytes_of(blob))});
  EXPECT_EQ(found.at("differences").size(), 2U);
  EXPECT_EQ(difference_of(found, "header.blob_size"), json::array({5536, 7}));
  EXPECT_EQ(difference_of(found, "samples"), json::array({1, 4}));
  EXPECT_TRUE(found.at("parting").is_null());
  // A bare record has no header to compare.
  EXPECT_EQ(
      run_tool("diff " + one + " " + folder.file("bare", bytes_of(stored_blob(folder).layout)))
          .exit_code,
      0);
}

TEST(Diff, SurfaceRecords) {
  const ScratchFolder folder;
  SurfaceMetadata surface = stored_surface();
  const std::string one = folder.file("one", bytes_of(surface));
  surface.level[0].plane[0].actual_width = 63;
  const json found = different({one, folder.file("other", bytes_of(surface))});
  EXPECT_EQ(found.at("differences").size(), 1U);
  EXPECT_EQ(difference_of(found, "level[0].plane[0].actual_width"), json::array({64, 63}));
  const std::string blob = folder.file("blob", bytes_of(stored_blob(folder)));
  EXPECT_NE(reason_of_refusal(run_tool("diff " + one + " " + blob)).find("different kinds"),
            std::string::npos);
}

// Whatever a record counts, only what it has room for is read.
TEST(Diff, RecordsThatCountTooMuch) {
  const ScratchFolder folder;
  LayoutMetadata blob = stored_blob(folder);
  const std::string one = folder.file("one", bytes_of(blob));
  blob.layout.levels = 0xFFFFFFFF;
  blob.layout.level[0].planes = 0xFFFFFFFF;
  blob.layout.size = 0xFFFFFFFF;
  const json found = different({one, folder.file("other", bytes_of(blob))});
  EXPECT_EQ(difference_of(found, "levels"), json::array({1, 0xFFFFFFFF}));
  EXPECT_EQ(difference_of(found, "level[15].tiled"), json::array());
  blob.header.record_offset = 5535;
  reason_of_refusal(run_tool("diff " + one + " " + folder.file("other", bytes_of(blob))));
}

TEST(Diff, Warnings) {
  const json found = different(
      {"--format", "28", "--size", "16384x16384", "--a", "--samples 4", "--b", "--samples 2"});
  ASSERT_EQ(found.at("warnings").size(), 1U);
  EXPECT_TRUE(found.at("warnings")[0].get<std::string>().starts_with("A: level 0, plane 0, image"));
}

TEST(Diff, WhatItCannotMakeSenseOf) {
  const auto expect_reason = [](const std::vector<std::string>& arguments,
                                const std::string& part) {
    std::vector<std::string> all = {"diff"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const std::string reason = reason_of_refusal(run_tool_with(all));
    EXPECT_NE(reason.find(part), std::string::npos) << reason;
  };
  const ScratchFolder folder;
  const std::string blob = folder.file("blob", bytes_of(stored_blob(folder)));
  expect_reason({}, "two layouts are compared");
  expect_reason({"--format", "28", "--size", "1x1"}, "two layouts are compared");
  expect_reason({blob}, "another side");
  expect_reason({blob, blob, blob}, "at most two files");
  expect_reason({blob, blob, "--format", "28"}, "no side for a request");
  expect_reason({blob, "--a", "--linear", "--b", "--linear"}, "--a or --b");
  expect_reason({"--a", "--linear", "--b", ""}, "--a: --format is missing");
  expect_reason({"--format", "28", "--a", "--size 1x1", "--b", ""}, "--b: --size is missing");
  expect_reason({"--format", "28", "--size", "1x1", "--a", "--lineer"}, "--a: ");
  expect_reason({"--format", "28", "--size", "1x1", "--a", "--samples 3"}, "1, 2, 4 or 8");
  expect_reason({folder.path("missing"), blob}, "cannot open");
}

}  // namespace
}  // namespace tool_test
