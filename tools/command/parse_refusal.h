// Command lines that the parser cannot make sense of, in words that help.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>

namespace tool {

// What to say about an error of the parser. `first_argument` is the first word behind the program's
// name, empty when there is none.
std::string parse_refusal(const CLI::App& program, const CLI::ParseError& error,
                          std::string_view first_argument);

// "\"shew\" is no command; did you mean show? korvel-layout --help lists them"
std::string unknown_command(const CLI::App& program, std::string_view name);

}  // namespace tool
