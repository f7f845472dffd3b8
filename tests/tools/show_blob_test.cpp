// Blobs written to files.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>

#include <korvel_utils.h>
#include "tests/harness/off_by.h"
#include "tests/tools/run_tool.h"
#include "tests/tools/scratch_folder.h"

namespace tool_test {
namespace {

std::vector<std::string> show_into(const std::string& path) {
  return {"show", "--format", "28", "--size", "64x64", "--blob", path};
}

TEST(ShowBlob, HoldsTheRecord) {
  const ScratchFolder folder;
  ASSERT_EQ(run_tool_with(show_into(folder.path("blob"))).exit_code, 0);
  const std::string content = file_content(folder.path("blob"));
  ASSERT_EQ(content.size(), std::size_t{KORVEL_BLOB_BYTES});
  LayoutMetadata blob;
  std::memcpy(&blob, content.data(), sizeof blob);
  EXPECT_NUMBER(blob.header.magic, KORVEL_HEADER_MAGIC);
  EXPECT_NUMBER(blob.layout.format, 28);
  EXPECT_NUMBER(blob.layout.total_size, 64 * 64 * 4 + 5512);  // texels x bytes, and the record
  EXPECT_NUMBER(folder.count(), 1);
}

TEST(ShowBlob, NeverReplacesAFileUnasked) {
  const ScratchFolder folder;
  const std::string path = folder.file("blob", "precious");
  const std::string reason = reason_of_refusal(run_tool_with(show_into(path)));
  EXPECT_NE(reason.find("--force"), std::string::npos) << reason;
  EXPECT_EQ(file_content(path), "precious");
}

TEST(ShowBlob, ReplacesAFileWhenAsked) {
  const ScratchFolder folder;
  const std::string path = folder.file("blob", "old");
  std::vector<std::string> arguments = show_into(path);
  arguments.emplace_back("--force");
  EXPECT_EQ(run_tool_with(arguments).exit_code, 0);
  EXPECT_NUMBER(file_content(path).size(), KORVEL_BLOB_BYTES);
  EXPECT_NUMBER(folder.count(), 1);
  EXPECT_EQ(run_tool_with(arguments).exit_code, 0);
}

TEST(ShowBlob, KeepsALink) {
  const ScratchFolder folder;
  const std::string target = folder.file("target", "old");
  std::filesystem::create_symlink(target, folder.path("link"));
  reason_of_refusal(run_tool_with(show_into(folder.path("link"))));
  std::vector<std::string> arguments = show_into(folder.path("link"));
  arguments.emplace_back("--force");
  EXPECT_EQ(run_tool_with(arguments).exit_code, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link")));
  EXPECT_NUMBER(file_content(target).size(), KORVEL_BLOB_BYTES);
}

TEST(ShowBlob, ReportsWhatCannotBeWritten) {
  const ScratchFolder folder;
  reason_of_refusal(run_tool_with(show_into(folder.path("missing/blob"))));
  reason_of_refusal(run_tool_with(show_into(folder.path(""))));
  reason_of_refusal(run_tool_with(show_into("")));
  std::vector<std::string> arguments = show_into("/dev/full");
  arguments.emplace_back("--force");
  reason_of_refusal(run_tool_with(arguments));
  arguments = show_into(folder.path("."));
  arguments.emplace_back("--force");
  reason_of_refusal(run_tool_with(arguments));
  EXPECT_NUMBER(folder.count(), 0);
}

// Nothing is written for a request that is refused.
TEST(ShowBlob, NoFileWithoutALayout) {
  const ScratchFolder folder;
  std::vector<std::string> arguments = show_into(folder.path("blob"));
  arguments.insert(arguments.end(), {"--samples", "3"});
  reason_of_refusal(run_tool_with(arguments));
  EXPECT_NUMBER(folder.count(), 0);
}

}  // namespace
}  // namespace tool_test
