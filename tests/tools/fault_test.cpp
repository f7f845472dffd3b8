// Requests on which the library would divide by 0.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <fstream>

#include "tests/harness/chips.h"
#include "tests/tools/run_tool.h"
#include "tests/tools/scratch_folder.h"

namespace tool_test {
namespace {

std::string show_on_family(uint32_t family_id, const std::string& arguments) {
  return "show --chip " + hex(harness::full_chip(family_id).chip_id) + " --size 64x64 " + arguments;
}

void expect_reason(const std::string& arguments, const std::string& part) {
  const std::string reason = reason_of_refusal(run_tool(arguments));
  EXPECT_NE(reason.find(part), std::string::npos) << arguments << ": " << reason;
}

TEST(Fault, PlanesThatTheFormatLacksOnFamily5) {
  expect_reason(show_on_family(5, "--format 28 --planes 2"), "R8G8B8A8_UNORM (28) has no plane 1");
  expect_reason(show_on_family(5, "--format nv12 --planes 3"), "no plane 2");
  expect_reason(show_on_family(5, "--format nv12 --planes 3 --levels 2"), "no plane 2");
  EXPECT_EQ(run_tool(show_on_family(5, "--format nv12 --planes 3 --linear")).exit_code, 0);
  EXPECT_EQ(run_tool(show_on_family(5, "--format 615 --planes 3")).exit_code, 0);
  EXPECT_EQ(run_tool(show_on_family(6, "--format 28 --planes 3")).exit_code, 0);
}

// 658 has a tile on family 7 only.
TEST(Fault, FlagBuffersWithoutASampleTile) {
  expect_reason(show_on_family(6, "--format 619 --ubwc"), "format 619 has no sample tile");
  expect_reason(show_on_family(7, "--format 619 --ubwc --levels 3"), "no sample tile");
  EXPECT_EQ(run_tool(show_on_family(6, "--format 619")).exit_code, 0);
  EXPECT_EQ(run_tool(show_on_family(5, "--format 619 --ubwc")).exit_code, 0);
  EXPECT_EQ(run_tool(show_on_family(6, "--format 619 --ubwc --planes 0")).exit_code, 0);
  const std::string on_yuv_chip = "show --format 658 --size 64x64 --ubwc --chip ";
  const auto yuv_chip = [](uint32_t family_id) {
    return harness::chip_where("compressing YUV", [family_id](const auto& chip) {
      return chip.family_id == family_id && !chip.ubwc.never &&
             (chip.ubwc.yuv_a || chip.ubwc.yuv_b);
    });
  };
  expect_reason(on_yuv_chip + hex(yuv_chip(6).chip_id), "no sample tile for 1 sample on family 6");
  EXPECT_EQ(run_tool(on_yuv_chip + hex(yuv_chip(7).chip_id)).exit_code, 0);
}

// The library's own refusal comes first.
TEST(Fault, BadArgumentsAreReportedAsSuch) {
  expect_reason(show_on_family(5, "--format 28 --planes 3 --samples 3"),
                "--samples 3: 1, 2, 4 or 8");
  expect_reason(show_on_family(6, "--format 619 --ubwc --samples 16"),
                "--samples 16: 1, 2, 4 or 8");
  expect_reason(show_on_family(5, "--format 28 --planes 7"), "--planes 7: 0 to 3");
}

TEST(Fault, NoRequestDivides) {
  for (const uint32_t family_id : {5U, 6U, 7U}) {
    for (const int format : {6, 20, 40, 55, 103, 107, 551, 615, 619, 654, 658, 659, 660, 709}) {
      for (const char* rest : {"", " --planes 1", " --planes 2 --levels 15", " --planes 3 --linear",
                               " --samples 8 --planes 3 --levels 2 --linear"}) {
        const std::string arguments =
            show_on_family(family_id, "--ubwc --format " + std::to_string(format) + rest);
        const Outcome run = run_tool(arguments);
        EXPECT_TRUE(run.exit_code == 0 || run.exit_code == 2) << arguments;
        EXPECT_EQ(run.err.find("divided by 0"), std::string::npos) << arguments;
      }
    }
  }
}

// What no forecast foresaw still ends with one line.
TEST(Fault, LastResort) {
  const ScratchFolder folder;
  const std::string pipe = folder.path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const int child = start_tool({"dump", pipe}, "/dev/null", folder.path("err"));
  const std::ofstream writer(pipe);  // returns when the program reads, long after its start
  kill(child, SIGFPE);
  EXPECT_EQ(exit_code_of(child), 2);
  EXPECT_EQ(file_content(folder.path("err")),
            "korvel-layout: the library divided by 0 on this request\n");
}

}  // namespace
}  // namespace tool_test
