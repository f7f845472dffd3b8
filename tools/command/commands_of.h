// The commands of a program, in the order in which help lists them.
#pragma once

#include <CLI/CLI.hpp>
#include <vector>

namespace tool {

inline std::vector<const CLI::App*> commands_of(const CLI::App& program) {
  return program.get_subcommands([](const CLI::App*) { return true; });
}

}  // namespace tool
