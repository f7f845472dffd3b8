// Layouts from elsewhere held against what a chip asks for. Numbers are worked out by hand.
#include <gtest/gtest.h>

#include "tests/harness/chips.h"
#include "tests/tools/json_words.h"
#include "tests/tools/run_tool.h"
#include "tests/tools/scratch_folder.h"

namespace tool_test {
namespace {

using nlohmann::json;

std::string fit_on_family(uint32_t family_id, const std::string& arguments) {
  return "fit --chip " + hex(harness::full_chip(family_id).chip_id) + " " + arguments;
}

json fit(const std::string& arguments, int exit_code) {
  const Outcome run = run_tool(arguments + " --json");
  EXPECT_EQ(run.exit_code, exit_code) << run.err;
  const json found = json::parse(run.out, nullptr, false);
  EXPECT_FALSE(found.is_discarded()) << run.out;
  EXPECT_EQ(found.value("fits", false), exit_code == 0);
  return found;
}

// The nearest number, and whether the given one fits.
void expect_number(const json& plane, const std::string& name, uint64_t nearest, bool fits) {
  expect_word(plane.at(name), "nearest", nearest);
  EXPECT_EQ(plane.at(name).at("fits"), fits) << name;
}

// 1918 x 4 = 7672 bytes; whole steps of 64 elements: 7680. 1080 rows of it, in whole 4096: 8294400.
TEST(Fit, PitchOfALinearSurface) {
  const std::string surface = fit_on_family(6, "--format 28 --size 1918x1080 --linear --plane ");
  const json found = fit(surface + "pitch=7672,height=1080,offset=0,size=8285760", 1);
  const json& plane = found.at("plane").at(0);
  expect_number(plane, "pitch", 7680, false);
  expect_number(plane, "height", 1080, true);
  expect_number(plane, "offset", 0, true);
  expect_number(plane, "size", 8294400, false);
  EXPECT_NE(plane.at("pitch").at("rule").get<std::string>().find("whole steps of 64 elements"),
            std::string::npos);
  fit(surface + "pitch=7680,height=1080,offset=0,size=8294400", 0);
  // More than is asked for is as good where it is no odd amount.
  fit(surface + "pitch=7936,height=1100,offset=8192,size=9000000", 0);
  expect_number(fit(surface + "pitch=7681", 1).at("plane").at(0), "pitch", 7936, false);
}

// Rows of 8192 bytes are whole channel spans: 1024 bytes more.
TEST(Fit, PitchThatIsPadded) {
  const json found =
      fit(fit_on_family(6, "--format 28 --size 2000x1000 --linear --plane pitch=8192"), 1);
  expect_number(found.at("plane").at(0), "pitch", 9216, false);
}

// Tiles of 64 x 16 elements: 1088 rows of 1920 x 4 bytes; flags of tiles of 16 x 4: 120 x 272 bytes,
// in rows of 128: 34816, in whole 4096: 36864.
TEST(Fit, FlagBuffers) {
  const std::string surface = fit_on_family(6, "--format 28 --size 1920x1080 --ubwc --plane ");
  fit(surface +
          "pitch=7680,height=1088,flag_offset=0,flag_pitch=128,flag_size=36864,"
          "offset=36864,size=8355840",
      0);
  const json found = fit(
      surface + "pitch=7680,height=1080,flag_offset=0,flag_pitch=120,flag_size=32640,offset=32768",
      1);
  const json& plane = found.at("plane").at(0);
  expect_number(plane, "height", 1088, false);
  expect_number(plane, "flag_pitch", 128, false);
  expect_number(plane, "flag_size", 36864, false);
  expect_number(plane, "flag_offset", 0, true);
  expect_number(plane, "offset", 36864, false);  // behind the flags that are asked for
}

// Both planes have 1080 rows of 1920 bytes: 2073600, in whole 4096: 2076672.
TEST(Fit, PlanesOfNv12) {
  const json found = fit(fit_on_family(6,
                                       "--format nv12 --size 1920x1080 --linear --plane "
                                       "pitch=1920,height=1080,offset=0 --plane "
                                       "pitch=1920,height=540,offset=2073600"),
                         1);
  expect_number(found.at("plane").at(0), "offset", 0, true);
  expect_number(found.at("plane").at(1), "height", 1080, false);
  expect_number(found.at("plane").at(1), "offset", 2076672, false);
  expect_word(found, "gpu_buffer_size", 2 * 2076672);
  // The second plane may stand in front of the first.
  fit(fit_on_family(6,
                    "--format nv12 --size 1920x1080 --linear --plane offset=2076672 --plane "
                    "offset=0"),
      0);
  expect_number(fit(fit_on_family(6,
                                  "--format nv12 --size 1920x1080 --linear --plane offset=0 "
                                  "--plane offset=4096"),
                    1)
                    .at("plane")
                    .at(1),
                "offset", 2076672, false);
}

// 25 blocks of 4 texels, in whole 64: 64 blocks of 8 bytes.
TEST(Fit, Blocks) {
  const json found =
      fit(fit_on_family(6, "--format bc1_unorm --size 100x100 --plane pitch=200"), 1);
  expect_number(found.at("plane").at(0), "pitch", 512, false);
}

// What the library lays out fits, on every family.
TEST(Fit, LayoutsOfTheProgram) {
  const ScratchFolder folder;
  for (const uint32_t family_id : {5U, 6U, 7U}) {
    for (const char* request :
         {"--format 28 --size 1918x1080 --linear", "--format 28 --size 2000x1000 --linear",
          "--format 28 --size 1920x1080x5 --ubwc", "--format nv12 --size 1280x720 --ubwc",
          "--format bc1_unorm --size 1000x1000", "--format d32_float --size 1000x1000 --samples 4",
          "--format 508 --size 1000x10 --linear"}) {
      const std::string chip = " --chip " + hex(harness::full_chip(family_id).chip_id);
      const Outcome shown = run_tool("show " + std::string(request) + chip + " --json");
      ASSERT_EQ(shown.exit_code, 0) << shown.err;
      const std::string file = folder.file("layout", shown.out);
      const Outcome run = run_tool("fit " + std::string(request) + chip + " --layout " + file);
      EXPECT_EQ(run.exit_code, 0) << request << chip << run.out << run.err;
    }
  }
}

TEST(Fit, Text) {
  const Outcome run = run_tool(
      fit_on_family(6, "--format 28 --size 1918x1080 --linear --plane pitch=7672,height=1080"));
  EXPECT_EQ(run.exit_code, 1);
  for (const char* part :
       {"  pitch        does not fit: 7672 bytes; the nearest is 7680 bytes\n",
        "  height       fits: 1080 rows\n", "  offset       not given: 0 bytes\n",
        "does not fit in 1 number. The nearest that does takes 8294400 bytes:\n"
        "  --plane pitch=7680,height=1080,size=8294400,offset=0\n"}) {
    EXPECT_NE(run.out.find(part), std::string::npos) << part << run.out;
  }
}

TEST(Fit, NumbersWithoutEnd) {
  for (const char* plane :
       {"pitch=18446744073709551615", "height=18446744073709551615", "offset=18446744073709551615",
        "size=18446744073709551615", "slice_pitch=18446744073709551615",
        "flag_offset=18446744073709551615", "flag_size=18446744073709551615,offset=1",
        "pitch=0,height=0,offset=0,size=0"}) {
    const Outcome run = run_tool(
        fit_on_family(6, "--format 28 --size 64x64x3 --ubwc --plane " + std::string(plane)));
    EXPECT_TRUE(run.exit_code == 0 || run.exit_code == 1) << plane << run.err;
  }
}

TEST(Fit, WhatItCannotMakeSenseOf) {
  const ScratchFolder folder;
  const auto expect_reason = [](const std::string& arguments, const std::string& part) {
    const std::string reason =
        reason_of_refusal(run_tool("fit --format 28 --size 64x64 " + arguments));
    EXPECT_NE(reason.find(part), std::string::npos) << arguments << ": " << reason;
  };
  expect_reason("", "a layout to look at is missing");
  expect_reason("--plane pich=1", "did you mean pitch?");
  expect_reason("--plane pitch", "has no number");
  expect_reason("--plane pitch=four", "has no number");
  expect_reason("--plane pitch=-4", "has no number");
  expect_reason("--plane pitch=18446744073709551616", "has no number");
  expect_reason("--plane pitch=1 --plane pitch=1", "2 planes of a layout for 1");
  expect_reason("--plane pitch=256 --levels 2", "--levels");
  expect_reason("--plane pitch=256 --extra", "--extra");
  expect_reason("--plane pitch=256 --samples 3", "1, 2, 4 or 8");
  const auto expect_file = [&](const std::string& content, const std::string& part) {
    expect_reason("--layout " + folder.file("layout", content), part);
  };
  expect_file("", "is no JSON with planes");
  expect_file("{", "is no JSON with planes");
  expect_file("[]", "is no JSON with planes");
  expect_file("{\"plane\": 3}", "is no JSON with planes");
  expect_file("{\"layout\": {\"level\": []}}", "is no JSON with planes");
  expect_file("{\"plane\": [3]}", "a plane is an object");
  expect_file("{\"plane\": [{\"image_pitch\": -1}]}",
              "image_pitch is no whole number from 0 to 18446744073709551615");
  expect_file("{\"plane\": [{\"image_pitch\": \"1\"}]}",
              "image_pitch is no whole number from 0 to 18446744073709551615");
  expect_file("{\"plane\": [{}, {}, {}, {}]}", "at most 3 planes");
  expect_file("{\"plane\": []}", "0 planes of a layout for 1");
  expect_file(std::string((1 << 20) + 1, ' '), "holds more than 1048576 bytes");
  expect_reason("--layout " + folder.path("missing"), "cannot open");
  expect_reason("--layout x --plane pitch=1", "exclude each other");
}

}  // namespace
}  // namespace tool_test
