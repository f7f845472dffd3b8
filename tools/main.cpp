// korvel-layout: surface layouts, hardware data, formats and stored records on the command line.
#include <exception>

#include "tools/command/command_line.h"
#include "tools/command/exit_codes.h"
#include "tools/library/division_fault.h"
#include "tools/output/standard_error.h"

int main(int argc, char** argv) {
  tool::install_division_fault_handler();
  try {
    return tool::run_command_line(argc, argv);
  } catch (const std::exception& error) {
    tool::print_error(error.what());
    return tool::kExitBadInput;
  }
}
