// Command lines that the parser cannot make sense of, in words that help.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>

namespace tool {

// What to say about an error of the parser. `first_argument` is the first word behind the program's
// name.
std::string parse_refusal(const CLI::App& program, const CLI::ParseError& error,
                          std::string_view first_argument);

// The same for options alone, of a command or of a text that holds options of a command.
// `command_text` is how the command is called: "korvel-layout diff".
std::string option_refusal(const CLI::App& command, const CLI::ParseError& error,
                           std::string_view command_text);

// What to say about an option in the place of another one's value, as in "--blob --force". Empty
// where all is well.
std::string swallowed_option(const CLI::App& command);

// "\"shew\" is no command; did you mean show? korvel-layout --help lists them"
std::string unknown_command(const CLI::App& program, std::string_view name);

}  // namespace tool
