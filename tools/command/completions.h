// What may stand next on a command line that is being typed, for the completions of shells.
#pragma once

#include <CLI/CLI.hpp>
#include <span>
#include <string>

namespace tool {

// A line for each word that may stand there, and behind a tab what it means; or the one line FILES
// where a file is named. `words` are those behind the program's name. The last one is being typed:
// it may be empty, and all lines begin with it.
std::string completion_lines(const CLI::App& program, std::span<const std::string> words);

}  // namespace tool
