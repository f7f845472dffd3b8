// The program's command line.
#pragma once

namespace tool {

// Runs the command that the arguments name. Returns the program's exit code. Throws BadInput, for a
// command line that makes no sense too.
int run_command_line(int argc, char** argv);

}  // namespace tool
