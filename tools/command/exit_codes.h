// What the program's exit code says.
#pragma once

namespace tool {

enum ExitCode : int {
  kExitDone = 0,
  kExitRefused = 1,        // no: refused, different, not fitting, not found; warnings with --strict
  kExitBadInput = 2,       // with one line on standard error
  kExitInternalError = 3,  // explain: the steps do not come to the library's numbers
};

}  // namespace tool
