// `dump`: a stored record field by field.
#pragma once

#include "tools/command/stored_file_options.h"

namespace tool {

struct DumpOptions {
  StoredFileOptions stored;
  bool all = false;  // what is not in use too
  bool json = false;
};

// Returns the program's exit code. Throws BadInput.
int dump(const DumpOptions& options);

}  // namespace tool
