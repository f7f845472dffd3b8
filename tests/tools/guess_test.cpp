// Which layouts come to a number of bytes. Numbers are worked out by hand.
#include <gtest/gtest.h>

#include <set>

#include "tests/harness/chips.h"
#include "tests/tools/json_words.h"
#include "tests/tools/run_tool.h"

namespace tool_test {
namespace {

using nlohmann::json;

json guess(const std::string& arguments, int exit_code = 0) {
  const Outcome run = run_tool("guess --json " + arguments);
  EXPECT_EQ(run.exit_code, exit_code) << run.err;
  EXPECT_EQ(run.err, "");
  const json found = json::parse(run.out, nullptr, false);
  EXPECT_FALSE(found.is_discarded()) << run.out;
  return found;
}

std::string on_family(uint32_t family_id) {
  return " --chip " + hex(harness::full_chip(family_id).chip_id);
}

// 1088 rows of 7680 bytes and 36864 of flags.
TEST(Guess, FlagBuffers) {
  const json found =
      guess("--bytes 8392704 --size 1920x1080 --format 28 --samples 1" + on_family(6)).at("found");
  ASSERT_EQ(found.size(), 1U) << found;
  EXPECT_EQ(found[0]["request"]["tiled"], true);
  EXPECT_EQ(found[0]["request"]["ubwc"], true);
  EXPECT_TRUE(found[0]["request"]["levels"].is_null());
  expect_word(found[0], "image_pitch", 7680);
  EXPECT_EQ(found[0]["counts_record"], false);
  EXPECT_EQ(found[0]["groups"][0]["formats"][0]["format"], 28);
}

// The 5512 bytes of the record count in total_size.
TEST(Guess, WithTheRecord) {
  const json found =
      guess("--bytes 8398216 --size 1920x1080 --format 28 --samples 1" + on_family(6)).at("found");
  ASSERT_EQ(found.size(), 1U) << found;
  EXPECT_EQ(found[0]["counts_record"], true);
}

// Two planes of 1920 x H bytes, each in whole 4096: 2076672 bytes have H from 1080 (2073600) to 1081
// (2075520).
TEST(Guess, SizesOfARange) {
  const json found = guess(
                         "--bytes 4153344 --size 1920x1000..1100 --format nv12 --samples 1 "
                         "--levels none" +
                         on_family(6))
                         .at("found");
  std::set<int> heights;
  for (const json& layout : found) {
    if (layout["request"]["ubwc"] == false && layout["request"]["tiled"] == false) {
      heights.insert(layout["request"]["height"].get<int>());
    }
  }
  EXPECT_EQ(heights, (std::set<int>{1080, 1081}));
}

// Each layout that is found comes to the bytes, as show says.
TEST(Guess, FindsWhatShowLaysOut) {
  for (const uint32_t family_id : {5U, 6U, 7U}) {
    const json found =
        guess("--bytes 4194304 --size 1024x1024,512x512 --format all" + on_family(family_id))
            .at("found");
    ASSERT_GT(found.size(), 3U);
    std::size_t formats = 0;
    for (const json& layout : found) {
      const json& request = layout["request"];
      formats += layout["groups"][0]["formats"].size();
      const json& format = layout["groups"][0]["formats"].back();
      std::string show = "show" + on_family(family_id) + " --format " + format["format"].dump() +
                         " --size " + request["width"].dump() + "x" + request["height"].dump() +
                         " --samples " + request["samples"].dump();
      if (request["tiled"] == false) show += " --linear";
      if (request["ubwc"] == true) show += " --ubwc";
      if (!request["levels"].is_null()) show += " --levels " + request["levels"].dump();
      const json shown = json_of(show);
      EXPECT_EQ(shown["gpu_buffer_size"].get<uint64_t>(), 4194304U) << show;
      EXPECT_EQ(shown["layout"]["level"][0]["plane"][0]["image_pitch"], layout["image_pitch"]);
    }
    EXPECT_GT(formats, 50U);  // 4 bytes an element alone have as many
  }
}

TEST(Guess, NothingFound) {
  const json none =
      guess("--bytes 4097 --size 64x16 --format 28 --samples 1,2 --levels none" + on_family(6), 1);
  EXPECT_EQ(none.at("found"), json::array());
  // 64 x 16 x 4 bytes, and one 4096 of flags with it; two samples take twice as much.
  expect_word(none, "closest_below", 4096);
  expect_word(none, "closest_above", 8192);
  const Outcome text =
      run_tool("guess --bytes 4097 --size 64x16 --format 28 --samples 1,2" + on_family(6));
  EXPECT_EQ(text.exit_code, 1);
  EXPECT_NE(text.out.find("the closest below has 4096, 1 less"), std::string::npos) << text.out;
}

// 4 x 16384 x 16384 x 4 bytes are 2^32: an allocation of 0 bytes, which is none.
TEST(Guess, NumbersThatWrapAreNoLayouts) {
  guess("--bytes 5512 --size 16384x16384 --format 28 --samples 4 --levels none" + on_family(6), 1);
}

TEST(Guess, Text) {
  const Outcome run = run_tool("guess --bytes 8392704 --size 1920x1080 --samples 1");
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_TRUE(run.out.starts_with("1 layout comes to 8392704 bytes\n")) << run.out;
  EXPECT_NE(run.out.find("R8G8B8A8_UNORM"), std::string::npos) << run.out;
}

TEST(Guess, WhatItCannotMakeSenseOf) {
  const auto expect_reason = [](const std::string& arguments, const std::string& part) {
    const std::string reason = reason_of_refusal(run_tool("guess " + arguments));
    EXPECT_NE(reason.find(part), std::string::npos) << arguments << ": " << reason;
  };
  expect_reason("", "--bytes is required");
  expect_reason("--bytes 0", "write for example --bytes 8392704");
  expect_reason("--bytes many", "--bytes");
  expect_reason("--bytes 1 --size 1", "--size");
  expect_reason("--bytes 1 --format nv13", "--format");
  expect_reason("--bytes 1 --chip 7", "--chip");
}

}  // namespace
}  // namespace tool_test
