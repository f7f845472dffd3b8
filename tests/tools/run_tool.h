// The built program, run as a user runs it.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace tool_test {

struct Outcome {
  int exit_code = -1;  // -1 when a signal ended it
  std::string out;
  std::string err;
};

// Runs korvel-layout with these arguments and waits for its end.
Outcome run_tool_with(const std::vector<std::string>& arguments);

// The same with a file as its standard input.
Outcome run_tool_on_input(const std::vector<std::string>& arguments, const std::string& in_path);

// Starts it without waiting; what it prints goes to the two files. Returns the process.
int start_tool(const std::vector<std::string>& arguments, const std::string& out_path,
               const std::string& err_path);

// Waits for the end of a process; -1 when a signal ended it.
int exit_code_of(int process);

// The same with the arguments in one text, separated by single blanks.
Outcome run_tool(const std::string& arguments);

// What a successful run with --json prints; a failure of the test otherwise.
nlohmann::json json_of(const std::string& arguments);

// The same of a run that warns: every warning is a line on standard error, too.
nlohmann::json json_with_warnings(const std::string& arguments);

// Expects exit code 2, no data, and exactly one line that starts with the program's name. Returns
// the rest of that line.
std::string reason_of_refusal(const Outcome& run);

// As the program takes a chip id.
std::string hex(uint32_t chip_id);

std::size_t count_lines(const std::string& text);

}  // namespace tool_test
