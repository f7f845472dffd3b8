// What the program's exit code says.
#pragma once

namespace tool {

enum ExitCode : int {
  kExitDone = 0,
  kExitRefused = 1,   // check: the validator refused the record
  kExitBadInput = 2,  // with one line on standard error
};

}  // namespace tool
