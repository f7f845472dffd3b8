// The arguments of the command line that name a stored file.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "tools/command/stored_file_options.h"

namespace tool {

void add_kind(CLI::App& command, std::optional<std::string>& kind);

// FILE, which is required, and --kind.
void add_stored_file(CLI::App& command, StoredFileOptions& options);

}  // namespace tool
