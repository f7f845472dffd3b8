// The options of the command line that say which surface is meant.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "tools/command/request_options.h"

namespace tool {

// An option whose absence counts.
CLI::Option* add_text(CLI::App& command, const char* name, std::optional<std::string>& text,
                      const char* description);

// A chip by id, model or revision, and the option that lets it be unknown. The type name of lists is
// CHIPS.
void add_chip(CLI::App& command, std::optional<std::string>& chip, bool& unknown_chip,
              const char* description, const char* type_name = "CHIP");

enum class Needs : uint8_t { format_and_size, nothing };

void add_request(CLI::App& command, RequestOptions& options, Needs needs = Needs::format_and_size);

// The options of a text such as "--format nv12 --linear" beside those that hold already. Throws
// BadInput, naming the option that the text is of, and the command: "korvel-layout diff".
RequestOptions parse_request_text(std::string_view command_text, const char* option,
                                  const std::string& text, const RequestOptions& common);

}  // namespace tool
