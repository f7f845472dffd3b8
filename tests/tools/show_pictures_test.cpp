// Pictures written to files and to standard output.
#include <gtest/gtest.h>

#include "tests/tools/run_tool.h"
#include "tests/tools/scratch_folder.h"

namespace tool_test {
namespace {

std::vector<std::string> show_with(const std::vector<std::string>& more) {
  std::vector<std::string> arguments = {"show", "--format", "28", "--size", "100x60"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

TEST(ShowPictures, AreFilesBesideTheTables) {
  const ScratchFolder folder;
  const Outcome tables = run_tool_with(show_with({}));
  const Outcome run = run_tool_with(
      show_with({"--svg", folder.path("picture.svg"), "--html", folder.path("picture.html")}));
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_EQ(run.out, tables.out);
  EXPECT_EQ(folder.count(), 2U);
  EXPECT_TRUE(file_content(folder.path("picture.svg")).starts_with("<svg "));
  EXPECT_TRUE(file_content(folder.path("picture.html")).starts_with("<!DOCTYPE html>"));
}

TEST(ShowPictures, TakeThePlaceOfTheTablesOnStandardOutput) {
  const ScratchFolder folder;
  ASSERT_EQ(run_tool_with(show_with({"--svg", folder.path("svg"), "--html", folder.path("html")}))
                .exit_code,
            0);
  const Outcome svg = run_tool_with(show_with({"--svg", "-"}));
  EXPECT_EQ(svg.exit_code, 0) << svg.err;
  EXPECT_EQ(svg.out, file_content(folder.path("svg")));
  const Outcome html = run_tool_with(show_with({"--html", "-"}));
  EXPECT_EQ(html.exit_code, 0) << html.err;
  EXPECT_EQ(html.out, file_content(folder.path("html")));
}

TEST(ShowPictures, LeaveStandardOutputToOne) {
  for (const auto& both : {std::vector<std::string>{"--svg", "-", "--html", "-"},
                           std::vector<std::string>{"--svg", "-", "--json"},
                           std::vector<std::string>{"--html", "-", "--json"}}) {
    const std::string reason = reason_of_refusal(run_tool_with(show_with(both)));
    EXPECT_NE(reason.find("standard output"), std::string::npos) << reason;
    EXPECT_NE(reason.find("write --"), std::string::npos) << reason;
  }
}

TEST(ShowPictures, NeverReplaceAFileUnasked) {
  for (const std::string option : {"--svg", "--html"}) {
    const ScratchFolder folder;
    const std::string path = folder.file("picture", "precious");
    const std::string reason = reason_of_refusal(run_tool_with(show_with({option, path})));
    EXPECT_TRUE(reason.starts_with(option + ": ")) << reason;
    EXPECT_NE(reason.find("--force"), std::string::npos) << reason;
    EXPECT_EQ(file_content(path), "precious");
    EXPECT_EQ(run_tool_with(show_with({option, path, "--force"})).exit_code, 0);
    EXPECT_NE(file_content(path), "precious");
    EXPECT_EQ(folder.count(), 1U);
  }
}

TEST(ShowPictures, ReportWhatCannotBeWritten) {
  const ScratchFolder folder;
  const std::string reason =
      reason_of_refusal(run_tool_with(show_with({"--svg", folder.path("missing/picture")})));
  EXPECT_TRUE(reason.starts_with("--svg: cannot write ")) << reason;
  EXPECT_EQ(folder.count(), 0U);
}

// A layout that warns, too, is refused with one line.
TEST(ShowPictures, AreWrittenBeforeWarnings) {
  const ScratchFolder folder;
  const std::string path = folder.file("picture", "precious");
  reason_of_refusal(run_tool("show --format nv12 --planes 3 --size 64x64 --svg " + path));
}

TEST(ShowPictures, NeedAPictureForForce) {
  const std::string reason = reason_of_refusal(run_tool_with(show_with({"--force"})));
  EXPECT_EQ(
      reason,
      "--force counts only beside --blob, --svg or --html; write for example --blob surface.blob "
      "--force");
}

// 16384 x 16384 elements of 16 bytes wrap to 0 bytes.
TEST(ShowPictures, HoldTheWarnings) {
  const Outcome run = run_tool("show --format 28 --size 16384x16384 --samples 4 --svg -");
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_NE(run.err.find("do not fit 32 bits"), std::string::npos) << run.err;
  EXPECT_NE(run.out.find("class=\"warning\""), std::string::npos);
  EXPECT_NE(run.out.find("Warning: level 0, plane 0, image size"), std::string::npos);
  EXPECT_NE(run.out.find("It has 0 bytes"), std::string::npos);
}

}  // namespace
}  // namespace tool_test
