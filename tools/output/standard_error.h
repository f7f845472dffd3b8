// Reports to the user on standard error, a line each.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tool {

void print_error(std::string_view reason);
void print_warning(std::string_view text);
void print_warnings(const std::vector<std::string>& texts);

// The user's own text without line ends and what else controls a terminal.
std::string without_controls(std::string_view text);

// The user's own text, fit to stand inside such a line: in quotes, long ones cut.
std::string in_quotes(std::string_view text);

}  // namespace tool
