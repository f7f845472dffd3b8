// The last resort against the library's division faults.
#pragma once

namespace tool {

// Commands refuse what would fault before they call the library. Should one slip through, the
// program still ends with one line and the exit code of bad input.
void install_division_fault_handler();

}  // namespace tool
