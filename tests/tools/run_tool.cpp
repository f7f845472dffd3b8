#include "tests/tools/run_tool.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>

namespace tool_test {
namespace {

using File = std::unique_ptr<std::FILE, decltype(&std::fclose)>;

File unnamed_file() {
  File file(std::tmpfile(), &std::fclose);
  if (!file) std::abort();
  return file;
}

std::string content_of(const File& file) {
  std::string content;
  std::rewind(file.get());
  for (int c = std::fgetc(file.get()); c != EOF; c = std::fgetc(file.get())) {
    content.push_back(static_cast<char>(c));
  }
  return content;
}

pid_t spawn(const std::vector<std::string>& arguments, posix_spawn_file_actions_t* files) {
  std::string program = KORVEL_LAYOUT_TOOL;
  std::vector<std::string> copies = arguments;
  std::vector<char*> argv = {program.data()};
  for (std::string& copy : copies) argv.push_back(copy.data());
  argv.push_back(nullptr);
  pid_t child = 0;
  if (posix_spawn(&child, program.c_str(), files, nullptr, argv.data(), environ) != 0) std::abort();
  return child;
}

}  // namespace

int exit_code_of(int process) {
  int status = 0;
  if (waitpid(process, &status, 0) != process) std::abort();
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

Outcome run_tool_on_input(const std::vector<std::string>& arguments, const std::string& in_path) {
  const File out = unnamed_file();
  const File err = unnamed_file();
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, in_path.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&files, fileno(out.get()), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&files, fileno(err.get()), STDERR_FILENO);
  const int exit_code = exit_code_of(spawn(arguments, &files));
  posix_spawn_file_actions_destroy(&files);
  return {exit_code, content_of(out), content_of(err)};
}

Outcome run_tool_with(const std::vector<std::string>& arguments) {
  return run_tool_on_input(arguments, "/dev/null");
}

int start_tool(const std::vector<std::string>& arguments, const std::string& out_path,
               const std::string& err_path) {
  constexpr int kFlags = O_WRONLY | O_CREAT;
  constexpr mode_t kMode = 0600;
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, out_path.c_str(), kFlags, kMode);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, err_path.c_str(), kFlags, kMode);
  const pid_t child = spawn(arguments, &files);
  posix_spawn_file_actions_destroy(&files);
  return child;
}

Outcome run_tool(const std::string& arguments) {
  std::istringstream words(arguments);
  std::vector<std::string> list;
  for (std::string word; words >> word;) list.push_back(word);
  return run_tool_with(list);
}

namespace {

nlohmann::json parsed(const std::string& arguments, const Outcome& run) {
  EXPECT_EQ(run.exit_code, 0) << arguments << ": " << run.err;
  nlohmann::json json = nlohmann::json::parse(run.out, nullptr, false);
  EXPECT_FALSE(json.is_discarded()) << run.out;
  return json;
}

}  // namespace

nlohmann::json json_of(const std::string& arguments) {
  const Outcome run = run_tool(arguments + " --json");
  EXPECT_EQ(run.err, "") << arguments;
  return parsed(arguments, run);
}

nlohmann::json json_with_warnings(const std::string& arguments) {
  const Outcome run = run_tool(arguments + " --json");
  nlohmann::json json = parsed(arguments, run);
  std::string lines;
  for (const std::string warning : json.at("warnings")) {
    lines += "korvel-layout: warning: " + warning + "\n";
  }
  EXPECT_NE(lines, "") << arguments;
  EXPECT_EQ(run.err, lines) << arguments;
  return json;
}

std::string reason_of_refusal(const Outcome& run) {
  const std::string name = "korvel-layout: ";
  EXPECT_EQ(run.exit_code, 2) << run.err;
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(count_lines(run.err), 1U) << run.err;
  EXPECT_TRUE(run.err.starts_with(name) && run.err.ends_with('\n')) << run.err;
  if (run.err.size() <= name.size()) return {};
  return run.err.substr(name.size(), run.err.size() - name.size() - 1);
}

std::string hex(uint32_t chip_id) {
  std::ostringstream text;
  text << "0x" << std::hex << chip_id;
  return text.str();
}

std::size_t count_lines(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace tool_test
